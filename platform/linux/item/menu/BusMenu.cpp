#include "platform/linux/item/menu/BusMenu.h"

#include "BusMenuAdaptor.h"
#include "platform/LogCategories.h"

#include <QActionEvent>
#include <QGuiApplication>

#include <utility>

namespace
{

QVariantMap propertiesOf(const MenuTree &entry, const QStringList &names)
{
    const QVariantMap all = menuProperties(entry);
    if (names.isEmpty()) {
        return all;
    }
    QVariantMap asked;
    for (auto it = all.cbegin(); it != all.cend(); ++it) {
        if (names.contains(it.key())) {
            asked.insert(it.key(), it.value());
        }
    }
    return asked;
}

/// A negative depth is all levels.
BusMenuLayout layoutOf(const MenuTree &entry, int depth, const QStringList &names)
{
    BusMenuLayout layout{entry.id, propertiesOf(entry, names), {}};
    if (depth != 0) {
        for (const MenuTree &child : entry.children) {
            layout.children.append(layoutOf(child, depth < 0 ? depth : depth - 1, names));
        }
    }
    return layout;
}

void appendEntries(const MenuTree &entry, const QStringList &names, BusMenuEntries &entries)
{
    entries.append({entry.id, propertiesOf(entry, names)});
    for (const MenuTree &child : entry.children) {
        appendEntries(child, names, entries);
    }
}

QAction *actionIn(const QMenu &menu, const MenuTree &tree, int id)
{
    const QList<QAction *> actions = menu.actions();
    for (std::size_t i = 0; i < tree.children.size(); ++i) {
        QAction *const action = actions.value(static_cast<qsizetype>(i));
        if (tree.children[i].id == id) {
            return action;
        }
        if (QAction *found = action && action->menu() ? actionIn(*action->menu(), tree.children[i], id) : nullptr) {
            return found;
        }
    }
    return nullptr;
}

} // namespace

BusMenu::BusMenu(QMenu &menu)
    : m_object(*new BusMenuAdaptor(this), [this] { return std::exchange(m_refusal, {}); })
    , m_menu(&menu)
{
    registerBusMenuTypes();
    connect(this, &BusMenu::LayoutUpdated, this, [this](uint revision, int parent) {
        m_object.send(QStringLiteral("LayoutUpdated"), {revision, parent});
    });
    connect(this, &BusMenu::ItemsPropertiesUpdated, this,
            [this](const BusMenuEntries &updated, const BusMenuRemovals &removed) {
                m_object.send(QStringLiteral("ItemsPropertiesUpdated"),
                              {QVariant::fromValue(updated), QVariant::fromValue(removed)});
            });
    catchUp();
}

void BusMenu::setChoice(Choice choice)
{
    if (m_choice != choice) {
        m_choice = choice;
        catchUp();
    }
}

QString BusMenu::textDirection() const
{
    return QGuiApplication::isRightToLeft() ? QStringLiteral("rtl") : QStringLiteral("ltr");
}

void BusMenu::watch(QMenu &menu)
{
    menu.installEventFilter(this);
    const QList<QAction *> actions = menu.actions();
    for (const QAction *action : actions) {
        if (action->menu()) {
            watch(*action->menu());
        }
    }
}

bool BusMenu::eventFilter(QObject *, QEvent *event)
{
    const bool isChange = event->type() == QEvent::ActionAdded || event->type() == QEvent::ActionRemoved ||
                          event->type() == QEvent::ActionChanged;
    // Later: changes come in droves, and a submenu that is filled anew is often the same afterwards.
    if (isChange && !m_isBehind) {
        m_isBehind = true;
        QMetaObject::invokeMethod(this, &BusMenu::catchUp, Qt::QueuedConnection);
    }
    return false;
}

bool BusMenu::catchUp()
{
    m_isBehind = false;
    MenuTree present;
    if (m_menu) {
        present = readMenuTree(*m_menu, m_choice);
        watch(*m_menu);
    }
    const MenuChanges changes = numberMenuTree(m_tree, present, m_lastId);
    const MenuTree past = std::exchange(m_tree, std::move(present));
    if (!changes.layouts.empty()) {
        ++m_revision;
        Q_EMIT LayoutUpdated(m_revision, changes.layouts.size() == 1 ? changes.layouts.front() : 0);
    }
    BusMenuEntries updated;
    for (const int id : changes.entries) {
        updated.append({id, changedProperties(*findInMenuTree(past, id), *findInMenuTree(m_tree, id))});
    }
    if (!updated.isEmpty()) {
        Q_EMIT ItemsPropertiesUpdated(updated, {});
    }
    return changes != MenuChanges();
}

bool BusMenu::prepareToShow()
{
    // A menu that is open has been made ready, and must not change under the mouse. And what has been chosen is carried
    // out from the event loop: its entry must live until then, and a menu that is filled anew has others.
    if (m_menu && !m_menu->isVisible() && !m_isChoosing) {
        Q_EMIT m_menu->aboutToShow();
    }
    return catchUp();
}

QAction *BusMenu::actionOf(int id) const
{
    return m_menu ? actionIn(*m_menu, m_tree, id) : nullptr;
}

void BusMenu::refuse(int id)
{
    m_refusal = QStringLiteral("There is no entry %1").arg(id);
}

void BusMenu::refuseIfAll(const QList<int> &unknown, qsizetype asked)
{
    if (!unknown.isEmpty() && unknown.size() == asked) {
        refuse(unknown.first());
    }
}

uint BusMenu::GetLayout(int parentId, int recursionDepth, const QStringList &propertyNames, BusMenuLayout &layout)
{
    catchUp();
    if (const MenuTree *entry = findInMenuTree(m_tree, parentId)) {
        layout = layoutOf(*entry, recursionDepth, propertyNames);
    } else {
        refuse(parentId);
    }
    return m_revision;
}

BusMenuEntries BusMenu::GetGroupProperties(const QList<int> &ids, const QStringList &propertyNames)
{
    catchUp();
    BusMenuEntries entries;
    if (ids.isEmpty()) {
        appendEntries(m_tree, propertyNames, entries);
    }
    for (const int id : ids) {
        if (const MenuTree *entry = findInMenuTree(m_tree, id)) {
            entries.append({id, propertiesOf(*entry, propertyNames)});
        }
    }
    return entries;
}

QDBusVariant BusMenu::GetProperty(int id, const QString &name)
{
    catchUp();
    const MenuTree *entry = findInMenuTree(m_tree, id);
    const QVariant value = entry ? menuProperties(*entry).value(name) : QVariant();
    if (!entry) {
        refuse(id);
    } else if (!value.isValid()) {
        m_refusal = QStringLiteral("Entry %1 has no property %2").arg(id).arg(name);
    }
    return QDBusVariant(value);
}

void BusMenu::Event(int id, const QString &eventId, const QDBusVariant &, uint)
{
    if (!handleEvent(id, eventId)) {
        refuse(id);
    }
}

QList<int> BusMenu::EventGroup(const BusMenuEvents &events)
{
    QList<int> unknown;
    for (const BusMenuEvent &event : events) {
        if (!handleEvent(event.id, event.event)) {
            unknown.append(event.id);
        }
    }
    refuseIfAll(unknown, events.size());
    return unknown;
}

bool BusMenu::handleEvent(int id, const QString &event)
{
    catchUp();
    const MenuTree *entry = findInMenuTree(m_tree, id);
    if (!entry) {
        return false;
    }
    if (event == QStringLiteral("opened")) {
        prepareToShow();
    } else if (event == QStringLiteral("clicked") && entry->isEnabled && !entry->isSeparator && !entry->hasSubmenu) {
        qCDebug(itemLog) << "chosen where the host draws the menu:" << entry->label;
        if (QAction *action = actionOf(id)) {
            action->trigger();
            m_isChoosing = true;
            QMetaObject::invokeMethod(
                this, [this] { m_isChoosing = false; }, Qt::QueuedConnection);
        }
    }
    return true;
}

bool BusMenu::AboutToShow(int id)
{
    catchUp();
    if (!findInMenuTree(m_tree, id)) {
        refuse(id);
        return false;
    }
    return prepareToShow();
}

QList<int> BusMenu::AboutToShowGroup(const QList<int> &ids, QList<int> &idErrors)
{
    catchUp();
    QList<int> known;
    for (const int id : ids) {
        (findInMenuTree(m_tree, id) ? known : idErrors).append(id);
    }
    refuseIfAll(idErrors, ids.size());
    return !known.isEmpty() && prepareToShow() ? known : QList<int>();
}
