#include "notify/popup/KivNotificationWindow.h"

#include "notify/ProductTexts.h"
#include "notify/popup/KivNotificationView.h"
#include "notify/popup/KivTextView.h"
#include "notify/popup/PopUpLayout.h"
#include "notify/popup/PopUpParts.h"
#include "notify/popup/PopUpPlacement.h"
#include "notify/popup/WholePixels.h"
#include "notify/popup/accessible/AccessiblePopUp.h"
#include "notify/popup/keyboard/PopUpKeyboard.h"
#include "notify/text/OpenableLink.h"
#include "platform/Compositor.h"
#include "platform/LogCategories.h"
#include "platform/MainScreen.h"
#include "platform/Workspace.h"
#include "platform/screen/TopEdge.h"
#include "platform/screen/WindowStacking.h"

#include <QCloseEvent>
#include <QGuiApplication>
#include <QPushButton>
#include <QScreen>
#include <QUrl>
#include <QWindow>

#include <algorithm>
#include <chrono>
#include <utility>

namespace
{

using namespace std::chrono_literals;

constexpr auto fadeDuration = 500ms;
constexpr int fadeFrames = 15; ///< 30 a second.
constexpr std::int32_t defaultTimeout = 15;
constexpr std::int32_t maxTimeout = 2'147'483; ///< 24 days; Qt counts the milliseconds in 32 bits.
constexpr auto linkCloseDelay = 1s;

constexpr NSSize fallbackScreen = {640, 480};

NSSize mainScreenSize()
{
    const std::optional<NSRect> screen = MainScreen::frame();
    return screen ? screen->size : fallbackScreen;
}

} // namespace

KivNotificationWindow::KivNotificationWindow(std::shared_ptr<KivNotification> record)
    : QWidget(nullptr, Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint | Qt::X11BypassWindowManagerHint |
                           Qt::WindowDoesNotAcceptFocus)
    , m_notification(std::move(record))
{
    AccessiblePopUp::makeFor(*this);
    Compositor::Question compositor;
    TopEdge::Question topEdge;
    setAttribute(Qt::WA_ShowWithoutActivating);
    setAttribute(Qt::WA_MacAlwaysShowToolWindow);
    setAttribute(Qt::WA_X11NetWmWindowTypeNotification);

    const QString title = m_notification->messageTypeString();
    setWindowTitle(title.isEmpty() ? QString::fromUtf16(ProductTexts::popUpTitle) : title);
    setAccessibleName(windowTitle());

    m_view = new KivNotificationView(this);
    m_icon = newPopUpIcon(m_view);
    if (!title.isEmpty()) {
        m_title = newPopUpTitle(title, m_view);
    }
    m_text = new KivTextView(m_view);
    m_text->setMessage(m_notification->messageText(), textWidth(contentSize(mainScreenSize())));
    connect(m_text, &QTextBrowser::anchorClicked, this, &KivNotificationWindow::clickedOnLink);

    const auto newActionButton = [this](const QString &label, void (KivNotificationWindow::*action)()) {
        QPushButton *button = newPopUpButton(label, m_view);
        connect(button, &QPushButton::clicked, this, action);
        return button;
    };
    if (m_notification->messagePriority() == kPriorityInstant) {
        m_close = newActionButton(QStringLiteral("Close"), &KivNotificationWindow::onCloseButton);
    } else {
        m_remindMeLater =
            newActionButton(QStringLiteral("Remind Me Later"), &KivNotificationWindow::remindMeLaterPressed);
        m_dontRemindMe =
            newActionButton(QStringLiteral("Do Not Remind Me Later"), &KivNotificationWindow::onDontRemindMeButton);
    }
    // Without a compositor what is to be translucent would be black.
    setAttribute(Qt::WA_TranslucentBackground, compositor.isRunning());
    layOut(topEdge);
    watchScreens();
}

KivNotificationWindow::~KivNotificationWindow()
{
    dealloc_animation();
    dealloc_timer();
}

NSSize KivNotificationWindow::contentSize(NSSize screen) const
{
    return boundedContentSize({m_notification->contentWidth(), m_notification->contentHeight()}, screen);
}

void KivNotificationWindow::layOut(TopEdge::Question &topEdge)
{
    const NSSize screen = mainScreenSize();
    PopUpContents contents{
        .contentSize = contentSize(screen),
        .hasTitle = m_title != nullptr,
        .isInstant = m_close != nullptr,
        .textHeight = std::nullopt,
    };
    m_text->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_text->setTextWidth(textWidth(contents.contentSize));
    const float right = screen.width - popUpSideMargin;
    m_topReach = topEdge.reach(right - popUpLayout(contents).window.size.width, right);
    const float visibleHeight = maxTextHeight(contents, screen, m_topReach);
    if (m_text->textHeight() > visibleHeight) {
        m_text->setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    }
    contents.textHeight = std::min(m_text->textHeight(), visibleHeight);
    const PopUpLayout layout = popUpLayout(contents);
    const NSSize size = layout.window.size;

    m_frame.size = size;
    resize(sizeInWindows(size));
    m_view->setGeometry(rect());
    placePopUpIcon(*m_icon, m_notification->messageType(), inWindow(layout.icon, size));
    if (m_title) {
        placePopUpTitle(*m_title, inWindow(layout.title, size));
    }
    m_text->setGeometry(inWindow(layout.text, size));
    const std::pair<QPushButton *, NSRect> buttons[] = {
        {m_remindMeLater, layout.remindMeLater}, {m_dontRemindMe, layout.dontRemindMe}, {m_close, layout.closeButton}};
    for (const auto &[button, frame] : buttons) {
        if (button) {
            placePopUpButton(*button, inWindow(frame, size));
        }
    }
    setMask(m_view->mask());
}

void KivNotificationWindow::layOutAnew()
{
    TopEdge::Question topEdge;
    layOut(topEdge);
    m_frame.origin = MainScreen::fromQt(geometry()).origin;
    // After the screen's scale has changed, size, shape and picture of its window are others in pixels, of which Qt's
    // widgets, which do not count in them, see nothing. Another window has all of them right.
    if (screen()->devicePixelRatio() != m_scale) {
        hide();
        if (QWindow *const window = windowHandle()) {
            window->destroy();
        }
        present();
    }
}

void KivNotificationWindow::showAtScreenPoint(NSPoint origin, std::int32_t theTimeout)
{
    setFrame({origin, m_frame.size});
    setWindowOpacity(0);
    present();
    m_shown = true;
    m_screensChanged = false; // It has been put where it belongs on the screens that there are now.
    fadeIn();

    if (theTimeout >= 0) {
        const std::chrono::seconds timeout(theTimeout == 0 ? defaultTimeout : std::min(theTimeout, maxTimeout));
        m_timer = new QTimer(this);
        m_timer->setSingleShot(true);
        m_timer->setTimerType(Qt::PreciseTimer); // It may be late, never early.
        connect(m_timer, &QTimer::timeout, this, [this] {
            qCDebug(popUpLog, "its time is over");
            onCloseButton();
        });
        m_timer->start(timeout);
    }
}

void KivNotificationWindow::present()
{
    m_scale = screen()->devicePixelRatio();
    if (testAttribute(Qt::WA_TranslucentBackground)) {
        Compositor::announceShadow(*this, KivNotificationView::inset);
    }
    show();
    keepAtStatusLevel(*this);
}

NSRect KivNotificationWindow::frame() const
{
    return !m_shown || isWhereItWasPut() ? m_frame : MainScreen::fromQt(geometry());
}

void KivNotificationWindow::setFrame(const NSRect &frame)
{
    m_frame = frame;
    setGeometry({MainScreen::toQt({frame.origin.x, frame.origin.y + frame.size.height}), sizeInWindows(frame.size)});
}

std::optional<NSRect> KivNotificationWindow::screenFrame() const
{
    const QScreen *best = nullptr;
    int largestArea = 0;
    for (const QScreen *screen : QGuiApplication::screens()) {
        const QRect common = screen->geometry().intersected(geometry());
        if (const int area = common.width() * common.height(); !common.isEmpty() && area > largestArea) {
            best = screen;
            largestArea = area;
        }
    }
    if (!best) {
        return std::nullopt;
    }
    // The main screen's is asked of the window system: Qt may not know yet of a new size.
    return best == QGuiApplication::primaryScreen() ? MainScreen::frame() : MainScreen::fromQt(best->geometry());
}

void KivNotificationWindow::fadeIn()
{
    startFade(Fade::In);
}

void KivNotificationWindow::fadeOut()
{
    startFade(Fade::Out);
}

void KivNotificationWindow::startFade(Fade direction)
{
    dealloc_animation();
    m_fadingOut = direction == Fade::Out;
    m_animation = new QVariantAnimation(this);
    m_animation->setDuration(static_cast<int>(std::chrono::milliseconds(fadeDuration).count()));
    // Whole frames, so that the opacity changes no more often than they are to come.
    m_animation->setStartValue(m_fadingOut ? fadeFrames : 0);
    m_animation->setEndValue(m_fadingOut ? 0 : fadeFrames);
    connect(m_animation, &QVariantAnimation::valueChanged, this,
            [this](const QVariant &frame) { setWindowOpacity(frame.toDouble() / fadeFrames); });
    connect(m_animation, &QVariantAnimation::finished, this,
            [this, animation = m_animation] { animationDidEnd(animation); });
    m_animation->start();
}

void KivNotificationWindow::animationDidEnd(const QVariantAnimation *animation)
{
    if (animation != m_animation) {
        return;
    }
    if (m_fadingOut) {
        close();
    } else {
        dealloc_animation();
    }
}

void KivNotificationWindow::close()
{
    if (m_closed) {
        return;
    }
    m_closed = true;
    qCDebug(popUpLog) << "closes; its message is to come back" << m_notification->messageRepeat() << "times";
    dealloc_animation();
    dealloc_timer();
    if (m_delegate) {
        m_delegate->windowWillClose(*this);
    }
    hide();
    deleteLater();
}

void KivNotificationWindow::dealloc_animation()
{
    // Cleared first: what stopping brings about finds no animation any more.
    if (QVariantAnimation *animation = std::exchange(m_animation, nullptr)) {
        animation->stop();
        animation->deleteLater(); // It may be its own signal that brought us here.
    }
}

void KivNotificationWindow::dealloc_timer()
{
    if (QTimer *timer = std::exchange(m_timer, nullptr)) {
        timer->stop();
        timer->deleteLater();
    }
}

void KivNotificationWindow::onCloseButton()
{
    m_notification->setMessageRepeat(m_notification->messageRepeat() - 1);
    close();
}

void KivNotificationWindow::remindMeLaterPressed()
{
    close();
}

void KivNotificationWindow::onDontRemindMeButton()
{
    m_notification->setMessageRepeat(0);
    close();
}

bool KivNotificationWindow::takeKeyboard()
{
    m_keyboard = m_keyboard ? m_keyboard : new PopUpKeyboard(*this, *m_text, findChildren<QPushButton *>());
    return m_keyboard->take();
}

QList<LinkMatch> KivNotificationWindow::scanStringForLinks(const QString &text)
{
    return findLinks(text);
}

void KivNotificationWindow::clickedOnLink(const QUrl &link)
{
    m_notification->setMessageRepeat(0);
    QTimer::singleShot(linkCloseDelay, Qt::PreciseTimer, this, &KivNotificationWindow::close);
    if (isOpenableLink(link)) {
        Workspace::openUrl(link.toString(QUrl::FullyEncoded));
    } else {
        qCDebug(popUpLog) << "a link is not opened:" << link.toString(QUrl::FullyEncoded);
    }
}

void KivNotificationWindow::closeEvent(QCloseEvent *event)
{
    event->accept();
    close();
}

void KivNotificationWindow::moveEvent(QMoveEvent *event)
{
    QWidget::moveEvent(event);
    tellOfMove();
}

void KivNotificationWindow::watchScreens()
{
    const auto screensChanged = [this] {
        m_screensChanged = true;
        tellOfMove();
    };
    for (QScreen *screen : QGuiApplication::screens()) {
        watchScreen(screen);
    }
    connect(qGuiApp, &QGuiApplication::screenAdded, this, [this, screensChanged](QScreen *screen) {
        watchScreen(screen);
        screensChanged();
    });
    connect(qGuiApp, &QGuiApplication::screenRemoved, this, screensChanged);
    connect(qGuiApp, &QGuiApplication::primaryScreenChanged, this, screensChanged);
    connect(m_text, &KivTextView::fontChanged, this, screensChanged);
}

void KivNotificationWindow::watchScreen(QScreen *screen)
{
    // Nobody moves a window when a screen changes its size or its scale.
    const auto screenChanged = [this] {
        m_screensChanged = true;
        tellOfMove();
    };
    connect(screen, &QScreen::geometryChanged, this, screenChanged);
    connect(screen, &QScreen::logicalDotsPerInchChanged, this, screenChanged);
}

void KivNotificationWindow::tellOfMove()
{
    if (!m_shown || m_closed || m_moveToTell) {
        return;
    }
    // Later: the delegate may close this window, which Qt is at work on now, and several changes are told as one.
    m_moveToTell = true;
    QTimer::singleShot(0, this, [this] {
        m_moveToTell = false;
        const bool screensChanged = std::exchange(m_screensChanged, false);
        if (screensChanged && !m_closed) {
            layOutAnew();
        }
        const bool tell = screensChanged || !isWhereItWasPut();
        if (tell && m_delegate && !m_closed) {
            m_delegate->windowDidMove(*this);
        }
    });
}

bool KivNotificationWindow::isWhereItWasPut() const
{
    return geometry().topLeft() == MainScreen::toQt({m_frame.origin.x, m_frame.origin.y + m_frame.size.height});
}
