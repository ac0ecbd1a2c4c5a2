#include "notify/popup/keyboard/PopUpKeyboard.h"

#include "notify/popup/KivTextView.h"
#include "notify/popup/keyboard/FocusRing.h"
#include "notify/popup/keyboard/KeyboardTour.h"
#include "platform/LogCategories.h"

#include <QAccessible>
#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPushButton>
#include <QScrollBar>
#include <QWindow>

#include <algorithm>
#include <utility>

PopUpKeyboard::PopUpKeyboard(QWidget &popUp, KivTextView &text, QList<QPushButton *> buttons)
    : QObject(&popUp)
    , m_popUp(popUp)
    , m_text(text)
    , m_buttons(std::move(buttons))
    , m_ring(new FocusRing(&popUp))
{
    m_popUp.installEventFilter(this);
    m_text.installEventFilter(this);
    for (QPushButton *const each : m_buttons) {
        each->installEventFilter(this);
    }
    connect(m_text.verticalScrollBar(), &QScrollBar::valueChanged, this, &PopUpKeyboard::drawRing);
}

bool PopUpKeyboard::take()
{
    QWindow *const window = m_popUp.windowHandle();
    if (!window || !m_popUp.isVisible() || !window->setKeyboardGrabEnabled(true)) {
        qCDebug(popUpLog, "it does not get the keyboard");
        return false;
    }
    window->setMouseGrabEnabled(true); // Without it, a click elsewhere leaves the keyboard here.
    const bool isNew = !m_window;
    m_window = window;
    m_window->installEventFilter(this);
    if (isNew) {
        qCDebug(popUpLog, "it has the keyboard");
        m_isClickElsewhere = false;
        m_popUp.setAttribute(Qt::WA_KeyboardFocusChange); // Or styles draw a button as focused at the second stop only.
        goTo(0);
    }
    return true;
}

void PopUpKeyboard::giveBack()
{
    QWindow *const window = std::exchange(m_window, nullptr);
    if (!window) {
        return;
    }
    qCDebug(popUpLog, "it gives the keyboard back");
    window->removeEventFilter(this);
    if (!QApplication::activePopupWidget()) { // A menu of ours that has come has taken both from it.
        window->setKeyboardGrabEnabled(false);
        window->setMouseGrabEnabled(false);
    }
    m_text.setFocusedLink(std::nullopt);
    if (QWidget *const focused = m_popUp.focusWidget()) {
        focused->clearFocus();
    }
    m_ring->hide();
}

bool PopUpKeyboard::eventFilter(QObject *watched, QEvent *event)
{
    if (!m_window) {
        return false;
    }
    switch (event->type()) {
    case QEvent::KeyPress:
        // Here and not at the widgets, of which some would take keys for themselves.
        if (watched == m_window) {
            handleKey(static_cast<const QKeyEvent &>(*event));
            return true;
        }
        return false;
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
        return watched == m_window && handleMouse(static_cast<const QMouseEvent &>(*event));
    case QEvent::FocusIn:
        if (watched == m_window) { // What Qt tells of it meanwhile is the text and not the link.
            QMetaObject::invokeMethod(this, &PopUpKeyboard::tellReadersOfLink, Qt::QueuedConnection);
        }
        return false;
    case QEvent::FocusOut:
        if (watched == m_window) {
            giveBack();
        }
        return false;
    case QEvent::Hide:
        if (watched == &m_popUp) {
            giveBack();
        }
        return false;
    case QEvent::Move:
    case QEvent::Resize:
        QMetaObject::invokeMethod(this, &PopUpKeyboard::drawRing, Qt::QueuedConnection);
        return false;
    default:
        return false;
    }
}

void PopUpKeyboard::handleKey(const QKeyEvent &event)
{
    const TourKey key = tourKey(event.key(), event.modifiers());
    switch (key) {
    case TourKey::Nothing:
        return;
    case TourKey::Next:
    case TourKey::Previous:
        goTo(stopAfter(m_stop, key, stops()));
        return;
    case TourKey::PageUp:
        m_text.verticalScrollBar()->triggerAction(QAbstractSlider::SliderPageStepSub);
        return;
    case TourKey::PageDown:
        m_text.verticalScrollBar()->triggerAction(QAbstractSlider::SliderPageStepAdd);
        return;
    case TourKey::Press:
        press();
        return;
    case TourKey::GiveBack:
        giveBack();
        return;
    }
}

/// A click elsewhere is over before the mouse is let go of, so that nobody gets the second half of it.
bool PopUpKeyboard::handleMouse(const QMouseEvent &event)
{
    if (event.type() == QEvent::MouseButtonPress) {
        m_isClickElsewhere = !m_popUp.rect().contains(event.position().toPoint());
        return m_isClickElsewhere;
    }
    if (std::exchange(m_isClickElsewhere, false)) {
        giveBack();
        return true;
    }
    return false;
}

int PopUpKeyboard::stops() const
{
    return static_cast<int>(m_text.links().size() + m_buttons.size());
}

/// Null when the keys are at a link.
QPushButton *PopUpKeyboard::button() const
{
    return m_buttons.value(m_stop - m_text.links().size());
}

void PopUpKeyboard::goTo(int stop)
{
    m_stop = stop;
    QPushButton *const chosen = button();
    m_text.setFocusedLink(chosen ? std::nullopt : std::optional(m_stop));
    if (chosen) {
        chosen->setFocus(Qt::TabFocusReason);
    } else {
        m_text.setFocus(Qt::TabFocusReason);
        m_text.showLink(m_text.links().at(m_stop));
        tellReadersOfLink();
    }
    drawRing();
}

void PopUpKeyboard::press()
{
    QPushButton *const chosen = button();
    const QUrl address = chosen ? QUrl() : m_text.links().at(m_stop).address;
    giveBack();
    if (chosen) {
        chosen->click();
    } else {
        Q_EMIT m_text.anchorClicked(address);
    }
}

void PopUpKeyboard::drawRing()
{
    if (!m_window) {
        return;
    }
    m_stop = std::min(m_stop, stops() - 1); // The text is made anew with other colours.
    if (const QPushButton *const chosen = button()) {
        m_ring->showAround(QRect(chosen->mapTo(&m_popUp, QPoint()), chosen->size()));
        return;
    }
    const QWidget &viewport = *m_text.viewport();
    const QRegion place = m_text.regionOf(m_text.links().at(m_stop)) & viewport.rect();
    m_ring->showAround(place.translated(viewport.mapTo(&m_popUp, QPoint())));
}

void PopUpKeyboard::tellReadersOfLink() const
{
    QAccessibleInterface *const text =
        QAccessible::isActive() && m_window && !button() ? QAccessible::queryAccessibleInterface(&m_text) : nullptr;
    if (QAccessibleInterface *const link = text ? text->child(m_stop) : nullptr) {
        QAccessibleEvent focus(link, QAccessible::Focus);
        QAccessible::updateAccessibility(&focus);
    }
}
