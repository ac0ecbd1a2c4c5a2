#include "tests/session/soak/Life.h"
#include "tests/support/WaitUntil.h"

#include <gtest/gtest.h>

#include <X11/keysym.h>

using namespace std::chrono_literals;

std::optional<XWindow> Life::strip() const
{
    const QList<XWindow> found = windows([](const XWindow &window) {
        return window.geometry.height() < 60 && window.geometry.width() < 60 && window.geometry.top() < 60;
    });
    return found.size() == 1 && m_session.agent->isDrawn(found.first()) ? std::optional(found.first()) : std::nullopt;
}

bool Life::killThePanel()
{
    m_session.desktop.stopPanel();
    std::optional<XWindow> alone;
    EXPECT_TRUE(waitUntil([&] {
        alone = strip();
        return alone.has_value();
    })) << "the item is lost with the panel";
    if (alone && random(2) == 0) {
        input().click(alone->geometry.center());
        EXPECT_TRUE(waitUntil([this] { return menuIsOpen(); })) << "the menu does not open";
        // It opens above the pop-up, through which it looks drawn before it takes keys.
        EXPECT_TRUE(waitUntil([this] {
            input().key(XK_Escape);
            return windows(isMenu).isEmpty();
        })) << "the menu takes no keys";
        closeMenu();
    }
    EXPECT_TRUE(m_session.desktop.startPanel(Desktop::TraySide::Left));
    isBack();
    return true;
}

bool Life::killTheWindowManager()
{
    EXPECT_TRUE(m_session.desktop.stopWindowManager());
    EXPECT_TRUE(m_session.desktop.startWindowManager());
    isBack();
    return true;
}

bool Life::killTheBus()
{
    m_session.desktop.bus().stop();
    if (random(2) == 0) {
        openAndCloseTheMenu();
    }
    return comeBackToTheBus();
}

bool Life::comeBackToTheBus()
{
    EXPECT_TRUE(m_session.desktop.bus().start());
    EXPECT_TRUE(waitUntil([this] {
        // It tries again every five seconds.
        letPass(5s);
        return m_session.agent->isLinked();
    })) << "the link does not come back";
    attachTheService();
    return true;
}

bool Life::killTheService()
{
    m_session.service->process().kill();
    if (random(2) == 0) {
        openAndCloseTheMenu();
    }
    return attachTheService();
}
