#include "notify/popup/accessible/AccessibleMessage.h"

#include "notify/popup/KivTextView.h"
#include "notify/popup/accessible/AccessibleLink.h"

#include <QScrollBar>

void AccessibleMessage::makeFor(KivTextView &view)
{
    QAccessible::registerAccessibleInterface(new AccessibleMessage(view));
}

AccessibleMessage::AccessibleMessage(KivTextView &view)
    : QAccessibleWidget(&view, QAccessible::StaticText)
{
}

AccessibleMessage::~AccessibleMessage()
{
    for (const QAccessible::Id link : m_links) {
        QAccessible::deleteAccessibleInterface(link);
    }
}

KivTextView &AccessibleMessage::view() const
{
    return *static_cast<KivTextView *>(widget());
}

int AccessibleMessage::childCount() const
{
    return static_cast<int>(view().links().size());
}

QAccessibleInterface *AccessibleMessage::child(int index) const
{
    if (index < 0 || index >= childCount()) {
        return nullptr;
    }
    while (static_cast<int>(m_links.size()) <= index) {
        auto *link = new AccessibleLink(view(), static_cast<int>(m_links.size()));
        m_links.push_back(QAccessible::registerAccessibleInterface(link));
    }
    return QAccessible::accessibleInterface(m_links[static_cast<std::size_t>(index)]);
}

int AccessibleMessage::indexOfChild(const QAccessibleInterface *child) const
{
    const auto *link = dynamic_cast<const AccessibleLink *>(child);
    return link && link->parent() == this ? link->index() : -1;
}

QString AccessibleMessage::text(QAccessible::Text kind) const
{
    return kind == QAccessible::Name ? view().shownText() : QAccessibleWidget::text(kind);
}

void *AccessibleMessage::interface_cast(QAccessible::InterfaceType type)
{
    return type == QAccessible::TextInterface ? static_cast<QAccessibleTextInterface *>(this)
                                              : QAccessibleWidget::interface_cast(type);
}

void AccessibleMessage::selection(int, int *start, int *end) const
{
    *start = 0;
    *end = 0;
}

QString AccessibleMessage::text(int start, int end) const
{
    return view().shownText().mid(start, end - start);
}

int AccessibleMessage::characterCount() const
{
    return static_cast<int>(view().shownText().size());
}

QRect AccessibleMessage::characterRect(int offset) const
{
    return view().placeOf(offset).united(view().placeOf(offset + 1));
}

int AccessibleMessage::offsetAtPoint(const QPoint &point) const
{
    return view().cursorForPosition(view().viewport()->mapFromGlobal(point)).position();
}

void AccessibleMessage::scrollToSubstring(int start, int)
{
    QScrollBar *const bar = view().verticalScrollBar();
    bar->setValue(bar->value() + view().viewport()->mapFromGlobal(view().placeOf(start).topLeft()).y());
}

QString AccessibleMessage::attributes(int, int *start, int *end) const
{
    *start = 0;
    *end = characterCount();
    return {};
}
