#include "platform/linux/accessibility/AccessibleItem.h"

#include "platform/MainScreen.h"
#include "platform/StatusItem.h"
#include "platform/linux/accessibility/AccessibleApplication.h"

#include <QApplication>

#include <utility>

namespace
{

/// Nothing is to be made for readers while there are none, or before the item is complete.
bool isHeard(StatusItem &item)
{
    return QAccessible::isActive() && QAccessible::queryAccessibleInterface(&item);
}

void tell(StatusItem &item, QAccessible::Event what)
{
    if (isHeard(item)) {
        QAccessibleEvent event(&item, what);
        QAccessible::updateAccessibility(&event);
    }
}

} // namespace

void AccessibleItem::makeFor(StatusItem &item, std::function<void()> showMenu)
{
    QAccessible::registerAccessibleInterface(new AccessibleItem(item, std::move(showMenu)));
    AccessibleApplication::add(&item);
    tell(item, QAccessible::ObjectCreated);
}

void AccessibleItem::tellOfChange(StatusItem &item)
{
    tell(item, QAccessible::NameChanged);
    tell(item, QAccessible::DescriptionChanged);
    if (isHeard(item)) {
        QAccessible::State changed;
        changed.disabled = true;
        QAccessibleStateChangeEvent event(&item, changed);
        QAccessible::updateAccessibility(&event);
    }
}

void AccessibleItem::tellOfFocus(StatusItem &item, bool focused)
{
    if (auto *interface = static_cast<AccessibleItem *>(QAccessible::queryAccessibleInterface(&item))) {
        interface->m_focused = focused;
    }
    if (focused) {
        tell(item, QAccessible::Focus);
    }
}

void AccessibleItem::tellOfEnd(StatusItem &item)
{
    tell(item, QAccessible::ObjectDestroyed);
}

AccessibleItem::AccessibleItem(StatusItem &item, std::function<void()> showMenu)
    : QAccessibleObject(&item)
    , m_showMenu(std::move(showMenu))
{
}

StatusItem &AccessibleItem::item() const
{
    return *static_cast<StatusItem *>(object());
}

QAccessibleInterface *AccessibleItem::parent() const
{
    return QAccessible::queryAccessibleInterface(qApp);
}

QString AccessibleItem::text(QAccessible::Text kind) const
{
    if (kind == QAccessible::Name) {
        return item().title().isEmpty() ? item().toolTip() : item().title();
    }
    return kind == QAccessible::Description ? item().stateText() : QString();
}

QRect AccessibleItem::rect() const
{
    const std::optional<NSRect> frame = item().frame();
    if (!frame) {
        return {};
    }
    const QPoint corner = MainScreen::toQt({frame->origin.x, frame->origin.y + frame->size.height});
    return {corner, QSize(static_cast<int>(frame->size.width), static_cast<int>(frame->size.height))};
}

QAccessible::State AccessibleItem::state() const
{
    QAccessible::State state;
    state.disabled = !item().isEnabled();
    state.focusable = true;
    state.focused = m_focused;
    state.hasPopup = true;
    return state;
}

void *AccessibleItem::interface_cast(QAccessible::InterfaceType type)
{
    return type == QAccessible::ActionInterface ? static_cast<QAccessibleActionInterface *>(this) : nullptr;
}

QStringList AccessibleItem::actionNames() const
{
    return item().isEnabled() ? QStringList{pressAction(), showMenuAction()} : QStringList();
}

void AccessibleItem::doAction(const QString &name)
{
    if (actionNames().contains(name)) {
        m_showMenu();
    }
}
