#pragma once

#include <QString>
#include <QVariantMap>

#include <vector>

class QMenu;

/// A menu as it was at some time, with the numbers by which its entries are known outside. Rules only: no bus.
struct MenuTree {
    int id = 0; ///< 0 is the menu itself.
    QString label;
    bool isSeparator = false;
    bool isEnabled = true;
    bool isCheckable = false;
    bool isChecked = false;
    bool hasSubmenu = false;
    std::vector<MenuTree> children; ///< In the order of the menu, whose actions they stand for one by one.

    bool operator==(const MenuTree &) const = default;
};

/// What has changed from one tree to the next.
struct MenuChanges {
    std::vector<int> layouts; ///< Entries that have others below them now.
    std::vector<int> entries; ///< Entries that have been there before and look otherwise now.

    bool operator==(const MenuChanges &) const = default;
};

enum class Choice { Possible, Barred };

/// The menu as it is now, submenus included, without numbers; every entry disabled while choosing is barred,
/// and so is what stands below a disabled entry: a user could not get there.
[[nodiscard]] MenuTree readMenuTree(const QMenu &menu, Choice choice);

/// Numbers the entries of `present`. Those that stand where they stood in `past`, with the same title, keep their
/// number; all others get the next ones after `lastId`, so that no number ever means two entries.
MenuChanges numberMenuTree(const MenuTree &past, MenuTree &present, int &lastId);

/// The entry of that number; null when there is none.
[[nodiscard]] const MenuTree *findInMenuTree(const MenuTree &tree, int id);

/// The entry's properties on the bus. A separator is nothing else, and what no entry has is left out.
[[nodiscard]] QVariantMap menuProperties(const MenuTree &entry);
