#include "tests/session/support/ScreenReader.h"

#include "tests/session/support/FeedMessages.h"
#include "tests/session/support/Session.h"
#include "tests/support/FeedServer.h"
#include "tests/support/WaitUntil.h"

#include <QElapsedTimer>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <X11/keysym.h>
#include <string>
#include <utility>
#include <vector>

namespace
{

using namespace std::chrono_literals;

/// A session in which a screen reader is at work when the agent comes.
class ScreenReaderTest : public testing::Test
{
protected:
    bool start(const QString &feed = {})
    {
        Session::Setting setting;
        setting.feed = feed;
        setting.beforeTheAgent = [this] {
            reader.emplace(session.desktop);
            return reader->startBus() && (!isReading || (reader->listen() && reader->announce(true)));
        };
        return session.start(setting);
    }

    [[nodiscard]] std::optional<Accessible> find(ScreenReader::Role role, const QString &name = {})
    {
        const std::optional<Accessible> application = reader->application(session.agent->pid());
        std::optional<Accessible> found;
        const bool isThere = application && waitUntil([&] {
                                 found = reader->find(*application, role, name);
                                 return found.has_value();
                             });
        EXPECT_TRUE(isThere) << "nothing has role " << role << " and name " << qPrintable(name);
        return found;
    }
    [[nodiscard]] std::optional<Accessible> item()
    {
        return find(ScreenReader::PushButton, QStringLiteral("Kivune Menu"));
    }
    [[nodiscard]] bool pressItem()
    {
        const std::optional<Accessible> button = item();
        return button && reader->perform(QStringLiteral("Press"), *button);
    }
    [[nodiscard]] bool isFocused(const char *entry) const
    {
        const QList<ScreenReader::Event> events =
            reader->events(QStringLiteral("state-changed:focused"), ScreenReader::MenuItem);
        return !events.isEmpty() && events.last().detail == 1 && events.last().name == QLatin1String(entry);
    }

    bool isReading = true;
    Session session;
    std::optional<ScreenReader> reader;
};

const QString press = QStringLiteral("Press");

TEST_F(ScreenReaderTest, SeesTheItemAsAButtonWithItsNameAndItsState)
{
    ASSERT_TRUE(start());
    const std::optional<Accessible> button = item();
    ASSERT_TRUE(button);
    EXPECT_EQ(reader->description(*button), QStringLiteral("Active"));
    EXPECT_TRUE(reader->has(ScreenReader::Enabled, *button));
    EXPECT_EQ(reader->place(*button), session.agent->dockedItem()->geometry);
    session.service->send("flags 2");
    EXPECT_TRUE(waitUntil([&] { return reader->description(*button) == QStringLiteral("Not active"); }));
    EXPECT_TRUE(waitUntil([&] {
        return !reader->events(QStringLiteral("property-change:accessible-description"), ScreenReader::PushButton)
                    .isEmpty();
    }));
}

TEST_F(ScreenReaderTest, OpensTheMenuAndSeesWhichEntriesCanBeChosenAndWhichOneIsChecked)
{
    ASSERT_TRUE(start());
    session.service->send("actions 32791 32793");
    ASSERT_TRUE(session.settle());
    ASSERT_TRUE(pressItem());
    ASSERT_TRUE(session.topWindow(1));
    const std::optional<Accessible> menu = find(ScreenReader::PopupMenu);
    ASSERT_TRUE(menu);

    QStringList choosable;
    for (const Accessible &entry : reader->children(*menu)) {
        if (reader->role(entry) == ScreenReader::MenuItem && reader->has(ScreenReader::Enabled, entry)) {
            choosable.append(reader->name(entry));
        }
    }
    EXPECT_FALSE(choosable.contains(QStringLiteral("Disconnect the Session")));
    EXPECT_TRUE(choosable.contains(QStringLiteral("Server Preferences")));

    const std::optional<Accessible> size = find(ScreenReader::MenuItem, QStringLiteral("1280 x 800"));
    const std::optional<Accessible> other = find(ScreenReader::MenuItem, QStringLiteral("1024 x 768"));
    ASSERT_TRUE(size && other);
    EXPECT_TRUE(reader->has(ScreenReader::Checked, *size));
    EXPECT_FALSE(reader->has(ScreenReader::Checked, *other));
    EXPECT_TRUE(session.closeEverything());
}

TEST_F(ScreenReaderTest, IsToldThatTheMenuHasOpenedBeforeAnEntryIsGoneTo)
{
    ASSERT_TRUE(start());
    ASSERT_TRUE(session.agent->openMenu());
    EXPECT_TRUE(waitUntil([this] {
        return !reader->events(QStringLiteral("state-changed:focused"), ScreenReader::PopupMenu).isEmpty();
    }));
    EXPECT_TRUE(session.closeEverything());
}

TEST_F(ScreenReaderTest, IsToldWhichEntryTheKeysHaveGoneTo)
{
    ASSERT_TRUE(start());
    ASSERT_TRUE(session.agent->openMenu());
    session.desktop.input().key(XK_Up);
    EXPECT_TRUE(waitUntil([this] { return isFocused("About Kivune Server"); }));
    session.desktop.input().key(XK_Up);
    EXPECT_TRUE(waitUntil([this] { return isFocused("Online Support"); }));
    EXPECT_TRUE(session.closeEverything());
}

TEST_F(ScreenReaderTest, ChoosesAnEntryWhichClosesTheMenuAndReadsTheAlertThatItBrings)
{
    ASSERT_TRUE(start());
    ASSERT_TRUE(pressItem());
    const std::optional<Accessible> entry = find(ScreenReader::MenuItem, QStringLiteral("About Kivune Server"));
    ASSERT_TRUE(entry);
    ASSERT_TRUE(reader->perform(press, *entry));
    ASSERT_TRUE(session.panel()) << "the menu stays beside the panel, or the panel does not come";

    const std::optional<Accessible> alert = find(ScreenReader::Alert);
    ASSERT_TRUE(alert);
    EXPECT_TRUE(reader->has(ScreenReader::Modal, *alert));
    EXPECT_FALSE(reader->name(*alert).isEmpty());
    const QString description = reader->description(*alert);
    EXPECT_TRUE(description.contains(QStringLiteral("Version"))) << qPrintable(description);
    EXPECT_FALSE(description.contains(QLatin1Char('\t'))) << qPrintable(description);
    const std::optional<Accessible> disabled = item();
    ASSERT_TRUE(disabled);
    EXPECT_FALSE(reader->has(ScreenReader::Enabled, *disabled)) << "the item cannot be pressed until it is answered";
    EXPECT_FALSE(reader->perform(QStringLiteral("Press"), *disabled));

    const std::optional<Accessible> button = find(ScreenReader::PushButton, QStringLiteral("Close"));
    ASSERT_TRUE(button);
    EXPECT_TRUE(reader->perform(press, *button));
    EXPECT_TRUE(session.agent->waitUntilClosed());
}

TEST_F(ScreenReaderTest, ChoosesAnEntryOfWhichNothingComesUpAndTheMenuIsClosed)
{
    ASSERT_TRUE(start());
    ASSERT_TRUE(pressItem());
    const std::optional<Accessible> entry = find(ScreenReader::MenuItem, QStringLiteral("Online Support"));
    ASSERT_TRUE(entry);
    ASSERT_TRUE(reader->perform(press, *entry));
    EXPECT_TRUE(session.agent->waitUntilClosed());
    EXPECT_TRUE(waitUntil([this] { return session.browser.opened().size() == 1; }));
}

class ScreenReaderWithMessage : public ScreenReaderTest
{
protected:
    bool start(const QByteArray &text)
    {
        const FeedMessage message{.id = "1", .type = "warning", .text = text};
        return feed.start({{.body = feedDocument({message})}, {.body = feedDocument({})}}) &&
               ScreenReaderTest::start(feed.address(QStringLiteral("/messages")));
    }

    FeedServer feed;
};

TEST_F(ScreenReaderWithMessage, IsToldOnceOfAPopUpWithItsTitleAndItsTextAndLeavesTheKeyboardWhereItIs)
{
    ASSERT_TRUE(start("The server restarts at noon."));
    const std::optional<Accessible> popUp = find(ScreenReader::Notification);
    ASSERT_TRUE(popUp);
    EXPECT_EQ(reader->announcement(*popUp),
              (QStringList{QStringLiteral("Warning"), QStringLiteral("The server restarts at noon.")}));
    EXPECT_TRUE(waitUntil([this] { return session.desktop.view().focusOwnerPid() != session.agent->pid(); }));
    const auto showings = [this] {
        return reader->events(QStringLiteral("state-changed:showing"), ScreenReader::Notification);
    };
    ASSERT_TRUE(waitUntil([&] { return !showings().isEmpty(); }));
    ASSERT_TRUE(session.settle());
    const QList<ScreenReader::Event> shown = showings();
    ASSERT_EQ(shown.size(), 1);
    EXPECT_EQ(shown.first().detail, 1);
    EXPECT_TRUE(reader->events(QStringLiteral("state-changed:focused"), ScreenReader::Notification).isEmpty());
    EXPECT_NE(session.desktop.view().focusOwnerPid(), session.agent->pid());
}

TEST_F(ScreenReaderWithMessage, IsToldWhatOfAPopUpTheKeysHaveGoneTo)
{
    ASSERT_TRUE(start("Read https://www.example.com/news and more."));
    const std::optional<Accessible> link = find(ScreenReader::Link, QStringLiteral("https://www.example.com/news"));
    const std::optional<Accessible> button = find(ScreenReader::PushButton, QStringLiteral("Remind Me Later"));
    ASSERT_TRUE(link && button);
    EXPECT_FALSE(reader->has(ScreenReader::Focused, *link));
    ChildProcess key;
    key.environment = session.desktop.environment();
    ASSERT_TRUE(key.start(QStringLiteral(KIV_SHOW_MENU), {QStringLiteral("--message")}));
    const auto lastFocused = [this] {
        QString name;
        for (const ScreenReader::Event &event : reader->events()) {
            if (event.kind == QLatin1String("state-changed:focused") && event.detail == 1) {
                name = event.name;
            }
        }
        return name;
    };
    EXPECT_TRUE(waitUntil([&] { return lastFocused() == QLatin1String("https://www.example.com/news"); }));
    EXPECT_TRUE(reader->has(ScreenReader::Focused, *link));
    session.desktop.input().key(XK_Tab);
    EXPECT_TRUE(waitUntil([&] { return lastFocused() == QLatin1String("Remind Me Later"); }));
    EXPECT_TRUE(reader->has(ScreenReader::Focused, *button));
    EXPECT_FALSE(reader->has(ScreenReader::Focused, *link));
    session.desktop.input().key(XK_Escape);
    EXPECT_TRUE(waitUntil([&] { return !reader->has(ScreenReader::Focused, *button); }));
}

TEST_F(ScreenReaderWithMessage, PressesTheLinkOfAPopUp)
{
    ASSERT_TRUE(start("Read https://www.example.com/news and more."));
    const std::optional<Accessible> link = find(ScreenReader::Link, QStringLiteral("https://www.example.com/news"));
    const std::optional<Accessible> popUp = find(ScreenReader::Notification);
    ASSERT_TRUE(link && popUp);
    EXPECT_TRUE(reader->place(*popUp).contains(reader->place(*link))) << "the link is not in the pop-up";
    EXPECT_FALSE(reader->place(*link).isEmpty());
    EXPECT_TRUE(reader->perform(press, *link));
    EXPECT_TRUE(
        waitUntil([this] { return session.browser.opened() == QByteArrayList{"https://www.example.com/news"}; }));
}

TEST_F(ScreenReaderWithMessage, PressesTheButtonOfAPopUp)
{
    ASSERT_TRUE(start("The server restarts at noon."));
    const std::optional<Accessible> button = find(ScreenReader::PushButton, QStringLiteral("Remind Me Later"));
    ASSERT_TRUE(button);
    EXPECT_TRUE(reader->perform(press, *button));
    EXPECT_TRUE(session.agent->waitUntilClosed());
}

/// The library that screen readers are written with, in a program of its own: reader_client.py says what it answers.
class ReaderClient final
{
public:
    using Lines = std::vector<std::string>;

    ReaderClient(const Desktop &desktop, qint64 pid)
    {
        m_client.environment = desktop.environment();
        // Debian's Python, which has the library; another that comes first in PATH does not.
        EXPECT_TRUE(m_client.start(QStringLiteral("/usr/bin/python3"),
                                   {QStringLiteral("-B"), QStringLiteral(KIV_READER_CLIENT), QString::number(pid)}));
        EXPECT_TRUE(waitUntil([this] { return !said().isEmpty() || !m_client.isRunning(); }));
    }

    [[nodiscard]] bool isMissing() const { return m_client.exitCode() == 77; }

    /// All objects of the program, each in a line: "button, Kivune Menu, Active, enabled, showing".
    [[nodiscard]] Lines tree() { return linesOf(ask("tree").toArray()); }
    [[nodiscard]] bool press(const QByteArray &roleAndName) { return ask("press " + roleAndName).toBool(); }

    /// What has been read out so far: "notification, Warning, The server restarts at noon."
    [[nodiscard]] Lines readOut()
    {
        QJsonArray all;
        for (const QJsonValue &line : said()) {
            if (line.isObject()) {
                all.append(line.toObject().value(QLatin1String("shown")));
            }
        }
        return linesOf(all);
    }

private:
    static Lines linesOf(const QJsonArray &objects)
    {
        Lines lines;
        for (const auto &object : objects) {
            QStringList words;
            const QJsonArray parts = object.toArray();
            for (const auto &part : parts) {
                words += part.isArray() ? QVariant(part.toArray().toVariantList()).toStringList()
                                        : QStringList(part.toString());
            }
            lines.push_back(words.join(QStringLiteral(", ")).toStdString());
        }
        return lines;
    }
    [[nodiscard]] QList<QJsonValue> said()
    {
        QList<QJsonValue> values;
        QByteArrayList lines = m_client.output().split('\n');
        lines.removeLast(); // What is not complete yet.
        for (const QByteArray &line : std::as_const(lines)) {
            values.append(QJsonDocument::fromJson('[' + line + ']').array().at(0));
        }
        return values;
    }
    [[nodiscard]] QJsonValue ask(const QByteArray &request)
    {
        const auto answers = [this] {
            QList<QJsonValue> all = said();
            all.removeIf([](const QJsonValue &line) { return line.isObject(); });
            return all;
        };
        const qsizetype before = answers().size();
        m_client.write(request + '\n');
        EXPECT_TRUE(waitUntil([&] { return answers().size() > before; })) << request.constData();
        return answers().value(before);
    }

    ChildProcess m_client;
};

TEST_F(ScreenReaderTest, FindsAllByTheLibraryThatScreenReadersAreWrittenWith)
{
    ASSERT_TRUE(start());
    ASSERT_TRUE(item());
    session.service->send("actions 32791 32793");
    ASSERT_TRUE(session.settle());
    ReaderClient client(session.desktop, session.agent->pid());
    if (client.isMissing()) {
        GTEST_SKIP() << "python3-pyatspi is not installed";
    }
    EXPECT_THAT(client.tree(), testing::Contains("button, Kivune Menu, Active, enabled, showing"));

    ASSERT_TRUE(client.press("button Kivune Menu"));
    ASSERT_TRUE(session.topWindow(1));
    const ReaderClient::Lines menu = client.tree();
    EXPECT_THAT(menu, testing::Contains(testing::StartsWith("menu, ")));
    EXPECT_THAT(menu, testing::Contains("entry, About Kivune Server, , enabled, showing"));
    EXPECT_THAT(menu, testing::Contains("entry, Disconnect the Session, , showing"));

    ASSERT_TRUE(client.press("entry About Kivune Server"));
    ASSERT_TRUE(session.panel());
    EXPECT_TRUE(waitUntil([&] { return client.readOut().size() == 1; }));
    EXPECT_THAT(client.readOut(), testing::Contains(testing::StartsWith("alert, ")));
    ASSERT_TRUE(client.press("button Close"));
    EXPECT_TRUE(session.agent->waitUntilClosed());

    session.service->send("hint Read https://www.example.com/news and more.");
    EXPECT_TRUE(waitUntil([&] { return client.readOut().size() == 2; }));
    EXPECT_THAT(client.readOut().back(), testing::EndsWith("Read https://www.example.com/news and more."));
    const ReaderClient::Lines popUp = client.tree();
    EXPECT_THAT(popUp, testing::Contains(testing::StartsWith("notification, ")));
    EXPECT_THAT(popUp, testing::Contains(testing::StartsWith("link, https://www.example.com/news")));
    ASSERT_TRUE(session.settle());
    EXPECT_EQ(client.readOut().size(), 2) << "it is announced again";
}

TEST_F(ScreenReaderTest, MayComeAfterTheAgentAndGoAndComeAgain)
{
    isReading = false;
    ASSERT_TRUE(start());
    ASSERT_TRUE(reader->listen() && reader->announce(true));
    ASSERT_TRUE(item());
    ASSERT_TRUE(reader->announce(false));
    EXPECT_TRUE(waitUntil([this] {
        // What is told of the first comes in the course of the second at the latest.
        const bool settled = session.settle();
        const qsizetype before = reader->events().size();
        return settled && session.settle() && reader->events().size() == before;
    })) << "it goes on being told";
    const qsizetype before = reader->events().size();
    ASSERT_TRUE(reader->announce(true));
    // It hears of the reader by another way than of what changes, and so may have the change first.
    EXPECT_TRUE(waitUntil([&] { return session.settle() && reader->events().size() > before; }));
}

TEST_F(ScreenReaderTest, WhoseBusHangsDoesNotHoldUpTheAgent)
{
    isReading = false;
    ASSERT_TRUE(start());
    reader->suspendBus(true);
    QElapsedTimer sinceThen;
    sinceThen.start();
    ASSERT_TRUE(reader->announce(true));
    ASSERT_TRUE(session.agent->openMenu());
    EXPECT_LT(sinceThen.elapsed(), 10'000) << "Qt's own patience is 25 s";
    EXPECT_TRUE(session.closeEverything());
    reader->suspendBus(false);
}

TEST_F(ScreenReaderTest, WhoseRegistryHangsDoesNotHoldUpTheAgentAndIsToldOnceItGoesOn)
{
    isReading = false;
    ASSERT_TRUE(start());
    ASSERT_TRUE(reader->listen());
    reader->suspendRegistry(true);
    QElapsedTimer sinceThen;
    sinceThen.start();
    ASSERT_TRUE(reader->announce(true));
    ASSERT_TRUE(session.settle());
    ASSERT_TRUE(session.agent->openMenu());
    EXPECT_LT(sinceThen.elapsed(), 10'000) << "Qt's own patience is 25 s";
    EXPECT_TRUE(session.closeEverything());
    reader->suspendRegistry(false);
    EXPECT_TRUE(item());
}

TEST(ScreenReaderBus, IsNotStartedByTheAgent)
{
    Session session;
    ASSERT_TRUE(session.start());
    ASSERT_TRUE(session.settle());
    ScreenReader reader(session.desktop);
    ASSERT_TRUE(reader.canHaveBus()) << "nobody could start it";
    EXPECT_FALSE(waitUntil([&] { return reader.hasBus(); }, 2s));
}

} // namespace
