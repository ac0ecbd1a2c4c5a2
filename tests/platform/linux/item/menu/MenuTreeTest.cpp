#include "platform/linux/item/menu/MenuTree.h"

#include <QMenu>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace
{

using testing::ElementsAre;
using testing::IsEmpty;

MenuTree entry(const char *label, std::vector<MenuTree> children = {})
{
    MenuTree tree;
    tree.label = QLatin1String(label);
    tree.hasSubmenu = !children.empty();
    tree.children = std::move(children);
    return tree;
}

std::vector<int> idsBelow(const MenuTree &tree)
{
    std::vector<int> ids;
    for (const MenuTree &child : tree.children) {
        ids.push_back(child.id);
    }
    return ids;
}

class MenuTreeNumbers : public testing::Test
{
protected:
    MenuTreeNumbers() { static_cast<void>(numberMenuTree(MenuTree(), past, lastId)); }

    int lastId = 0;
    MenuTree past = entry("", {entry("Sizes", {entry("800 x 600"), entry("640 x 480")}), entry("About")});
};

TEST_F(MenuTreeNumbers, AreGivenFromOneOnAndTheMenuIsZero)
{
    EXPECT_EQ(past.id, 0);
    EXPECT_THAT(idsBelow(past), ElementsAre(1, 4));
    EXPECT_THAT(idsBelow(past.children[0]), ElementsAre(2, 3));
}

TEST_F(MenuTreeNumbers, StayWhereNothingHasChanged)
{
    MenuTree present = entry("", {entry("Sizes", {entry("800 x 600"), entry("640 x 480")}), entry("About")});
    EXPECT_EQ(numberMenuTree(past, present, lastId), MenuChanges());
    EXPECT_EQ(present, past);
}

TEST_F(MenuTreeNumbers, StayWithAnEntryThatLooksOtherwise)
{
    MenuTree present = past;
    present.children[0].children[1].isCheckable = true;
    present.children[1].isEnabled = false;
    const MenuChanges changes = numberMenuTree(past, present, lastId);
    EXPECT_THAT(changes.entries, ElementsAre(3, 4));
    EXPECT_THAT(changes.layouts, IsEmpty());
}

TEST_F(MenuTreeNumbers, AreNewForWhatStandsElsewhereOrIsCalledOtherwise)
{
    MenuTree present =
        entry("", {entry("Sizes", {entry("1024 x 768"), entry("640 x 480"), entry("About")}), entry("About")});
    const MenuChanges changes = numberMenuTree(past, present, lastId);
    EXPECT_THAT(idsBelow(present.children[0]), ElementsAre(5, 3, 6));
    EXPECT_THAT(idsBelow(present), ElementsAre(1, 4));
    EXPECT_THAT(changes.layouts, ElementsAre(1));
    EXPECT_THAT(changes.entries, IsEmpty());
}

TEST_F(MenuTreeNumbers, AreNeverUsedAgain)
{
    MenuTree without = entry("", {past.children[0]});
    EXPECT_THAT(numberMenuTree(past, without, lastId).layouts, ElementsAre(0));
    MenuTree again = entry("", {past.children[0], entry("About")});
    static_cast<void>(numberMenuTree(without, again, lastId));
    EXPECT_THAT(idsBelow(again), ElementsAre(1, 5));
    EXPECT_EQ(findInMenuTree(again, 4), nullptr);
    EXPECT_EQ(findInMenuTree(again, 3)->label, QStringLiteral("640 x 480"));
}

TEST(MenuTree, IsReadFromAMenuWithWhatIsBelowIt)
{
    QMenu menu;
    QMenu &sizes = *menu.addMenu(QStringLiteral("&Sizes of A_B && C"));
    QAction *const current = sizes.addAction(QStringLiteral("800 x 600"));
    current->setCheckable(true);
    current->setChecked(true);
    sizes.addAction(QStringLiteral("640 x 480"))->setEnabled(false);
    menu.addSeparator();

    const MenuTree tree = readMenuTree(menu, Choice::Possible);
    ASSERT_EQ(tree.children.size(), 2U);
    EXPECT_EQ(menuProperties(tree), (QVariantMap{{QStringLiteral("children-display"), QStringLiteral("submenu")}}));
    EXPECT_EQ(menuProperties(tree.children[0]),
              (QVariantMap{{QStringLiteral("label"), QStringLiteral("_Sizes of A__B & C")},
                           {QStringLiteral("enabled"), true},
                           {QStringLiteral("children-display"), QStringLiteral("submenu")}}));
    EXPECT_EQ(menuProperties(tree.children[0].children.at(0)),
              (QVariantMap{{QStringLiteral("label"), QStringLiteral("800 x 600")},
                           {QStringLiteral("enabled"), true},
                           {QStringLiteral("toggle-type"), QStringLiteral("checkmark")},
                           {QStringLiteral("toggle-state"), 1}}));
    EXPECT_EQ(
        menuProperties(tree.children[0].children.at(1)),
        (QVariantMap{{QStringLiteral("label"), QStringLiteral("640 x 480")}, {QStringLiteral("enabled"), false}}));
    EXPECT_EQ(menuProperties(tree.children[1]), (QVariantMap{{QStringLiteral("type"), QStringLiteral("separator")}}));

    const MenuTree barred = readMenuTree(menu, Choice::Barred);
    EXPECT_FALSE(barred.children[0].isEnabled);
    EXPECT_FALSE(barred.children[0].children.at(0).isEnabled);

    sizes.setEnabled(false);
    EXPECT_FALSE(readMenuTree(menu, Choice::Possible).children[0].children.at(0).isEnabled) << "out of reach";
}

} // namespace
