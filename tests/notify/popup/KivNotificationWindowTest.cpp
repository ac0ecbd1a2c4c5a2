#include "notify/popup/KivNotificationWindow.h"

#include "notify/popup/MessageTypeIcon.h"
#include "platform/Bundle.h"
#include "platform/MainScreen.h"
#include "platform/images/IcnsReader.h"
#include "platform/linux/include/XConnection.h"
#include "tests/session/support/Browser.h"
#include "tests/session/support/OtherWindow.h"
#include "tests/session/support/XView.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/FakeInput.h"
#include "tests/support/TestXServer.h"
#include "tests/support/WaitUntil.h"

#include <QAccessible>
#include <QElapsedTimer>
#include <QGuiApplication>
#include <QLabel>
#include <QMultiHash>
#include <QPointer>
#include <QPushButton>
#include <QScreen>
#include <QScrollBar>
#include <QTextBrowser>
#include <QTextDocument>
#include <QTextFrame>

#include <gtest/gtest.h>
#include <xcb/shape.h>

#include <algorithm>
#include <limits>
#include <unistd.h>

namespace
{

constexpr std::int32_t never = -1;
constexpr NSPoint place = {800, 500};

/// Addresses of links that name files, run something, or lead nowhere.
constexpr const char *deadLinks[] = {"file:///etc/passwd", "/etc/passwd", "javascript:alert(1)",
                                     "data:text/html,x",   "smb://a/b",   "ssh://a",
                                     "about:blank",        "#here",       "FILE:///etc/passwd"};

/// Keeps what the window tells.
class Owner final : public NotificationWindowDelegate
{
public:
    void windowWillClose(KivNotificationWindow &window) override
    {
        ++closes;
        isShownAtClose = window.isVisible();
    }
    void windowDidMove(KivNotificationWindow &) override { ++moves; }

    int closes = 0;
    int moves = 0;
    bool isShownAtClose = false;
};

/// Another program that moves windows about and can be the compositor.
class Stranger final : public XClient
{
public:
    Stranger()
        : XClient(testXServer())
    {
    }

    void move(xcb_window_t window, QPoint to)
    {
        const std::uint32_t values[] = {static_cast<std::uint32_t>(to.x()), static_cast<std::uint32_t>(to.y())};
        xcb_configure_window(connection(), window, XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y, values);
        static_cast<void>(focus());
    }

    /// The window that has the keyboard.
    [[nodiscard]] xcb_window_t focus() const
    {
        const XReply<xcb_get_input_focus_reply_t> reply(
            xcb_get_input_focus_reply(connection(), xcb_get_input_focus(connection()), nullptr));
        return reply ? reply->focus : XCB_NONE;
    }

    void becomeCompositor()
    {
        const xcb_window_t window = xcb_generate_id(connection());
        xcb_create_window(connection(), 0, window, root(), 0, 0, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY, 0, 0, nullptr);
        xcb_set_selection_owner(connection(), window, atom("_NET_WM_CM_S0"), XCB_CURRENT_TIME);
        static_cast<void>(focus());
    }

    /// What is left of the window by its shape.
    [[nodiscard]] QRegion shape(xcb_window_t window) const
    {
        const auto cookie = xcb_shape_get_rectangles(connection(), window, XCB_SHAPE_SK_BOUNDING);
        const XReply<xcb_shape_get_rectangles_reply_t> reply(
            xcb_shape_get_rectangles_reply(connection(), cookie, nullptr));
        QRegion region;
        if (reply) {
            const xcb_rectangle_t *rectangles = xcb_shape_get_rectangles_rectangles(reply.get());
            for (int i = 0; i < xcb_shape_get_rectangles_rectangles_length(reply.get()); ++i) {
                region += QRect(rectangles[i].x, rectangles[i].y, rectangles[i].width, rectangles[i].height);
            }
        }
        return region;
    }

    /// The atoms that the property holds, by their names.
    [[nodiscard]] QByteArrayList atoms(xcb_window_t window, const QByteArray &property) const
    {
        const auto cookie = xcb_get_property(connection(), false, window, atom(property), XCB_ATOM_ATOM, 0, 32);
        const XReply<xcb_get_property_reply_t> reply(xcb_get_property_reply(connection(), cookie, nullptr));
        QByteArrayList names;
        for (std::uint32_t i = 0; reply && i < reply->value_len; ++i) {
            const xcb_atom_t value = static_cast<const xcb_atom_t *>(xcb_get_property_value(reply.get()))[i];
            const XReply<xcb_get_atom_name_reply_t> name(
                xcb_get_atom_name_reply(connection(), xcb_get_atom_name(connection(), value), nullptr));
            names.append(
                name ? QByteArray(xcb_get_atom_name_name(name.get()), xcb_get_atom_name_name_length(name.get())) : "?");
        }
        return names;
    }

    [[nodiscard]] bool hasProperty(xcb_window_t window, const QByteArray &name) const
    {
        const auto cookie = xcb_get_property(connection(), false, window, atom(name), XCB_ATOM_ANY, 0, 4);
        const XReply<xcb_get_property_reply_t> reply(xcb_get_property_reply(connection(), cookie, nullptr));
        return reply && reply->type != XCB_ATOM_NONE;
    }
};

/// The default program for addresses, from before Qt looks for one.
const Browser &browser()
{
    static const Browser theBrowser;
    static const bool installed = [] {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        theBrowser.addTo(environment);
        return qputenv("PATH", environment.value(QStringLiteral("PATH")).toLocal8Bit());
    }();
    EXPECT_TRUE(installed);
    return theBrowser;
}

void setScreenSize(const char *size)
{
    ChildProcess tool;
    ASSERT_TRUE(tool.start(QStringLiteral("xrandr"), {QStringLiteral("-s"), QString::fromLatin1(size)}));
    ASSERT_TRUE(waitUntil([&] { return !tool.isRunning(); }));
}

class KivNotificationWindowTest : public testing::Test
{
protected:
    KivNotificationWindowTest()
    {
        static_cast<void>(browser());
        FakeInput::moveTo({5, 5});
        record->setMessageType(3);
        record->setMessageRepeat(7);
        record->setContentHeight(100);
        record->setMessageText(QStringLiteral("Words and http://a.example/?q=x%26y"));
    }

    ~KivNotificationWindowTest() override
    {
        if (window) {
            window->setDelegate(nullptr);
            window->close();
        }
        EXPECT_TRUE(waitUntil([this] { return !window && eyes.windowsOf(::getpid()).isEmpty(); }));
    }

    /// Shows the record and returns once the server shows it.
    void show(std::int32_t timeout = never, NSPoint origin = place)
    {
        window = new KivNotificationWindow(record);
        window->setDelegate(&owner);
        window->showAtScreenPoint(origin, timeout);
        ASSERT_TRUE(waitUntil([this] { return !eyes.windowsOf(::getpid()).isEmpty(); }));
        ASSERT_EQ(eyes.windowsOf(::getpid()).size(), 1);
        ASSERT_TRUE(waitUntil([this] { return window->windowOpacity() == 1; })) << "the fade ends";
    }

    [[nodiscard]] XWindow onServer() const { return eyes.windowsOf(::getpid()).value(0); }

    [[nodiscard]] static QRect onScreen(const QWidget &widget)
    {
        return {widget.mapToGlobal(QPoint(0, 0)), widget.size()};
    }

    [[nodiscard]] QPushButton *button(const char *name) const
    {
        for (QPushButton *found : window->findChildren<QPushButton *>()) {
            if (found->accessibleName() == QLatin1String(name)) {
                return found;
            }
        }
        return nullptr;
    }

    void click(const char *name)
    {
        const QPushButton *found = button(name);
        ASSERT_TRUE(found) << name;
        FakeInput::click(onScreen(*found).center());
    }

    void clickLink()
    {
        // Plain texts here have two words before it.
        const QRect text = onScreen(*messageText());
        const int start = window->fontMetrics().horizontalAdvance(QStringLiteral("Words and http"));
        FakeInput::click(text.topLeft() + QPoint(start, 7));
    }

    [[nodiscard]] QTextBrowser *messageText() const { return window->findChild<QTextBrowser *>(); }
    [[nodiscard]] QTimer *timer() const { return window->findChild<QTimer *>(); }
    [[nodiscard]] bool isGone() const { return !window && eyes.windowsOf(::getpid()).isEmpty(); }

    const XView eyes{testXServer()};
    Stranger stranger;
    Owner owner;
    const std::shared_ptr<KivNotification> record = std::make_shared<KivNotification>();
    QPointer<KivNotificationWindow> window;
};

TEST_F(KivNotificationWindowTest, LiesWhereItIsPut)
{
    show();
    const float height = window->frame().size.height;
    EXPECT_EQ(window->frame(), (NSRect{place, {403, 114}}));
    EXPECT_EQ(onServer().geometry, QRect(800, 800 - 500 - static_cast<int>(height), 403, static_cast<int>(height)));
    EXPECT_TRUE(onServer().overrideRedirect);
    EXPECT_EQ(window->screenFrame(), (NSRect{{0, 0}, {1280, 800}}));
    EXPECT_EQ(window->notification(), record);
    EXPECT_EQ(owner.moves, 0) << "it has not been moved";

    window->setFrame({{10, 20}, window->frame().size});
    EXPECT_TRUE(waitUntil([this] { return onServer().geometry.topLeft() == QPoint(10, 800 - 20 - 114); }));
    EXPECT_EQ(owner.moves, 0) << "nor is that of its owner's own";
}

TEST_F(KivNotificationWindowTest, FloatsAboveOtherWindows)
{
    show();
    EXPECT_TRUE(stranger.atoms(onServer().id, "_NET_WM_STATE").contains("_NET_WM_STATE_ABOVE"));
    EXPECT_TRUE(onServer().overrideRedirect) << "a window manager may put it below others";
}

TEST_F(KivNotificationWindowTest, GrowsWithItsText)
{
    record->setMessageText(QStringLiteral("line\n").repeated(20));
    show();
    const auto height = static_cast<float>(std::ceil(messageText()->document()->size().height()));
    EXPECT_GT(height, 200);
    EXPECT_EQ(window->frame().size.height, 94 + height);
    EXPECT_EQ(messageText()->height(), static_cast<int>(height));
    EXPECT_EQ(button("Remind Me Later")->geometry(), QRect(11, window->height() - 41, 185, 30));
    EXPECT_EQ(button("Do Not Remind Me Later")->geometry(), QRect(207, window->height() - 41, 185, 30));
    for (const char *name : {"Remind Me Later", "Do Not Remind Me Later"}) {
        EXPECT_EQ(button(name)->text(), QLatin1String(name)) << "there is room for all of it";
    }
}

TEST_F(KivNotificationWindowTest, ReportsItsFrameAsItWasSet)
{
    record->setContentWidth(320.5F);
    show(never, {500.25F, 300.75F});
    EXPECT_EQ(window->frame().origin, (NSPoint{500.25F, 300.75F})) << "though it lies on whole pixels";
    EXPECT_EQ(window->frame().size.width, 403.5F);
}

TEST_F(KivNotificationWindowTest, LeavesTheRecordAloneOnRemindMeLater)
{
    show();
    EXPECT_FALSE(button("Close"));
    click("Remind Me Later");
    EXPECT_TRUE(waitUntil([this] { return isGone(); }));
    EXPECT_EQ(record->messageRepeat(), 7U);
    EXPECT_EQ(owner.closes, 1);
    EXPECT_TRUE(owner.isShownAtClose) << "told before it goes";
}

TEST_F(KivNotificationWindowTest, EndsTheRepeatsOnDoNotRemindMeLater)
{
    show();
    click("Do Not Remind Me Later");
    EXPECT_TRUE(waitUntil([this] { return isGone(); }));
    EXPECT_EQ(record->messageRepeat(), 0U);
    EXPECT_EQ(owner.closes, 1);
}

TEST_F(KivNotificationWindowTest, OffersAnInstantMessageOnlyToBeClosed)
{
    record->setMessagePriority(kPriorityInstant);
    show();
    EXPECT_FALSE(button("Remind Me Later"));
    EXPECT_FALSE(button("Do Not Remind Me Later"));
    EXPECT_EQ(button("Close")->geometry(), QRect(167, window->height() - 41, 70, 30));
    click("Close");
    EXPECT_TRUE(waitUntil([this] { return isGone(); }));
    EXPECT_EQ(record->messageRepeat(), 6U);
}

TEST_F(KivNotificationWindowTest, TakesARepeatFromNoneOnClose)
{
    record->setMessageRepeat(0);
    record->setMessagePriority(kPriorityInstant);
    show();
    click("Close");
    EXPECT_TRUE(waitUntil([this] { return isGone(); }));
    EXPECT_EQ(record->messageRepeat(), 4294967295U);
}

TEST_F(KivNotificationWindowTest, CountsTheTimeoutAsClose)
{
    QElapsedTimer time;
    time.start();
    show(1);
    EXPECT_TRUE(waitUntil([this] { return isGone(); }));
    EXPECT_GE(time.elapsed(), 1000);
    EXPECT_EQ(record->messageRepeat(), 6U);
    EXPECT_EQ(owner.closes, 1);
}

TEST_F(KivNotificationWindowTest, WaitsAsLongAsItsOwnerSays)
{
    struct Row {
        std::int32_t asked;
        int seconds; ///< 0 for no timer.
    };
    for (const Row &row : {Row{0, 15}, Row{30, 30}, Row{-1, 0}, Row{-15, 0}, Row{2'000'000, 2'000'000},
                           Row{std::numeric_limits<std::int32_t>::max(), 2'147'483}}) {
        show(row.asked);
        if (row.seconds == 0) {
            EXPECT_FALSE(timer()) << row.asked;
        } else {
            ASSERT_TRUE(timer()) << row.asked;
            EXPECT_EQ(timer()->intervalAsDuration(), std::chrono::seconds(row.seconds));
            EXPECT_TRUE(timer()->isActive() && timer()->isSingleShot());
        }
        window->close();
        ASSERT_TRUE(waitUntil([this] { return isGone(); }));
    }
}

TEST_F(KivNotificationWindowTest, OpensALinkAndClosesASecondLater)
{
    show();
    const qsizetype before = browser().opened().size();
    QElapsedTimer time;
    time.start();
    clickLink();
    EXPECT_TRUE(waitUntil([&] { return browser().opened().size() > before; }));
    EXPECT_EQ(browser().opened().last(), "http://a.example/?q=x%26y");
    EXPECT_EQ(record->messageRepeat(), 0U);
    EXPECT_TRUE(window) << "not at once";
    EXPECT_TRUE(waitUntil([this] { return isGone(); }));
    EXPECT_GE(time.elapsed(), 1000);
    EXPECT_EQ(owner.closes, 1);
}

TEST_F(KivNotificationWindowTest, OpensNoFilesAndRunsNoScripts)
{
    const QByteArrayList before = browser().opened();
    show();
    for (const char *link : deadLinks) {
        Q_EMIT messageText()->anchorClicked(QUrl(QLatin1String(link))); // Which no text has.
    }
    EXPECT_TRUE(waitUntil([this] { return isGone(); }));
    EXPECT_EQ(browser().opened(), before);
}

TEST_F(KivNotificationWindowTest, TakesALinkOfHtmlThatCannotBeOpenedForText)
{
    const auto linkAt = [this] {
        return messageText()->anchorAt({window->fontMetrics().horizontalAdvance(QStringLiteral("Words and http")), 7});
    };
    for (const char *link : deadLinks) {
        record->setMessageText(QStringLiteral("<p>Words and <a href=\"%1\">httplink</a></p>").arg(QLatin1String(link)));
        show();
        EXPECT_EQ(linkAt(), QString()) << link;
        clickLink();
        click("Remind Me Later");
        EXPECT_TRUE(waitUntil([this] { return isGone(); })) << link;
        EXPECT_EQ(record->messageRepeat(), 7U) << "the click has ended the message: " << link;
    }
    record->setMessageText(QStringLiteral("<p>Words and <a href=\"https://a.example\">httplink</a></p>"));
    show();
    EXPECT_EQ(linkAt(), QStringLiteral("https://a.example"));
}

TEST_F(KivNotificationWindowTest, ShowsAllOfATextOfSixtyFourKilobytesAndThenAnEllipsis)
{
    const QString words = QStringLiteral("word ").repeated(13'107) + QLatin1Char('x');
    ASSERT_EQ(words.size(), 65'536);
    for (const auto &[text, shown] : {std::pair(words, words), std::pair(words + u'y', words + u'\u2026')}) {
        record->setMessageText(text);
        show(never, {10, 10});
        EXPECT_EQ(messageText()->toPlainText(), shown);
        window->close();
        ASSERT_TRUE(waitUntil([this] { return isGone(); }));
    }
}

TEST_F(KivNotificationWindowTest, ShowsAllTheTextOfALongNewsletter)
{
    const QString paragraph = QStringLiteral("<p style=\"color: #333333; font-family: Arial, Helvetica, sans-serif; "
                                             "margin: 0 0 16px 0; padding: 0\">%1 words</p>\n");
    QString html;
    for (int i = 1; i <= 1200; ++i) {
        html += paragraph.arg(i);
    }
    ASSERT_GT(html.size(), 128 * 1024);
    record->setMessageText(html);
    show(never, {10, 10});
    const QString text = messageText()->toPlainText();
    EXPECT_EQ(text.count(QStringLiteral(" words")), 1200);
    EXPECT_TRUE(text.trimmed().endsWith(QStringLiteral("1200 words"))) << text.right(40).toStdString();
}

TEST_F(KivNotificationWindowTest, ShowsATableAsParagraphsOnceItsScreenHasTooLittleRoom)
{
    record->setContentWidth(1000);
    record->setMessageText(QStringLiteral("<table><tr>") +
                           QStringLiteral("<td><ul><li><ul><li><ul><li>word</ul></ul></ul>").repeated(5) +
                           QStringLiteral("</table>"));
    show(never, {0, 0});
    const auto hasTable = [this] { return !messageText()->document()->rootFrame()->childFrames().isEmpty(); };
    EXPECT_TRUE(hasTable());
    for (const char *size : {"640x480", "1280x800"}) {
        owner.moves = 0;
        setScreenSize(size);
        ASSERT_TRUE(waitUntil([this] { return owner.moves > 0; })) << size;
        EXPECT_EQ(hasTable(), QLatin1String(size) == QLatin1String("1280x800"));
        EXPECT_LE(messageText()->document()->size().width(), messageText()->viewport()->width()) << size;
        EXPECT_EQ(messageText()->toPlainText().count(QStringLiteral("word")), 5);
    }
}

TEST_F(KivNotificationWindowTest, ClosesOnceThoughALinkWasClickedBefore)
{
    show();
    clickLink();
    EXPECT_TRUE(waitUntil([this] { return record->messageRepeat() == 0; }));
    click("Remind Me Later");
    EXPECT_TRUE(waitUntil([this] { return isGone(); }));
    EXPECT_EQ(owner.closes, 1);
    EXPECT_EQ(record->messageRepeat(), 0U);
}

TEST_F(KivNotificationWindowTest, LetsNothingBeSelected)
{
    show();
    const QRect text = onScreen(*messageText());
    const QImage before = eyes.grab(text);
    FakeInput::moveTo(text.topLeft() + QPoint(2, 7));
    FakeInput::press();
    FakeInput::moveTo(text.topLeft() + QPoint(60, 7));
    FakeInput::moveTo(text.topLeft() + QPoint(30, 9));
    FakeInput::release();
    FakeInput::click(text.topLeft() + QPoint(20, 7));
    FakeInput::click(text.topLeft() + QPoint(20, 7));
    FakeInput::click(text.topLeft() + QPoint(20, 7), 3);
    // A last event that shows when those before it have been worked off.
    bool entered = false;
    QObject::connect(button("Remind Me Later"), &QPushButton::pressed, [&entered] { entered = true; });
    FakeInput::moveTo(onScreen(*button("Remind Me Later")).center());
    FakeInput::press();
    ASSERT_TRUE(waitUntil([&entered] { return entered; }));
    EXPECT_FALSE(messageText()->textCursor().hasSelection());
    EXPECT_EQ(eyes.grab(text), before);
    EXPECT_EQ(eyes.windowsOf(::getpid()).size(), 1) << "no menu either";
    FakeInput::moveTo({5, 5});
    FakeInput::release();
}

TEST_F(KivNotificationWindowTest, LeavesTheKeyboardWhereItIs)
{
    OtherWindow other(testXServer(), QRect(50, 50, 100, 100)); // Gone with its connection.
    other.takeKeyboard();
    ASSERT_EQ(stranger.focus(), other.id());
    // The other window is of this process too.
    window = new KivNotificationWindow(record);
    window->setDelegate(&owner);
    window->showAtScreenPoint(place, never);
    ASSERT_TRUE(waitUntil([this] { return eyes.windowsOf(::getpid()).size() == 2; }));
    ASSERT_TRUE(waitUntil([this] { return window->windowOpacity() == 1; }));
    EXPECT_EQ(stranger.focus(), other.id()) << "shown";
    bool pressed = false;
    QObject::connect(button("Remind Me Later"), &QPushButton::pressed, [&pressed] { pressed = true; });
    FakeInput::moveTo(onScreen(*button("Remind Me Later")).center());
    FakeInput::press();
    ASSERT_TRUE(waitUntil([&pressed] { return pressed; }));
    EXPECT_EQ(stranger.focus(), other.id()) << "pressed";
    FakeInput::release();
    EXPECT_TRUE(waitUntil([this] { return !window; }));
    EXPECT_EQ(stranger.focus(), other.id()) << "closed";
    EXPECT_EQ(owner.closes, 1);
}

TEST_F(KivNotificationWindowTest, TellsOnceThatAnotherProgramHasMovedIt)
{
    show();
    stranger.move(onServer().id, {100, 100});
    EXPECT_TRUE(waitUntil([this] { return owner.moves > 0; }));
    EXPECT_EQ(window->frame().origin, (NSPoint{100, 800 - 100 - 114}));
    // Seen through: another move is told after everything about the first.
    stranger.move(onServer().id, {200, 200});
    EXPECT_TRUE(waitUntil([this] { return window->frame().origin.x == 200 && owner.moves > 1; }));
    EXPECT_EQ(owner.moves, 2);
}

TEST_F(KivNotificationWindowTest, TellsThatTheScreenHasAnotherSize)
{
    show();
    const QRect before = onServer().geometry;
    setScreenSize("1024x768");
    EXPECT_TRUE(waitUntil([this] { return owner.moves > 0; }));
    EXPECT_EQ(onServer().geometry, before) << "there is room for it as it is";
    EXPECT_EQ(window->frame().origin, (NSPoint{800, 468})) << "counted from the new lower edge";
    EXPECT_EQ(window->screenFrame(), (NSRect{{0, 0}, {1024, 768}}));
    window->setFrame({{-5000, 100}, window->frame().size});
    EXPECT_EQ(window->screenFrame(), std::nullopt);
    setScreenSize("1280x800");
    EXPECT_TRUE(waitUntil([this] { return owner.moves > 1; }));
}

TEST_F(KivNotificationWindowTest, TellsNothingOfMovesBeforeItIsShownOrAfterItHasClosed)
{
    window = new KivNotificationWindow(record);
    window->setDelegate(&owner);
    window->setFrame({{10, 10}, window->frame().size});
    window->move(300, 300);
    // Qt hears of a screen's size some time after the tool that has set it has ended.
    const auto qtKnows = [](QSize size) { return QGuiApplication::primaryScreen()->size() == size; };
    setScreenSize("1024x768");
    ASSERT_TRUE(waitUntil([&] { return qtKnows({1024, 768}); }));
    setScreenSize("1280x800");
    ASSERT_TRUE(waitUntil([&] { return qtKnows({1280, 800}); }));
    window->showAtScreenPoint(place, never);
    ASSERT_TRUE(waitUntil([this] { return window->windowOpacity() == 1; }));
    EXPECT_EQ(owner.moves, 0);
    window->close();
    window->move(1, 1);
    ASSERT_TRUE(waitUntil([this] { return isGone(); }));
    EXPECT_EQ(owner.moves, 0);
    EXPECT_EQ(owner.closes, 1);
}

TEST_F(KivNotificationWindowTest, HasRoundCorners)
{
    show();
    const QRegion shape = stranger.shape(onServer().id);
    const QSize size = onServer().geometry.size();
    EXPECT_EQ(shape.boundingRect(), QRect(QPoint(0, 0), size).adjusted(3, 3, -3, -3));
    EXPECT_FALSE(shape.contains(QPoint(3, 3)));
    EXPECT_FALSE(shape.contains(QPoint(size.width() - 4, size.height() - 4)));
    EXPECT_TRUE(shape.contains(QPoint(5, 5)));
    EXPECT_TRUE(shape.contains(QPoint(9, 3)));
    EXPECT_TRUE(shape.contains(QPoint(3, 9)));
    EXPECT_FALSE(window->testAttribute(Qt::WA_TranslucentBackground));
    EXPECT_FALSE(stranger.hasProperty(onServer().id, "_GTK_FRAME_EXTENTS"));
}

TEST_F(KivNotificationWindowTest, CastsAShadowWhereACompositorRuns)
{
    Stranger compositor;
    compositor.becomeCompositor();
    show();
    EXPECT_TRUE(window->testAttribute(Qt::WA_TranslucentBackground));
    EXPECT_TRUE(stranger.hasProperty(onServer().id, "_GTK_FRAME_EXTENTS"));
    EXPECT_EQ(stranger.shape(onServer().id).boundingRect().size(), onServer().geometry.size());
    const QImage picture = window->grab().toImage().convertToFormat(QImage::Format_ARGB32);
    const int middle = picture.height() / 2;
    EXPECT_EQ(picture.pixelColor(0, 0).alpha(), 0);
    EXPECT_GT(picture.pixelColor(2, middle).alpha(), picture.pixelColor(0, middle).alpha());
    EXPECT_LT(picture.pixelColor(2, middle).alpha(), 255);
    EXPECT_EQ(picture.pixelColor(5, middle), window->palette().color(QPalette::Window));
}

TEST_F(KivNotificationWindowTest, FadesIn)
{
    window = new KivNotificationWindow(record);
    QElapsedTimer time;
    time.start();
    window->showAtScreenPoint(place, never);
    EXPECT_EQ(window->windowOpacity(), 0);
    QList<qreal> steps;
    EXPECT_TRUE(waitUntil([&] {
        if (steps.isEmpty() || steps.last() != window->windowOpacity()) {
            steps.append(window->windowOpacity());
        }
        return window->windowOpacity() == 1;
    }));
    EXPECT_GE(time.elapsed(), 490);
    EXPECT_TRUE(std::is_sorted(steps.begin(), steps.end()));
    EXPECT_LE(steps.size(), 16) << "30 a second and no more";
    EXPECT_GE(steps.size(), 5) << "it does not appear all at once";
    EXPECT_TRUE(waitUntil([this] { return !window->findChild<QVariantAnimation *>(); })) << "it goes when it has ended";
}

TEST_F(KivNotificationWindowTest, ClosesAtTheEndOfAFadeOutOnly)
{
    show();
    window->fadeOut();
    const auto *animation = window->findChild<QVariantAnimation *>();
    ASSERT_TRUE(animation);
    QVariantAnimation another;
    window->animationDidEnd(&another);
    EXPECT_EQ(owner.closes, 0) << "another animation's end";
    EXPECT_TRUE(waitUntil([this] { return isGone(); }));
    EXPECT_EQ(owner.closes, 1);

    show();
    window->fadeOut();
    window->dealloc_animation();
    window->fadeIn();
    EXPECT_TRUE(waitUntil([this] { return window->windowOpacity() == 1; }));
    EXPECT_EQ(owner.closes, 1);
}

TEST_F(KivNotificationWindowTest, ClosesOnlyOnce)
{
    show(1);
    window->close();
    window->close();
    static_cast<QWidget *>(window)->close();
    EXPECT_TRUE(waitUntil([this] { return isGone(); }));
    EXPECT_EQ(owner.closes, 1);
    EXPECT_EQ(record->messageRepeat(), 7U) << "the timer has stopped";
}

TEST_F(KivNotificationWindowTest, StopsItsTimerAndItsFadeWhenItCloses)
{
    window = new KivNotificationWindow(record);
    window->showAtScreenPoint(place, 15);
    const QPointer<const QTimer> timeout = timer();
    const QPointer<const QVariantAnimation> fade = window->findChild<QVariantAnimation *>();
    ASSERT_TRUE(timeout && timeout->isActive());
    ASSERT_TRUE(fade && fade->state() == QAbstractAnimation::Running);
    window->close();
    EXPECT_FALSE(timeout && timeout->isActive());
    EXPECT_FALSE(fade && fade->state() == QAbstractAnimation::Running);
}

TEST_F(KivNotificationWindowTest, ClosesItsOwnWayWhenQtCloses)
{
    show();
    static_cast<QWidget *>(window)->close();
    EXPECT_TRUE(waitUntil([this] { return isGone(); }));
    EXPECT_EQ(owner.closes, 1);
}

TEST_F(KivNotificationWindowTest, IsANotificationToScreenReadersAndNamesItsParts)
{
    show();
    const auto interfaceOf = [](QWidget *widget) { return QAccessible::queryAccessibleInterface(widget); };
    EXPECT_EQ(interfaceOf(window)->role(), QAccessible::Notification);
    EXPECT_EQ(interfaceOf(window)->text(QAccessible::Name), QStringLiteral("Warning"));
    QMultiHash<QString, QAccessible::Role> parts;
    for (QWidget *widget : window->findChildren<QWidget *>()) {
        parts.insert(interfaceOf(widget)->text(QAccessible::Name), interfaceOf(widget)->role());
    }
    EXPECT_EQ(parts.value(QStringLiteral("Message type")), QAccessible::Graphic);
    EXPECT_EQ(parts.value(QStringLiteral("Warning")), QAccessible::Heading)
        << "a label would be read after the same name";
    EXPECT_EQ(parts.value(record->messageText()), QAccessible::StaticText);
    EXPECT_EQ(parts.value(QStringLiteral("Remind Me Later")), QAccessible::Button);
    EXPECT_EQ(parts.value(QStringLiteral("Do Not Remind Me Later")), QAccessible::Button);
}

TEST_F(KivNotificationWindowTest, KeepsItsButtonsOnTheScreenWhateverTheMessageAsks)
{
    const QString longText = QStringLiteral("line\n").repeated(1000);
    struct Row {
        float width;
        float height;
        QString text;
    };
    constexpr float infinite = std::numeric_limits<float>::infinity();
    const float notANumber = std::numeric_limits<float>::quiet_NaN();
    for (const Row &row :
         {Row{320, 100, longText}, Row{1e9F, 1e9F, longText}, Row{infinite, infinite, QStringLiteral("x")},
          Row{notANumber, notANumber, longText}, Row{-7, -7, longText}, Row{1, 1, longText},
          Row{320, 100, QStringLiteral("<img src=x width=9999 height=9999>")}}) {
        record->setContentWidth(row.width);
        record->setContentHeight(row.height);
        record->setMessageText(row.text);
        show(never, {10, 10});
        const QRect screen(0, 0, 1280, 800);
        EXPECT_TRUE(screen.contains(onServer().geometry)) << row.width << " x " << row.height;
        EXPECT_TRUE(onServer().geometry.contains(onScreen(*button("Remind Me Later"))));
        window->close();
        ASSERT_TRUE(waitUntil([this] { return isGone(); }));
    }
}

TEST_F(KivNotificationWindowTest, KeepsItsButtonsInASmallerScreenAndTheRestOfItsTextWithinReach)
{
    record->setContentWidth(1000);
    record->setMessageText(QStringLiteral("line\n").repeated(40));
    show(never, {0, 0});
    const QRect before = onServer().geometry;
    EXPECT_EQ(before.width(), 1083);
    EXPECT_GT(before.height(), 600);
    const xcb_window_t id = onServer().id;
    for (const char *size : {"800x600", "640x480"}) {
        owner.moves = 0;
        setScreenSize(size);
        ASSERT_TRUE(waitUntil([this] { return owner.moves > 0; })) << size;
        const NSSize screen = MainScreen::frame()->size;
        EXPECT_EQ(window->frame().size, (NSSize{screen.width - 20, screen.height - 40}));
        window->setFrame({{10, 10}, window->frame().size});
        const QRect shown(QPoint(10, 30), QSize(window->width(), window->height()));
        EXPECT_TRUE(waitUntil([&] { return onServer().geometry == shown; })) << size;
        EXPECT_EQ(onServer().id, id);
        for (const char *name : {"Remind Me Later", "Do Not Remind Me Later"}) {
            EXPECT_TRUE(shown.contains(onScreen(*button(name)))) << name;
        }
        EXPECT_EQ(stranger.shape(id).boundingRect(), QRect(QPoint(0, 0), shown.size()).adjusted(3, 3, -3, -3));
        EXPECT_TRUE(messageText()->verticalScrollBar()->isVisible());
        EXPECT_LE(messageText()->document()->textWidth(), messageText()->viewport()->width());
    }
    owner.moves = 0;
    setScreenSize("1280x800");
    ASSERT_TRUE(waitUntil([this] { return owner.moves > 0; }));
    EXPECT_EQ(onServer().geometry.size(), before.size()) << "there is room again";
    EXPECT_FALSE(messageText()->verticalScrollBar()->isVisible());
    click("Remind Me Later");
    EXPECT_TRUE(waitUntil([this] { return isGone(); }));
}

TEST_F(KivNotificationWindowTest, LetsTheRestOfALongTextBeScrolledTo)
{
    record->setMessageText(QStringLiteral("line\n").repeated(200));
    show(never, {10, 10});
    const QScrollBar *bar = messageText()->verticalScrollBar();
    EXPECT_TRUE(bar->isVisible());
    constexpr std::uint8_t wheelDown = 5;
    FakeInput::click(onScreen(*messageText()).center(), wheelDown);
    EXPECT_TRUE(waitUntil([bar] { return bar->value() > 0; }));
}

TEST_F(KivNotificationWindowTest, ShowsTheTitleOfItsTypeInBold)
{
    show();
    const QList<QLabel *> labels = window->findChildren<QLabel *>();
    const auto title = std::ranges::find(labels, QStringLiteral("Warning"), &QLabel::text);
    ASSERT_NE(title, labels.end());
    EXPECT_EQ((*title)->font().weight(), QFont::Bold);
    EXPECT_EQ((*title)->font().pixelSize(), 12);
    EXPECT_EQ(messageText()->font().weight(), QFont::Normal);
}

TEST_F(KivNotificationWindowTest, ShowsNoTitleWhereThereIsNone)
{
    record->setMessageTypeString({});
    show();
    EXPECT_EQ(window->frame().size, (NSSize{403, 83}));
    EXPECT_EQ(window->findChildren<QLabel *>().size(), 1) << "the icon";
    EXPECT_FALSE(window->accessibleName().isEmpty());
}

TEST_F(KivNotificationWindowTest, ShowsTheIconOfItsType)
{
    const auto pictureIn = [](const char *name) {
        QFile file(Bundle::main().pathForResource(QLatin1String(name), QStringLiteral("icns")));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << name;
        const QImage picture = readIcns(file.readAll(), 50);
        return QPixmap::fromImage(picture.scaled(50, 50, Qt::KeepAspectRatio, Qt::SmoothTransformation)).toImage();
    };
    const std::pair<std::int32_t, const char *> table[] = {
        {0, "update"}, {1, "information"}, {2, "kivmenua"}, {3, "warning"}, {17, "kivmenua"}};
    for (const auto &[type, name] : table) {
        record->setMessageType(type);
        show();
        const QImage icon = window->findChild<QLabel *>()->pixmap().toImage();
        EXPECT_EQ(icon.size(), QSize(50, 50)) << type;
        EXPECT_EQ(icon, pictureIn(name)) << type;
        window->close();
        ASSERT_TRUE(waitUntil([this] { return isGone(); }));
    }
    EXPECT_NE(pictureIn("update"), pictureIn("warning"));
}

TEST(MessageTypeIcon, HasItsPictureInThePixelsOfTheScreen)
{
    QFile file(Bundle::main().pathForResource(QStringLiteral("update"), QStringLiteral("icns")));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray pictures = file.readAll();
    const std::pair<qreal, int> table[] = {{1, 50}, {1.25, 63}, {1.5, 75}, {2, 100}};
    for (const auto &[ratio, pixels] : table) {
        const QPixmap icon = messageTypeIcon(0, 50, ratio);
        EXPECT_EQ(icon.devicePixelRatio(), ratio);
        QImage shown = icon.toImage();
        shown.setDevicePixelRatio(1);
        const QImage best = readIcns(pictures, pixels);
        EXPECT_GE(best.width(), pixels) << "none is made larger";
        EXPECT_EQ(
            shown,
            QPixmap::fromImage(best.scaled(pixels, pixels, Qt::KeepAspectRatio, Qt::SmoothTransformation)).toImage())
            << ratio;
    }
}

} // namespace
