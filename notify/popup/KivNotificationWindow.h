#pragma once

#include "notify/popup/NotificationWindowDelegate.h"
#include "notify/record/KivNotification.h"
#include "notify/text/LinkScan.h"
#include "platform/Geometry.h"

#include <QTimer>
#include <QVariantAnimation>
#include <QWidget>

#include <memory>
#include <optional>

namespace TopEdge
{
class Question;
}

class KivNotificationView;
class KivTextView;
class PopUpKeyboard;
class QLabel;
class QPushButton;

/// The pop-up that shows a support message. It floats above the other windows and never takes the keyboard by itself.
/// Made on the heap, without a parent; once shown it deletes itself after it has closed, in a later iteration of the
/// event loop. It is shown once. When a screen has changed its size or its scale, it lays itself out anew before it
/// tells its delegate: all of its buttons are on the main screen if it is put where it belongs. Main thread only.
class KivNotificationWindow final : public QWidget
{
    Q_OBJECT

public:
    /// Builds the pop-up; does not show it. Never null record.
    explicit KivNotificationWindow(std::shared_ptr<KivNotification> record);
    ~KivNotificationWindow() override;

    [[nodiscard]] const std::shared_ptr<KivNotification> &notification() const noexcept { return m_notification; }

    /// Null for none. Must outlive the pop-up, or be taken back.
    void setDelegate(NotificationWindowDelegate *delegate) noexcept { m_delegate = delegate; }

    /// How far from the main screen's top something reaches that the pop-up would cover there, when it was last laid
    /// out.
    [[nodiscard]] float topReach() const noexcept { return m_topReach; }

    /// Places (bottom-left corner, points of the main screen), shows, fades in, arms the auto-close timer: theTimeout
    /// in seconds, 0 for the default of 15, negative for never.
    void showAtScreenPoint(NSPoint origin, std::int32_t theTimeout);

    /// In points, origin bottom-left of the main screen (platform/Geometry.h). Exactly what it was last set to, while
    /// nobody else has moved it and the main screen has kept its height.
    [[nodiscard]] NSRect frame() const;
    void setFrame(const NSRect &frame);

    /// The frame of the screen on which most of it lies, in the same coordinates; nothing when it lies on none.
    [[nodiscard]] std::optional<NSRect> screenFrame() const;

    void fadeIn();
    /// Closes at its end. Nothing of the agent's uses it: every close is at once.
    void fadeOut();
    /// The end of one of the fades; another animation's is ignored.
    void animationDidEnd(const QVariantAnimation *animation);

    /// Stops fade and timer, tells the delegate, hides, and deletes itself later. Does nothing the second time.
    void close();
    void dealloc_animation();
    void dealloc_timer();

    /// The button "Close", and the time-out: one repeat less, unguarded. None left becomes 4294967295, so that such a
    /// message stays in the queue.
    void onCloseButton();
    void remindMeLaterPressed();
    void onDontRemindMeButton();

    /// Gives it the keyboard, as its user has asked for; see PopUpKeyboard. False when it cannot have it.
    bool takeKeyboard();

    [[nodiscard]] static QList<LinkMatch> scanStringForLinks(const QString &text);

protected:
    void closeEvent(QCloseEvent *event) override;
    void moveEvent(QMoveEvent *event) override;

private:
    enum class Fade { In, Out };

    [[nodiscard]] NSSize contentSize(NSSize screen) const;
    /// For the main screen as it is; its top-left corner stays.
    void layOut(TopEdge::Question &topEdge);
    /// The same once it is shown.
    void layOutAnew();
    void present();
    void startFade(Fade direction);
    void clickedOnLink(const QUrl &link);
    void watchScreens();
    void watchScreen(QScreen *screen);
    void tellOfMove();
    [[nodiscard]] bool isWhereItWasPut() const;

    std::shared_ptr<KivNotification> m_notification;
    // Children.
    KivNotificationView *m_view = nullptr;
    QLabel *m_icon = nullptr;
    QLabel *m_title = nullptr; ///< Null for none, as the buttons.
    KivTextView *m_text = nullptr;
    QPushButton *m_remindMeLater = nullptr;
    QPushButton *m_dontRemindMe = nullptr;
    QPushButton *m_close = nullptr;
    PopUpKeyboard *m_keyboard = nullptr;      ///< A child, once it has been asked for.
    QTimer *m_timer = nullptr;                ///< A child.
    QVariantAnimation *m_animation = nullptr; ///< A child.
    bool m_fadingOut = false;

    NotificationWindowDelegate *m_delegate = nullptr;
    NSRect m_frame; ///< Where it was last put.
    float m_topReach = 0;
    qreal m_scale = 1; ///< Of the screen, when its window was made.
    bool m_shown = false;
    bool m_closed = false;
    bool m_screensChanged = false;
    bool m_moveToTell = false;
};
