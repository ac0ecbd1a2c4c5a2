#include "platform/linux/workarounds/MenuMouse.h"

#include "platform/MainScreen.h"

#include <QApplication>
#include <QEnterEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QPointer>

namespace
{

/// After so many moves since the mouse has entered it, a menu believes that it has moved.
constexpr int convincingMoves = 8;

} // namespace

void MenuMouse::follow()
{
    QCoreApplication *const application = QCoreApplication::instance();
    application->installEventFilter(new MenuMouse(application));
}

bool MenuMouse::eventFilter(QObject *watched, QEvent *event)
{
    switch (event->type()) {
    case QEvent::Show:
        if (qobject_cast<QMenu *>(watched)) {
            m_openings.insert(watched, {MainScreen::toQt(MainScreen::mouseLocation())});
        }
        break;
    case QEvent::Hide:
        m_openings.remove(watched);
        break;
    case QEvent::Enter:
        if (auto *menu = qobject_cast<QMenu *>(watched)) {
            mouseEntered(*menu, *static_cast<QEnterEvent *>(event));
        }
        break;
    case QEvent::MouseMove:
    case QEvent::MouseButtonPress:
    // As two clicks on one place soon after each other end, though the menu was closed and opened in between.
    case QEvent::MouseButtonDblClick:
        if (auto *menu = qobject_cast<QMenu *>(watched)) {
            const auto *mouse = static_cast<QMouseEvent *>(event);
            mouseMoved(*menu, mouse->position(), mouse->globalPosition());
        }
        break;
    default:
        break;
    }
    return false;
}

void MenuMouse::mouseEntered(QMenu &menu, const QEnterEvent &event)
{
    const auto opening = m_openings.find(&menu);
    if (opening == m_openings.end()) {
        return;
    }
    opening->hasMoved = false;
    // No move follows when the mouse has come to the very point where Qt saw it last. Queued: the menu comes first.
    const auto tell = [this, entered = QPointer<QMenu>(&menu), local = event.position(),
                       global = event.globalPosition()] {
        if (entered && entered->underMouse()) {
            mouseMoved(*entered, local, global);
        }
    };
    QMetaObject::invokeMethod(this, tell, Qt::QueuedConnection);
}

void MenuMouse::mouseMoved(QMenu &menu, QPointF local, QPointF global)
{
    const auto opening = m_openings.find(&menu);
    if (opening == m_openings.end() || opening->hasMoved) {
        return;
    }
    const QPoint way = global.toPoint() - opening->mouse;
    if (way.manhattanLength() <= QApplication::startDragDistance()) {
        return;
    }
    opening->hasMoved = true;
    for (int i = 0; i < convincingMoves; ++i) {
        QMouseEvent move(QEvent::MouseMove, local, global, Qt::NoButton, Qt::NoButton, Qt::NoModifier);
        QCoreApplication::sendEvent(&menu, &move);
    }
}
