#include "tests/platform/linux/workarounds/WorkaroundNeed.h"

#include "platform/linux/include/XConnection.h"
#include "tests/session/support/SessionManager.h"
#include "tests/session/support/XInput.h"
#include "tests/support/BusForOne.h"
#include "tests/support/BusPeer.h"
#include "tests/support/FakePortal.h"
#include "tests/support/FakeScreenReader.h"
#include "tests/support/PrivateBus.h"
#include "tests/support/PrivateXServer.h"
#include "tests/support/SilentSocket.h"
#include "tests/support/TestXServer.h"

#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QImage>
#include <QTemporaryDir>
#include <QWidget>
#include <QWindow>

#include <chrono>
#include <cstdlib>
#include <dlfcn.h>
#include <memory>

using namespace std::chrono_literals;

TEST_F(WorkaroundNeed, RootProperties)
{
    xcb_connection_t *x = XConnection::get();
    const XcbReply<xcb_get_window_attributes_reply_t> root(
        xcb_get_window_attributes_reply(x, xcb_get_window_attributes(x, XConnection::screen()->root), nullptr));
    ASSERT_TRUE(root);
    tell("RootProperties", root->your_event_mask & XCB_EVENT_MASK_PROPERTY_CHANGE);
}

TEST_F(WorkaroundNeed, LateMouseEvents)
{
    class Target final : public QWindow
    {
    public:
        int presses = 0;

    protected:
        void mousePressEvent(QMouseEvent *) override { ++presses; }
    };
    // Never deleted: that Qt may remember it afterwards is the bug.
    static auto &window = *new Target;
    window.setFlags(Qt::BypassWindowManagerHint);
    window.setGeometry(100, 100, 100, 100);
    window.show();
    ASSERT_TRUE(waitUntil([] { return window.isExposed(); }));
    user.move({150, 150});
    user.click({150, 150});
    ASSERT_TRUE(waitUntil([] { return window.presses == 1; }));
    ASSERT_TRUE(waitUntil([this] { return user.isFree(); }));
    user.holdServer();
    window.hide();
    user.press();
    user.letServerGo();
    // What was done before is known to Qt once another window is there.
    QWindow other;
    other.show();
    ASSERT_TRUE(waitUntil([&] { return other.isExposed(); }));
    tell("LateMouseEvents", window.presses > 1);
}

TEST_F(WorkaroundNeed, MenuFocus)
{
    openAndClose(3);
    tell("MenuFocus", listenersToItsFocus() >= 3);
}

TEST_F(WorkaroundNeed, MenuMouse)
{
    const QPoint place = placeOf(submenu->menuAction());
    letQtBelieveInTheMouseAt(place);
    open();
    user.move(place);
    tell("MenuMouse", !waitUntil([this] { return isOpen(*submenu); }, 2s));
}

TEST_F(WorkaroundNeed, LargerImages)
{
    const QTemporaryDir folder;
    const QString picture = folder.filePath(QStringLiteral("picture.png"));
    ASSERT_TRUE(QImage(2, 2, QImage::Format_RGB32).save(picture));
    Subject subject;
    subject.environment().insert(QStringLiteral("QT_SCALE_FACTOR"), QStringLiteral("2"));
    subject.environment().remove(QStringLiteral("QT_HIGHDPI_DISABLE_2X_IMAGE_LOADING"));
    ASSERT_TRUE(subject.start({QStringLiteral("image"), picture}));
    ASSERT_TRUE(subject.endsWithin(20s));
    const QByteArray lookedFor = subject.process().output();
    ASSERT_EQ(subject.process().exitCode(), EXIT_SUCCESS);
    tell("LargerImages", lookedFor.contains("picture@2x.png"));
}

TEST_F(WorkaroundNeed, LibdbusLimit)
{
    class Receiver final : public QDBusVirtualObject
    {
    public:
        int messages = 0;
        [[nodiscard]] QString introspect(const QString &) const override { return {}; }
        bool handleMessage(const QDBusMessage &, const QDBusConnection &) override
        {
            ++messages;
            return true;
        }
    };
    PrivateBus bus;
    ASSERT_TRUE(bus.start());
    const BusPeer receiving(bus);
    const BusPeer sending(bus);
    Receiver receiver;
    ASSERT_TRUE(receiving.connection().registerVirtualObject(QStringLiteral("/"), &receiver));
    using SetLimit = void (*)(void *connection, long bytes);
    const auto setLimit = reinterpret_cast<SetLimit>(::dlsym(RTLD_DEFAULT, "dbus_connection_set_max_received_size"));
    ASSERT_TRUE(setLimit);
    setLimit(receiving.connection().internalPointer(), 10'000);

    constexpr int count = 1000;
    for (int i = 0; i < count; ++i) {
        QDBusMessage message = QDBusMessage::createMethodCall(receiving.name(), QStringLiteral("/"),
                                                              QStringLiteral("org.example"), QStringLiteral("Hear"));
        message.setArguments({QByteArray(1000, 'x')});
        ASSERT_TRUE(sending.connection().send(message));
    }
    tell("LibdbusLimit", !waitUntil([&] { return receiver.messages == count; }, 3s));
    EXPECT_GT(receiver.messages, 0);
}

TEST_F(WorkaroundNeed, LibdbusWarnings)
{
    const BusForOne crowded;
    ASSERT_TRUE(crowded.isRunning());
    const QString bus = QString::fromLocal8Bit(crowded.address());
    const QString occupant = QStringLiteral("occupant");
    ASSERT_TRUE(QDBusConnection::connectToBus(bus, occupant).isConnected());

    Subject subject;
    subject.environment().remove(QStringLiteral("DBUS_FATAL_WARNINGS"));
    ASSERT_TRUE(subject.start({QStringLiteral("connect"), bus}));
    ASSERT_TRUE(subject.endsWithin(20s));
    QDBusConnection::disconnectFromBus(occupant);
    tell("LibdbusWarnings", subject.process().process().exitStatus() == QProcess::CrashExit);
}

TEST_F(WorkaroundNeed, AccessibilityBridge)
{
    const QTemporaryDir tools;
    const QString record = tools.filePath(QStringLiteral("launched"));
    QFile launcher(tools.filePath(QStringLiteral("dbus-launch")));
    ASSERT_TRUE(launcher.open(QIODevice::WriteOnly));
    launcher.write("#!/bin/sh\n: > '" + record.toLocal8Bit() + "'\nexit 1\n");
    launcher.close();
    ASSERT_TRUE(launcher.setPermissions(QFile::ReadOwner | QFile::ExeOwner));
    Subject subject;
    const QString path = QStringLiteral("PATH");
    subject.environment().insert(path, tools.path() + u':' + subject.environment().value(path));
    subject.environment().remove(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"));
    subject.environment().remove(QStringLiteral("XDG_RUNTIME_DIR"));
    ASSERT_TRUE(subject.start({QStringLiteral("run")}));
    ASSERT_TRUE(subject.isUp());
    tell("AccessibilityBridge", waitUntil([&] { return QFile::exists(record); }, 3s));
}

TEST_F(WorkaroundNeed, AccessibilityBridgeBesideABusThatHangs)
{
    const QTemporaryDir folder;
    const SilentSocket bus(folder.filePath(QStringLiteral("bus")));
    Subject subject;
    subject.environment().insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), QString::fromLocal8Bit(bus.address()));
    ASSERT_TRUE(subject.start({QStringLiteral("run")}));
    const bool goesOn = waitUntil([&] { return subject.process().output().contains("goes on\n"); }, 3s);
    tell("AccessibilityBridgeBesideABusThatHangs", !goesOn);
}

TEST_F(WorkaroundNeed, LateScreenReader)
{
    PrivateBus bus;
    ASSERT_TRUE(bus.start());
    FakeScreenReader reader(bus);
    ASSERT_TRUE(reader.come());
    Subject subject;
    subject.environment().insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), bus.address());
    ASSERT_TRUE(subject.start({QStringLiteral("run")}));
    ASSERT_TRUE(waitUntil([&] { return subject.process().output().contains("goes on\n"); }));
    ASSERT_TRUE(reader.isAsked());
    reader.begin();
    tell("LateScreenReader", !waitUntil([&] { return reader.isSought(); }, 3s));
}

TEST_F(WorkaroundNeed, ScreenReaderThatHangs)
{
    PrivateBus bus;
    ASSERT_TRUE(bus.start());
    FakeScreenReader reader(bus);
    reader.fallSilent();
    ASSERT_TRUE(reader.come());
    Subject subject;
    subject.environment().insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), bus.address());
    ASSERT_TRUE(subject.start({QStringLiteral("run")}));
    tell("ScreenReaderThatHangs", !waitUntil([&] { return subject.process().output().contains("goes on\n"); }, 3s));
}

TEST_F(WorkaroundNeed, PortalQuestion)
{
    PrivateBus bus;
    ASSERT_TRUE(bus.start());
    const FakePortal portal(bus);
    ASSERT_TRUE(portal.isThere());
    Subject subject;
    subject.environment().insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), bus.address());
    ASSERT_TRUE(subject.start({QStringLiteral("run")}));
    ASSERT_TRUE(subject.isUp());
    tell("PortalQuestion", waitUntil([&] { return portal.isAsked(); }, 3s));
}

TEST_F(WorkaroundNeed, SilentBus)
{
    const QTemporaryDir folder;
    const SilentSocket bus(folder.filePath(QStringLiteral("bus")));
    Subject subject;
    ASSERT_TRUE(subject.start({QStringLiteral("connect"), QString::fromLocal8Bit(bus.address())}));
    tell("SilentBus", !subject.endsWithin(3s));
}

TEST_F(WorkaroundNeed, LostWindows)
{
    QWidget window;
    window.show();
    ASSERT_TRUE(waitUntil([&] { return window.windowHandle()->isExposed(); }));
    xcb_connection_t *const other = xcb_connect(nullptr, nullptr);
    xcb_destroy_window(other, static_cast<xcb_window_t>(window.winId()));
    xcb_flush(other);
    tell("LostWindows", !waitUntil([&] { return !window.isVisible(); }, 1s));
    xcb_disconnect(other);
}

TEST_F(WorkaroundNeed, SessionManagerDeath)
{
    SessionManager manager;
    Subject subject;
    manager.addTo(subject.environment());
    ASSERT_TRUE(subject.start({QStringLiteral("run")}));
    ASSERT_TRUE(subject.isUp());
    ASSERT_TRUE(manager.die());
    const bool endsInOrder = subject.endsWithin(3s) && subject.process().exitCode() == EXIT_SUCCESS;
    tell("SessionManagerDeath", !endsInOrder);
}

TEST_F(WorkaroundNeed, SuddenExit)
{
    PrivateBus bus;
    ASSERT_TRUE(bus.start());
    PrivateXServer server;
    ASSERT_TRUE(server.start());
    Subject subject;
    subject.environment().insert(QStringLiteral("DISPLAY"), server.display());
    subject.environment().insert(QStringLiteral("XAUTHORITY"), server.authority());
    ASSERT_TRUE(subject.start({QStringLiteral("run"), bus.address()}));
    ASSERT_TRUE(subject.isUp());
    server.stop();
    tell("SuddenExit", !subject.endsWithin(3s));
}

TEST_F(WorkaroundNeed, LoopThatIsLeft)
{
    PrivateXServer server;
    ASSERT_TRUE(server.start());
    Subject subject;
    subject.environment().insert(QStringLiteral("DISPLAY"), server.display());
    subject.environment().insert(QStringLiteral("XAUTHORITY"), server.authority());
    ASSERT_TRUE(subject.start({QStringLiteral("run")}));
    ASSERT_TRUE(subject.isUp());
    server.stop();
    tell("LoopThatIsLeft", waitUntil([&] { return subject.process().output().contains("left\n"); }, 3s));
}
