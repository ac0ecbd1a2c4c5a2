#include "notify/popup/accessible/AccessibleLink.h"

#include "notify/popup/KivTextView.h"

#include <QUrl>
#include <QWindow>

AccessibleLink::AccessibleLink(KivTextView &view, int index)
    : m_view(&view)
    , m_index(index)
{
}

bool AccessibleLink::isValid() const
{
    return m_view && m_index < m_view->links().size();
}

QWindow *AccessibleLink::window() const
{
    return m_view ? m_view->window()->windowHandle() : nullptr;
}

QAccessibleInterface *AccessibleLink::parent() const
{
    return QAccessible::queryAccessibleInterface(m_view);
}

QString AccessibleLink::text(QAccessible::Text kind) const
{
    if (!isValid()) {
        return {};
    }
    const KivTextView::Link &link = m_view->links().at(m_index);
    switch (kind) {
    case QAccessible::Name:
        return m_view->shownText().mid(link.start, link.length);
    case QAccessible::Description:
        return link.address.toDisplayString();
    default:
        return {};
    }
}

QRect AccessibleLink::rect() const
{
    if (!isValid()) {
        return {};
    }
    const KivTextView::Link &link = m_view->links().at(m_index);
    return m_view->placeOf(link.start).united(m_view->placeOf(link.start + link.length));
}

QAccessible::State AccessibleLink::state() const
{
    QAccessible::State state;
    state.linked = true;
    state.focusable = true;
    state.focused = m_view && m_view->hasFocus() && m_view->focusedLink() == m_index;
    state.invisible = !isValid() || !m_view->isVisible();
    return state;
}

void *AccessibleLink::interface_cast(QAccessible::InterfaceType type)
{
    return type == QAccessible::ActionInterface ? static_cast<QAccessibleActionInterface *>(this) : nullptr;
}

void AccessibleLink::doAction(const QString &name)
{
    if (name == pressAction() && isValid()) {
        // Later: the reader waits for its answer.
        QMetaObject::invokeMethod(
            m_view,
            [view = m_view, address = m_view->links().at(m_index).address] { Q_EMIT view->anchorClicked(address); },
            Qt::QueuedConnection);
    }
}
