#include "platform/linux/workarounds/MenuMouse.h"

#include "platform/MainScreen.h"

#include <QApplication>
#include <QMenu>
#include <QMouseEvent>

#include <memory>

namespace
{

/// After so many moves a menu believes the next one.
constexpr int movesBefore = 7;

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
        if (const auto opening = m_openings.find(watched); opening != m_openings.end()) {
            opening->hasMoved = false;
        }
        break;
    case QEvent::MouseMove:
        if (auto *menu = qobject_cast<QMenu *>(watched)) {
            mouseMoved(*menu, *static_cast<QMouseEvent *>(event));
        }
        break;
    default:
        break;
    }
    return false;
}

void MenuMouse::mouseMoved(QMenu &menu, const QMouseEvent &event)
{
    const auto opening = m_openings.find(&menu);
    const bool isInside = menu.rect().contains(event.position().toPoint());
    if (opening == m_openings.end() || opening->hasMoved || !isInside) {
        return;
    }
    const QPoint way = event.globalPosition().toPoint() - opening->mouse;
    if (way.manhattanLength() <= QApplication::startDragDistance()) {
        return;
    }
    opening->hasMoved = true;
    const std::unique_ptr<QMouseEvent> move(event.clone());
    for (int i = 0; i < movesBefore; ++i) {
        QCoreApplication::sendEvent(&menu, move.get());
    }
}
