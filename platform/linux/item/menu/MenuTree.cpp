#include "platform/linux/item/menu/MenuTree.h"

#include <QMenu>

#include <algorithm>

namespace
{

/// An underscore stands before the letter that chooses the entry, where titles here have an ampersand.
QString busLabel(const QString &title)
{
    QString label;
    for (qsizetype i = 0; i < title.size(); ++i) {
        const QChar character = title[i];
        if (character == QLatin1Char('_')) {
            label += QStringLiteral("__");
        } else if (character != QLatin1Char('&')) {
            label += character;
        } else if (i + 1 < title.size() && title[i + 1] == QLatin1Char('&')) {
            label += title[++i];
        } else {
            label += QLatin1Char('_');
        }
    }
    return label;
}

bool isSameEntry(const MenuTree &one, const MenuTree &other)
{
    return one.label == other.label && one.isSeparator == other.isSeparator && one.hasSubmenu == other.hasSubmenu;
}

void numberChildren(const MenuTree &past, MenuTree &present, int &lastId, MenuChanges &changes)
{
    bool hasOthers = past.children.size() != present.children.size();
    for (std::size_t i = 0; i < present.children.size(); ++i) {
        MenuTree &child = present.children[i];
        const MenuTree *before = i < past.children.size() ? &past.children[i] : nullptr;
        if (!before || !isSameEntry(*before, child)) {
            hasOthers = true;
            child.id = ++lastId;
            MenuChanges ofSomethingNew;
            numberChildren(MenuTree(), child, lastId, ofSomethingNew);
            continue;
        }
        child.id = before->id;
        if (menuProperties(*before) != menuProperties(child)) {
            changes.entries.push_back(child.id);
        }
        numberChildren(*before, child, lastId, changes);
    }
    if (hasOthers) {
        changes.layouts.push_back(present.id);
    }
}

} // namespace

MenuTree readMenuTree(const QMenu &menu, Choice choice)
{
    MenuTree tree;
    tree.hasSubmenu = true;
    const QList<QAction *> actions = menu.actions();
    for (const QAction *action : actions) {
        MenuTree child;
        if (action->menu()) {
            child = readMenuTree(*action->menu(), action->isEnabled() ? choice : Choice::Barred);
        }
        child.label = busLabel(action->text());
        child.isSeparator = action->isSeparator();
        child.isEnabled = action->isEnabled() && choice == Choice::Possible;
        child.isCheckable = action->isCheckable();
        child.isChecked = action->isChecked();
        tree.children.push_back(std::move(child));
    }
    return tree;
}

MenuChanges numberMenuTree(const MenuTree &past, MenuTree &present, int &lastId)
{
    MenuChanges changes;
    numberChildren(past, present, lastId, changes);
    return changes;
}

const MenuTree *findInMenuTree(const MenuTree &tree, int id)
{
    if (tree.id == id) {
        return &tree;
    }
    for (const MenuTree &child : tree.children) {
        if (const MenuTree *found = findInMenuTree(child, id)) {
            return found;
        }
    }
    return nullptr;
}

QVariantMap menuProperties(const MenuTree &entry)
{
    QVariantMap properties;
    if (entry.isSeparator) {
        properties.insert(QStringLiteral("type"), QStringLiteral("separator"));
        return properties;
    }
    if (entry.id != 0 || !entry.label.isEmpty()) {
        properties.insert(QStringLiteral("label"), entry.label);
        properties.insert(QStringLiteral("enabled"), entry.isEnabled);
    }
    if (entry.isCheckable) {
        properties.insert(QStringLiteral("toggle-type"), QStringLiteral("checkmark"));
        properties.insert(QStringLiteral("toggle-state"), entry.isChecked ? 1 : 0);
    }
    if (entry.hasSubmenu) {
        properties.insert(QStringLiteral("children-display"), QStringLiteral("submenu"));
    }
    return properties;
}
