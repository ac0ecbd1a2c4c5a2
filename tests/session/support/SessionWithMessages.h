#pragma once

#include "tests/session/support/AgentClock.h"
#include "tests/session/support/Browser.h"
#include "tests/session/support/DesktopWithAgent.h"
#include "tests/session/support/FeedMessages.h"
#include "tests/session/support/MessageCache.h"
#include "tests/session/support/SettingsProgram.h"
#include "tests/support/FeedServer.h"
#include "tests/support/WaitUntil.h"

#include <optional>

/// The agent with a feed, and a clock that the test sets.
class SessionWithMessages : public DesktopWithAgent
{
protected:
    enum Button { RemindMeLater, DoNotRemindMeLater };

    /// Starts the agent with a feed that has these messages at the first request, those at the second, and so on; none
    /// at all later requests.
    bool start(const QList<QList<FeedMessage>> &feeds)
    {
        QList<ScriptedAnswer> answers;
        for (const QList<FeedMessage> &messages : feeds) {
            answers.append(ScriptedAnswer{.body = feedDocument(messages)});
        }
        answers.append(ScriptedAnswer{.body = feedDocument({})});
        if (!feed.start(answers)) {
            return false;
        }
        agent->feed = feed.address(QStringLiteral("/messages"));
        clock.addTo(agent->environment);
        browser.addTo(agent->environment);
        return desktop.hasPanel() ? agent->startAndDock() : agent->start();
    }

    [[nodiscard]] MessageCache cacheFile() const
    {
        return MessageCache(desktop.environment().value(QStringLiteral("HOME")));
    }
    [[nodiscard]] MessageCache::Entries cache() const { return cacheFile().entries(); }

    void setPreferences(int show, int close, int repeat) const { SettingsProgram::write(desktop, show, close, repeat); }
    void announceSettings() { SettingsProgram::announce(desktop, *agent); }

    /// The pop-up, once it is there and drawn.
    std::optional<XWindow> popUp()
    {
        // As it was when it was seen: it may go at any moment, to come again in another scale.
        QList<XWindow> windows;
        const bool shown = waitUntil([&] {
            windows = agent->freeWindows();
            return windows.size() == 1 && agent->isDrawn(windows.first());
        });
        EXPECT_TRUE(shown) << "there are " << windows.size() << " windows and not one pop-up";
        return shown ? std::optional(windows.first()) : std::nullopt;
    }
    [[nodiscard]] bool popUpIsAnother(const XWindow &before)
    {
        return waitUntil([&] {
            const QList<XWindow> windows = agent->freeWindows();
            return windows.size() == 1 && windows.first().id != before.id;
        });
    }
    /// True when nothing is shown, nor comes up soon.
    [[nodiscard]] bool nothingComesUp()
    {
        return agent->waitUntilClosed() &&
               !waitUntil([this] { return agent->hasMenu(); }, std::chrono::milliseconds(400));
    }
    /// What is to be seen of a window once nothing of it changes any more.
    [[nodiscard]] QImage settledPicture(const XWindow &window)
    {
        QImage picture;
        do {
            picture = desktop.view().grab(window.geometry);
        } while (
            waitUntil([&] { return desktop.view().grab(window.geometry) != picture; }, std::chrono::milliseconds(300)));
        return picture;
    }
    /// Where a pop-up of this size belongs on a screen of that size.
    [[nodiscard]] static QRect corner(const XWindow &window, QSize screen)
    {
        return {screen.width() - window.geometry.width() - 10, 30, window.geometry.width(), window.geometry.height()};
    }

    /// A point of the pop-up, counted from its left and lower edges.
    [[nodiscard]] static QPoint fromBelow(const XWindow &window, int x, int y)
    {
        return {window.geometry.left() + x, window.geometry.bottom() + 1 - y};
    }
    void click(const XWindow &window, Button button)
    {
        const int half = (window.geometry.width() - 33) / 2;
        desktop.input().click(fromBelow(window, button == RemindMeLater ? 11 + half / 2 : 22 + half * 3 / 2, 26));
    }
    void clickClose(const XWindow &window)
    {
        desktop.input().click(fromBelow(window, window.geometry.width() / 2, 26));
    }
    /// The first word of a pop-up that has a title.
    [[nodiscard]] static QPoint firstWord(const XWindow &window)
    {
        return window.geometry.topLeft() + QPoint(72 + 12, 11 + 20 + 11 + 8);
    }

    FeedServer feed;
    AgentClock clock;
    Browser browser;
};
