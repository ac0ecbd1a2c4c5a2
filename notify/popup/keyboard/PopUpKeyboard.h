#pragma once

#include <QList>
#include <QObject>
#include <QPointer>

class FocusRing;
class KivTextView;
class QKeyEvent;
class QMouseEvent;
class QPushButton;
class QWindow;

/// A pop-up's hold of the keyboard, which it takes when its user has asked for that and at no other time. Keyboard and
/// mouse are grabbed, as by a menu: the window that has the focus keeps it, and gets its keys again once the hold ends,
/// by Escape, a press of something in the pop-up, a click elsewhere, or the pop-up's end. Notify/popup's own; a child
/// of the pop-up. Main thread only.
class PopUpKeyboard final : public QObject
{
    Q_OBJECT

public:
    /// The stops of the keys are the links of `text` and then `buttons`, of which there is at least one; all are
    /// descendants of `popUp`.
    PopUpKeyboard(QWidget &popUp, KivTextView &text, QList<QPushButton *> buttons);

    /// Takes the keyboard to the first stop; where it is, when the pop-up has it already. False when the pop-up is not
    /// shown or another program has the keyboard for itself.
    bool take();

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    [[nodiscard]] int stops() const;
    [[nodiscard]] QPushButton *button() const;
    void giveBack();
    void handleKey(const QKeyEvent &event);
    [[nodiscard]] bool handleMouse(const QMouseEvent &event);
    void goTo(int stop);
    void press();
    void drawRing();
    void tellReadersOfLink() const;

    QWidget &m_popUp;
    KivTextView &m_text;
    const QList<QPushButton *> m_buttons;
    FocusRing *const m_ring;    ///< The pop-up's.
    QPointer<QWindow> m_window; ///< While it has the keyboard.
    int m_stop = 0;
    bool m_isClickElsewhere = false; ///< One has begun and has not ended.
};
