#include "platform/StatusItem.h"
#include "platform/linux/include/EventBusName.h"
#include "platform/linux/include/SessionBus.h"
#include "platform/linux/include/XConnection.h"
#include "platform/processes/SessionLock.h"
#include "platform/screen/MessageRequests.h"
#include "tests/platform/linux/item/FakeTray.h"
#include "tests/support/BusPeer.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/FakeInput.h"
#include "tests/support/PrivateBus.h"
#include "tests/support/WaitUntil.h"

#include <QAccessible>
#include <QCoreApplication>
#include <QDBusPendingCall>
#include <QGuiApplication>
#include <QImage>
#include <QMenu>
#include <QPalette>
#include <QPixmap>
#include <QWindow>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <vector>

namespace
{

constexpr NSRect frameOfStrip{{1098, 778}, {22, 22}};
const QPoint trayPlace(100, 50);
/// The top-left corner of the item in that tray, in points from below.
constexpr NSPoint trayCorner{100, 750};

// As X11/keysymdef.h has them.
constexpr std::uint32_t letterA = 0x61;
constexpr std::uint32_t space = 0x20;
constexpr std::uint32_t tab = 0xff09;
constexpr std::uint32_t returnKey = 0xff0d;
constexpr std::uint32_t menuKey = 0xff67;

QIcon pictureInRed()
{
    QPixmap pixmap(22, 22);
    pixmap.fill(Qt::red);
    return QIcon(pixmap);
}

/// The colour of the screen at this place.
QRgb colourAt(QPoint place)
{
    xcb_connection_t *x = XConnection::get();
    const auto cookie =
        xcb_get_image(x, XCB_IMAGE_FORMAT_Z_PIXMAP, XConnection::screen()->root, static_cast<std::int16_t>(place.x()),
                      static_cast<std::int16_t>(place.y()), 1, 1, ~0U);
    const XcbReply<xcb_get_image_reply_t> image(xcb_get_image_reply(x, cookie, nullptr));
    return image ? QImage(xcb_get_image_data(image.get()), 1, 1, QImage::Format_RGB32).pixel(0, 0) : 0;
}

class StatusItemKeyboard : public testing::Test
{
protected:
    StatusItemKeyboard()
    {
        item->setImage(pictureInRed());
        QObject::connect(&*item, &StatusItem::pressed, &*item,
                         [this](std::optional<NSPoint> place) { presses.push_back(place); });
    }

    std::optional<StatusItem> item{std::in_place};
    std::vector<std::optional<NSPoint>> presses;
};

class StatusItemKeyboardInATray : public StatusItemKeyboard
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(waitUntil([&] { return tray.serve(), item->frame().has_value() && tray.icons().size() == 1; }));
        icon = tray.icons().front();
    }

    FakeTray tray{trayPlace};
    xcb_window_t icon = XCB_NONE;
};

TEST_F(StatusItemKeyboardInATray, OpensTheMenuAtTheItemWhereverTheMouseIs)
{
    FakeInput::moveTo({600, 400});
    for (const std::uint32_t symbol : {letterA, returnKey, space, menuKey}) {
        tray.passKey(icon, FakeInput::keyOf(symbol));
    }
    EXPECT_TRUE(waitUntil([&] { return presses.size() >= 3; }));
    tray.passKey(icon, FakeInput::keyOf(returnKey), XCB_MOD_MASK_CONTROL);
    tray.passKey(icon, FakeInput::keyOf(returnKey));
    EXPECT_TRUE(waitUntil([&] { return presses.size() >= 4; }));
    EXPECT_THAT(presses, testing::ElementsAre(trayCorner, trayCorner, trayCorner, trayCorner));

    item->setEnabled(false);
    tray.passKey(icon, FakeInput::keyOf(returnKey));
    tray.passKey(icon, FakeInput::keyOf(tab));
    EXPECT_TRUE(waitUntil([&] { return tray.serve(), !tray.words().empty(); }));
    EXPECT_EQ(presses.size(), 4U);
}

TEST_F(StatusItemKeyboardInATray, OpensNoMenuWhenAKeyIsReleasedWhateverTheTrayMakesOfIt)
{
    tray.passKey(icon, FakeInput::keyOf(returnKey));
    EXPECT_TRUE(waitUntil([&] { return presses.size() == 1; }));
    tray.passRelease(icon, FakeInput::keyOf(returnKey));
    tray.passKey(icon, FakeInput::keyOf(returnKey));
    EXPECT_TRUE(waitUntil([&] { return presses.size() >= 2; }));
    tray.passRelease(icon, FakeInput::keyOf(space));
    tray.passKey(icon, FakeInput::keyOf(tab));
    EXPECT_TRUE(waitUntil([&] { return tray.serve(), !tray.words().empty(); }));
    EXPECT_EQ(presses.size(), 2U);
}

TEST_F(StatusItemKeyboardInATray, IsSeenToHaveTheFocusAndPassesItOnWithTab)
{
    const QRgb frame = QGuiApplication::palette().color(QPalette::Highlight).rgb();
    const QPoint middle = trayPlace + QPoint(FakeTray::side / 2, FakeTray::side / 2);
    EXPECT_TRUE(waitUntil([&] { return colourAt(middle) == QColor(Qt::red).rgb(); }));
    ASSERT_NE(colourAt(trayPlace), frame);
    tray.tell(icon, FakeTray::Word::FocusIn);
    EXPECT_TRUE(waitUntil([&] { return colourAt(trayPlace) == frame; }));
    const QAccessibleInterface *const toReaders = QAccessible::queryAccessibleInterface(&*item);
    ASSERT_TRUE(toReaders);
    EXPECT_TRUE(toReaders->state().focused);
    EXPECT_TRUE(toReaders->state().active) << "it is its own window to readers, who pass over inactive ones";
    tray.tell(icon, FakeTray::Word::FocusOut);
    EXPECT_TRUE(waitUntil([&] { return colourAt(trayPlace) != frame; }));
    EXPECT_FALSE(toReaders->state().focused);
    EXPECT_FALSE(toReaders->state().active);

    tray.passKey(icon, FakeInput::keyOf(tab));
    tray.passKey(icon, FakeInput::keyOf(tab), XCB_MOD_MASK_SHIFT);
    EXPECT_TRUE(waitUntil([&] { return tray.serve(), tray.words().size() == 2; }));
    constexpr std::uint32_t focusNext = 6;
    constexpr std::uint32_t focusPrevious = 7;
    EXPECT_THAT(tray.words(), testing::ElementsAre(focusNext, focusPrevious));
    EXPECT_THAT(presses, testing::IsEmpty());
}

TEST_F(StatusItemKeyboard, OpensTheMenuOfTheStripThatHasTheFocus)
{
    ASSERT_TRUE(waitUntil([&] { return item->frame() == frameOfStrip; }));
    FakeInput::moveTo({600, 400});
    xcb_set_input_focus(XConnection::get(), XCB_INPUT_FOCUS_PARENT, static_cast<xcb_window_t>(item->getWindow()),
                        XCB_CURRENT_TIME);
    xcb_flush(XConnection::get());
    const QRgb frame = QGuiApplication::palette().color(QPalette::Highlight).rgb();
    EXPECT_TRUE(waitUntil([&] { return colourAt({1098, 0}) == frame; }));
    FakeInput::tapKey(FakeInput::keyOf(returnKey));
    EXPECT_TRUE(waitUntil([&] { return !presses.empty(); }));
    EXPECT_THAT(presses, testing::ElementsAre(NSPoint{1098, 800}));
}

/// From other programs, over a bus.
class MenuRequest : public StatusItemKeyboard
{
protected:
    static void SetUpTestSuite()
    {
        bus = new PrivateBus;
        ASSERT_TRUE(bus->start());
        qputenv("DBUS_SESSION_BUS_ADDRESS", bus->address().toLocal8Bit());
        ASSERT_TRUE(waitUntil([] { return SessionBus::instance().isConnected(); }, std::chrono::seconds(20)));
    }

    static void TearDownTestSuite()
    {
        delete bus;
        bus = nullptr;
    }

    void SetUp() override
    {
        ASSERT_TRUE(waitUntil([&] { return item->frame() == frameOfStrip; }));
    }

    [[nodiscard]] static QDBusMessage request(const QString &member = QStringLiteral("ShowMenu"),
                                              const QString &interface = QStringLiteral("com.tamborel.kivune.Menu"))
    {
        return QDBusMessage::createMethodCall(SessionBus::instance().connection().baseService(),
                                              QStringLiteral("/com/tamborel/kivune/Menu"), interface, member);
    }

    [[nodiscard]] static QDBusMessage requestOfContract()
    {
        return request(QStringLiteral("Introspect"), QStringLiteral("org.freedesktop.DBus.Introspectable"));
    }

    [[nodiscard]] static QDBusMessage answerTo(const QDBusMessage &message)
    {
        const BusPeer peer(*bus);
        const QDBusPendingCall call = peer.connection().asyncCall(message);
        EXPECT_TRUE(waitUntil([&] { return call.isFinished(); }));
        return call.reply();
    }

    /// Whether it has been answered without an error.
    [[nodiscard]] static bool showMenu() { return answerTo(request()).type() == QDBusMessage::ReplyMessage; }

    static PrivateBus *bus;
};

PrivateBus *MenuRequest::bus = nullptr;

TEST_F(MenuRequest, IsAPressAtTheItem)
{
    FakeInput::moveTo({600, 400});
    EXPECT_TRUE(showMenu());
    EXPECT_TRUE(waitUntil([&] { return !presses.empty(); }));
    EXPECT_THAT(presses, testing::ElementsAre(NSPoint{1098, 800}));
}

TEST_F(MenuRequest, IsWhatItsObjectDescribesAndNothingElse)
{
    const QString contract = answerTo(requestOfContract()).arguments().value(0).toString();
    EXPECT_TRUE(contract.contains(QStringLiteral("<interface name=\"com.tamborel.kivune.Menu\">")));
    EXPECT_TRUE(contract.contains(QStringLiteral("<method name=\"ShowMenu\">")));
    QDBusMessage withArguments = request();
    withArguments << 7;
    EXPECT_EQ(QDBusError(answerTo(withArguments)).type(), QDBusError::InvalidArgs);
    EXPECT_EQ(QDBusError(answerTo(request(QStringLiteral("HideMenu")))).type(), QDBusError::UnknownMethod);
    EXPECT_TRUE(presses.empty());
    EXPECT_EQ(answerTo(request(QStringLiteral("ShowMenu"), QString())).type(), QDBusMessage::ReplyMessage);
    EXPECT_TRUE(waitUntil([&] { return presses.size() == 1; }));
}

TEST_F(MenuRequest, LeavesTheEventLoopToOthersHoweverManyThereAre)
{
    const BusPeer peer(*bus);
    const QDBusMessage ping =
        QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/"),
                                       QStringLiteral("org.freedesktop.DBus.Peer"), QStringLiteral("Ping"));
    for (int i = 0; i < 5000; ++i) {
        static_cast<void>(peer.connection().asyncCall(requestOfContract())); // send() wants no answer.
    }
    const QDBusPendingCall last = peer.connection().asyncCall(requestOfContract());
    peer.connection().call(ping);
    // All have come when this is answered, and none is handled yet.
    ASSERT_FALSE(SessionBus::instance().names().isEmpty());
    std::optional<bool> allWereAnsweredFirst;
    const auto clickOfTheUser = [&] {
        // What has been answered by now is here before these two are.
        SessionBus::instance().flush();
        peer.connection().call(ping);
        allWereAnsweredFirst = last.isFinished();
    };
    QMetaObject::invokeMethod(qApp, clickOfTheUser, Qt::QueuedConnection);
    ASSERT_TRUE(waitUntil([&] { return allWereAnsweredFirst && last.isFinished(); }, std::chrono::seconds(60)));
    EXPECT_FALSE(*allWereAnsweredFirst);
    EXPECT_FALSE(last.isError());
}

TEST_F(MenuRequest, WaitsWhileAnotherProgramHasTheKeyboard)
{
    xcb_connection_t *other = xcb_connect(nullptr, nullptr);
    const auto cookie = xcb_grab_keyboard(other, false, XConnection::screen()->root, XCB_CURRENT_TIME,
                                          XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
    const XcbReply<xcb_grab_keyboard_reply_t> grab(xcb_grab_keyboard_reply(other, cookie, nullptr));
    ASSERT_TRUE(grab && grab->status == XCB_GRAB_STATUS_SUCCESS);
    EXPECT_TRUE(showMenu());
    EXPECT_FALSE(waitUntil([&] { return !presses.empty(); }, std::chrono::milliseconds(200)));
    xcb_disconnect(other);
    EXPECT_TRUE(waitUntil([&] { return presses.size() == 1; }));
}

TEST_F(MenuRequest, IsRefusedWhileAPanelHasToBeAnsweredFirst)
{
    item->setEnabled(false);
    const QDBusMessage answer = answerTo(request());
    EXPECT_EQ(QDBusError(answer).type(), QDBusError::Failed);
    EXPECT_EQ(answer.errorMessage(), QStringLiteral("A panel has to be answered first"));
    item->setEnabled(true);
    EXPECT_TRUE(showMenu());
    EXPECT_TRUE(waitUntil([&] { return presses.size() == 1; }));
}

TEST_F(MenuRequest, IsNothingWhileAMenuIsOpen)
{
    QMenu menu;
    menu.addAction(QStringLiteral("One"));
    menu.popup({100, 100});
    EXPECT_TRUE(showMenu());
    EXPECT_FALSE(waitUntil([&] { return !presses.empty(); }, std::chrono::milliseconds(200)));
    menu.close();
    EXPECT_TRUE(showMenu());
    EXPECT_TRUE(waitUntil([&] { return presses.size() == 1; }));
}

TEST_F(MenuRequest, LeavesAnOpenMenuTheKeyboard)
{
    QMenu menu;
    menu.addAction(QStringLiteral("One"));
    menu.popup({100, 100});
    ASSERT_TRUE(waitUntil([&] { return menu.windowHandle() && menu.windowHandle()->isExposed(); }));
    EXPECT_TRUE(showMenu());
    EXPECT_FALSE(waitUntil([&] { return !menu.isVisible(); }, std::chrono::milliseconds(100)));
    xcb_connection_t *other = xcb_connect(nullptr, nullptr);
    const auto cookie = xcb_grab_keyboard(other, false, XConnection::screen()->root, XCB_CURRENT_TIME,
                                          XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
    const XcbReply<xcb_grab_keyboard_reply_t> grab(xcb_grab_keyboard_reply(other, cookie, nullptr));
    EXPECT_TRUE(grab && grab->status != XCB_GRAB_STATUS_SUCCESS) << "nobody holds it any more";
    xcb_disconnect(other);
    menu.close();
}

TEST_F(MenuRequest, ForAMessageIsRefusedWithoutOneAndElsePassedOn)
{
    bool isThere = false;
    int requests = 0;
    const auto showMessage = [] { return request(QStringLiteral("ShowMessage")); };
    EXPECT_EQ(QDBusError(answerTo(showMessage())).type(), QDBusError::Failed) << "nobody has one";
    {
        const MessageRequests messages([&] { return isThere; });
        QObject::connect(&messages, &MessageRequests::requested, &messages, [&] { ++requests; });
        EXPECT_EQ(QDBusError(answerTo(showMessage())).type(), QDBusError::Failed);
        isThere = true;
        QDBusMessage withArguments = showMessage();
        withArguments << 7;
        EXPECT_EQ(QDBusError(answerTo(withArguments)).type(), QDBusError::InvalidArgs);
        EXPECT_EQ(requests, 0);
        EXPECT_EQ(answerTo(showMessage()).type(), QDBusMessage::ReplyMessage);
        EXPECT_TRUE(waitUntil([&] { return requests == 1; }));
    }
    EXPECT_EQ(QDBusError(answerTo(showMessage())).type(), QDBusError::Failed) << "nobody has one any more";
    EXPECT_TRUE(presses.empty());
}

TEST_F(MenuRequest, ForAMessageIsNothingWhileAMenuIsOpen)
{
    int requests = 0;
    const MessageRequests messages([] { return true; });
    QObject::connect(&messages, &MessageRequests::requested, &messages, [&] { ++requests; });
    QMenu menu;
    menu.addAction(QStringLiteral("One"));
    menu.popup({100, 100});
    EXPECT_EQ(answerTo(request(QStringLiteral("ShowMessage"))).type(), QDBusMessage::ReplyMessage);
    EXPECT_FALSE(waitUntil([&] { return requests > 0; }, std::chrono::milliseconds(200)));
    menu.close();
}

TEST_F(MenuRequest, IsRefusedWhereThereIsNoItemWhileMessagesAreServed)
{
    const MessageRequests messages([] { return true; });
    EXPECT_TRUE(showMenu());
    EXPECT_TRUE(waitUntil([&] { return presses.size() == 1; }));
    item.reset();
    EXPECT_EQ(QDBusError(answerTo(request())).type(), QDBusError::Failed);
    EXPECT_EQ(answerTo(request(QStringLiteral("ShowMessage"))).type(), QDBusMessage::ReplyMessage);
}

TEST_F(MenuRequest, ComesFromTheProgramThatAKeyIsBoundTo)
{
    SessionLock lock;
    ASSERT_TRUE(lock.tryAcquire());
    ASSERT_TRUE(SessionBus::instance().requestName(eventBusName(QCoreApplication::applicationPid())));
    int exitCode = -1;
    const auto saidOn = [&](const QString &address) {
        ChildProcess program;
        program.environment.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), address);
        program.process().setProcessChannelMode(QProcess::MergedChannels);
        EXPECT_TRUE(program.start(QStringLiteral(KIV_SHOW_MENU), {}));
        EXPECT_TRUE(waitUntil([&] { return !program.isRunning(); }));
        exitCode = program.exitCode();
        // Qt may add, as it ends, that it cannot take in what has come in the meantime.
        return program.output().split('\n').first().toStdString();
    };
    EXPECT_EQ(saidOn(bus->address()), "");
    EXPECT_EQ(exitCode, 0);
    EXPECT_TRUE(waitUntil([&] { return presses.size() == 1; }));

    EXPECT_EQ(saidOn(QStringLiteral("disabled:")), "kivshowmenu: there is no session bus");
    EXPECT_EQ(exitCode, 1);
    item->setEnabled(false);
    EXPECT_EQ(saidOn(bus->address()), "kivshowmenu: the agent says: A panel has to be answered first");
    EXPECT_EQ(exitCode, 1);
    item->setEnabled(true);
    PrivateBus another;
    ASSERT_TRUE(another.start());
    EXPECT_EQ(saidOn(another.address()), "kivshowmenu: the agent of this display is not on this session bus");
    EXPECT_EQ(exitCode, 1);
    SessionBus::instance().releaseName(eventBusName(QCoreApplication::applicationPid()));
    EXPECT_EQ(presses.size(), 1U);
}

TEST_F(MenuRequest, IsRefusedByAProgramWhereNobodyIsTheAgentOfTheDisplay)
{
    ChildProcess program;
    EXPECT_TRUE(program.start(QStringLiteral(KIV_SHOW_MENU), {}));
    EXPECT_TRUE(waitUntil([&] { return !program.isRunning(); }));
    EXPECT_EQ(program.exitCode(), 1);
}

} // namespace
