#include "menu/KIVMenuObj.h"

#include "menu/AnchorWindow.h"
#include "menu/AssociatedObjects.h"
#include "menu/LoginSession.h"
#include "menu/MenuCommands.h"
#include "platform/MainScreen.h"
#include "platform/images/ImageFile.h"
#include "tests/menu/ModeList.h"
#include "tests/platform/linux/item/FakeTray.h"
#include "tests/support/FakeInput.h"
#include "tests/support/LogLines.h"
#include "tests/support/MainDisplaySize.h"
#include "tests/support/ShownSign.h"
#include "tests/support/WaitUntil.h"

#include <Carbon/Carbon.h>
#include <QApplication>
#include <QDir>
#include <QFile>
#include <QJsonObject>
#include <QLabel>
#include <QMouseEvent>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTimer>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace
{

using namespace std::chrono_literals;

constexpr char resources[] = KIV_RESOURCES;

std::vector<std::uint32_t> procedureCalls;
KIVMenuObj *procedureMenu = nullptr;

bool sessionIsHidden = true;

void recordingProcedure(KIVMenuObj *menu, std::uint32_t code)
{
    procedureMenu = menu;
    procedureCalls.push_back(code);
}

/// The menu object over a bundle of the test's own.
class KIVMenuObjTest : public testing::Test
{
protected:
    KIVMenuObjTest()
    {
        procedureCalls.clear();
        sessionIsHidden = true;
        addImage("statuson");
        addImage("statusoff");
    }

    void addImage(const char *name)
    {
        const QString file = QLatin1String(name) + QStringLiteral(".tiff");
        EXPECT_TRUE(QFile::copy(QDir(QLatin1String(resources)).filePath(file), folder.filePath(file)));
    }

    void removeImage(const char *name)
    {
        EXPECT_TRUE(QFile::remove(folder.filePath(QLatin1String(name) + QStringLiteral(".tiff"))));
    }

    static QAction *find(QMenu &menu, std::uint32_t code)
    {
        for (QAction *item : menu.actions()) {
            if (!item->isSeparator() && item->data().toUInt() == code) {
                return item;
            }
            if (item->menu()) {
                if (QAction *found = find(*item->menu(), code)) {
                    return found;
                }
            }
        }
        return nullptr;
    }

    QAction *item(std::uint32_t code) { return find(*menu.menu(), code); }

    std::vector<std::uint32_t> enabledCodes()
    {
        std::vector<std::uint32_t> codes;
        for (const std::uint32_t code :
             {32790U, 32791U, 32792U, 32793U, 32794U, 32795U, 32796U, 32799U, 32800U, 32809U, 32810U, 0xFFFFFFFFU}) {
            if (item(code)->isEnabled()) {
                codes.push_back(code);
            }
        }
        return codes;
    }

    [[nodiscard]] qint64 imageKey() const { return menu.statusItem()->image().cacheKey(); }

    /// What the item shows, and what the image file of that name holds, as large as items are.
    [[nodiscard]] QImage shownPicture() const { return menu.statusItem()->image().pixmap(22).toImage(); }
    [[nodiscard]] QImage pictureIn(const char *name) const
    {
        return readImageFile(bundle.pathForResource(QLatin1String(name), QStringLiteral("tiff"))).pixmap(22).toImage();
    }

    /// Opens the menu as a press on the item does; `whileOpen` runs once it is on screen and must lead to its closing.
    void press(const std::function<void()> &whileOpen, std::optional<NSPoint> place = std::nullopt)
    {
        QTimer opened;
        QObject::connect(&opened, &QTimer::timeout, &opened, [&] {
            if (menu.menu()->isVisible()) {
                opened.stop();
                whileOpen();
            }
        });
        opened.start(1ms);
        menu.menuTrayPressed(place);
    }

    static std::vector<AnchorWindow *> anchorWindows()
    {
        std::vector<AnchorWindow *> windows;
        for (QWidget *widget : QApplication::topLevelWidgets()) {
            if (auto *anchor = qobject_cast<AnchorWindow *>(widget)) {
                windows.push_back(anchor);
            }
        }
        return windows;
    }

    /// Fills the resolution submenu with usable modes of these sizes.
    void fill(const std::vector<QSize> &sizes, QSize current = {})
    {
        QJsonArray modes;
        for (const QSize size : sizes) {
            modes.append(QJsonObject{{QStringLiteral("UsableForDesktopGUI"), 1},
                                     {QStringLiteral("Width"), size.width()},
                                     {QStringLiteral("Height"), size.height()}});
        }
        const CFArrayRef list = newModeList(modes);
        menu.fillResolutions(*item(32809), list, current);
        CFRelease(list);
    }

    QTemporaryDir folder;
    Bundle bundle{folder.path()};
    KIVMenuObj menu{bundle, {20ms, [] { return sessionIsHidden; }}};
};

/// What an alert says.
struct AlertTexts {
    QString title;
    QStringList labels;
    QStringList buttons;
};

/// Does something that may show an alert, and answers that. Nothing when none came.
std::optional<AlertTexts> alertFrom(const std::function<void()> &action, const std::function<void()> &whileUp = {})
{
    std::optional<AlertTexts> texts;
    QTimer look;
    QObject::connect(&look, &QTimer::timeout, &look, [&] {
        QWidget *alert = QApplication::activeModalWidget();
        if (!alert || texts) {
            return;
        }
        texts = AlertTexts{alert->accessibleName(), {}, {}};
        for (const QLabel *label : alert->findChildren<QLabel *>()) {
            texts->labels += label->text();
        }
        for (const QPushButton *button : alert->findChildren<QPushButton *>()) {
            texts->buttons += button->text();
        }
        if (whileUp) {
            whileUp();
        }
        alert->close();
    });
    look.start(1ms);
    action();
    return texts;
}

std::string outline(const QMenu &menu, const std::string &indent = {})
{
    std::string text;
    for (const QAction *item : menu.actions()) {
        if (item->isSeparator()) {
            text += indent + "--\n";
            continue;
        }
        text += indent + item->text().toStdString() + ' ' + std::to_string(item->data().toInt()) +
                (item->isEnabled() ? " enabled" : "") + (item->isChecked() ? " checked" : "") +
                (item->shortcut().isEmpty() ? "" : " key") + '\n';
        if (item->menu()) {
            text += outline(*item->menu(), indent + "  ");
        }
    }
    return text;
}

} // namespace

TEST_F(KIVMenuObjTest, BuildsTheWholeMenuBeforeTheServiceHasSaidAnything)
{
    EXPECT_EQ(outline(*menu.menu()), "Switch Resolution 32809\n"
                                     "  Not available -1\n"
                                     "Manage Workspace 32810\n"
                                     "  Minimize 32793\n"
                                     "  Maximize 32795\n"
                                     "  Restore 32796\n"
                                     "  Reset 32794\n"
                                     "  --\n"
                                     "  Options 32791\n"
                                     "--\n"
                                     "Disconnect the Session 32792\n"
                                     "--\n"
                                     "Server Preferences 32790 enabled\n"
                                     "--\n"
                                     "Online Support 32800 enabled\n"
                                     "--\n"
                                     "About Kivune Server 32799 enabled\n");
    EXPECT_EQ(menu.statusItem(), nullptr);
    EXPECT_EQ(menu.getMenuProc(), nullptr);
    EXPECT_EQ(menu.trayX(), 0);
}

TEST_F(KIVMenuObjTest, AppendsCheckedEntriesWithKeysAndSeparators)
{
    QAction *parent = menu.addMenuItem(QStringLiteral("Parent"), QStringLiteral("P"), 1, true, true, false);
    QAction *child = menu.addSubItem(parent, QStringLiteral("Child"), {}, 2, false, true, true);
    EXPECT_EQ(menu.menu()->actions().back(), parent);
    EXPECT_TRUE(menu.menu()->actions().at(menu.menu()->actions().size() - 2)->isSeparator());
    EXPECT_EQ(parent->shortcut(), QKeySequence(Qt::Key_P));
    EXPECT_FALSE(parent->isCheckable());
    EXPECT_EQ(parent->menu()->actions(), QList<QAction *>{child});
    EXPECT_TRUE(child->isChecked());
}

TEST_F(KIVMenuObjTest, AddsNothingBelowNoParent)
{
    EXPECT_EQ(menu.addSubItem(nullptr, QStringLiteral("Orphan"), {}, 1, false, true, false), nullptr);
}

TEST_F(KIVMenuObjTest, ShowsTheItemWithTheImageOfItsStateAndItsToolTip)
{
    menu.setFlags(2);
    ASSERT_NE(menu.statusItem(), nullptr);
    EXPECT_TRUE(menu.statusItem()->isEnabled());
    EXPECT_EQ(menu.statusItem()->toolTip(), QStringLiteral("Kivune Menu"));
    EXPECT_EQ(menu.statusItem()->title(), QString());
    EXPECT_EQ(shownPicture(), pictureIn("statusoff"));
    menu.setFlags(6);
    EXPECT_EQ(shownPicture(), pictureIn("statuson"));
    EXPECT_NE(pictureIn("statuson"), pictureIn("statusoff"));
}

TEST_F(KIVMenuObjTest, DoesNothingForTheFlagsItAlreadyHas)
{
    menu.setFlags(2);
    StatusItem *const before = menu.statusItem();
    before->setImage({});
    menu.setFlags(2);
    EXPECT_EQ(menu.statusItem(), before);
    EXPECT_TRUE(before->image().isNull());
}

TEST_F(KIVMenuObjTest, SwitchesTheImageOfTheSameItemAtOnceAndTheUpperEntriesWithTheNextActions)
{
    menu.setFlags(2);
    StatusItem *const before = menu.statusItem();
    const qint64 off = imageKey();
    menu.setFlags(6);
    EXPECT_EQ(menu.statusItem(), before);
    const qint64 on = imageKey();
    EXPECT_NE(on, off);
    EXPECT_FALSE(item(32809)->isEnabled());
    EXPECT_FALSE(item(32810)->isEnabled());

    menu.setActions({});
    EXPECT_TRUE(item(32809)->isEnabled());
    EXPECT_TRUE(item(32810)->isEnabled());

    menu.setFlags(2);
    EXPECT_EQ(imageKey(), off) << "each image is loaded once";
}

TEST_F(KIVMenuObjTest, GivesANewItemTheOnImageAtOnce)
{
    menu.setFlags(2);
    menu.setFlags(6);
    const qint64 on = imageKey();
    menu.setFlags(0);
    EXPECT_EQ(menu.statusItem(), nullptr);
    menu.setFlags(6);
    ASSERT_NE(menu.statusItem(), nullptr);
    EXPECT_EQ(imageKey(), on);
}

TEST_F(KIVMenuObjTest, GivesANewItemTheOffImageAfterOneThatWasOn)
{
    menu.setFlags(6);
    const qint64 on = imageKey();
    menu.setFlags(4);
    menu.setFlags(2);
    ASSERT_NE(menu.statusItem(), nullptr);
    EXPECT_FALSE(menu.statusItem()->image().isNull());
    EXPECT_NE(imageKey(), on);
}

TEST_F(KIVMenuObjTest, OnlyStoresOtherFlags)
{
    menu.setFlags(2);
    StatusItem *const before = menu.statusItem();
    before->setImage({});
    menu.setFlags(3);
    EXPECT_EQ(menu.statusItem(), before);
    EXPECT_TRUE(before->image().isNull());
}

TEST_F(KIVMenuObjTest, KeepsTheOldImageWhenOneIsMissingAndTriesAgainAtTheNextSwitch)
{
    menu.setFlags(2);
    const qint64 off = imageKey();
    removeImage("statuson");
    menu.setFlags(6);
    EXPECT_EQ(imageKey(), off);

    addImage("statuson");
    menu.setFlags(2);
    menu.setFlags(6);
    EXPECT_NE(imageKey(), off);
}

TEST_F(KIVMenuObjTest, DisablesEverythingThatDependsOnTheServiceForAnEmptyList)
{
    menu.setFlags(6);
    const std::vector<std::uint32_t> all{32791, 32792, 32793, 32794, 32795, 32796};
    menu.setActions(all);
    EXPECT_EQ(enabledCodes(), (std::vector<std::uint32_t>{32790, 32791, 32792, 32793, 32794, 32795, 32796, 32799, 32800,
                                                          32809, 32810}));
    menu.setActions({});
    EXPECT_EQ(enabledCodes(), (std::vector<std::uint32_t>{32790, 32799, 32800, 32809, 32810}));
}

TEST_F(KIVMenuObjTest, EnablesJustTheAllowedEntriesAlsoBelowADisabledParent)
{
    menu.setFlags(2);
    const std::vector<std::uint32_t> allowed{32793, 32791};
    menu.setActions(allowed);
    EXPECT_EQ(enabledCodes(), (std::vector<std::uint32_t>{32790, 32791, 32793, 32799, 32800}));
}

TEST_F(KIVMenuObjTest, LeavesTheResolutionSubmenuAlone)
{
    menu.setFlags(6);
    const std::vector<std::uint32_t> allowed{0xFFFFFFFF};
    menu.setActions(allowed);
    EXPECT_FALSE(item(0xFFFFFFFF)->isEnabled());
}

TEST_F(KIVMenuObjTest, HandsAChosenEntrysCodeToTheProcedure)
{
    menu.onMenuAction(item(32799)); // No procedure yet: nothing happens.
    menu.setMenuProc(recordingProcedure);
    EXPECT_EQ(menu.getMenuProc(), &recordingProcedure);
    item(32799)->trigger();
    EXPECT_TRUE(procedureCalls.empty()) << "a command waits until the menu's own event loop has ended";
    EXPECT_TRUE(waitUntil([] { return !procedureCalls.empty(); }));
    menu.onMenuAction(item(32793));
    EXPECT_EQ(procedureCalls, (std::vector<std::uint32_t>{32799, 32793}));
    EXPECT_EQ(procedureMenu, &menu);
}

TEST_F(KIVMenuObjTest, NeverHandsAnEntryOfTheResolutionSubmenuToTheProcedure)
{
    menu.setMenuProc(recordingProcedure);
    menu.onMenuAction(item(0xFFFFFFFF));
    EXPECT_TRUE(procedureCalls.empty());
}

TEST_F(KIVMenuObjTest, RefillsTheResolutionSubmenuWheneverTheMenuOpens)
{
    QMenu *resolutions = item(32809)->menu();
    resolutions->clear();
    menu.menuWillOpen(resolutions);
    EXPECT_TRUE(resolutions->isEmpty()) << "a submenu that opens refills nothing";
    menu.menuWillOpen(menu.menu());
    EXPECT_EQ(outline(*resolutions), "Not available -1\n");
}

TEST_F(KIVMenuObjTest, ListsTheDisplaysSizesWidestFirstWithTheCurrentOneChecked)
{
    menu.setFlags(4);
    menu.setActions({});
    menu.updResolutions();
    const QList<QAction *> sizes = item(32809)->menu()->actions();
    ASSERT_GE(sizes.size(), 10);
    QStringList checked;
    int widest = INT_MAX;
    for (qsizetype i = 0; i < sizes.size(); ++i) {
        const int width = sizes.at(i)->text().section(u' ', 0, 0).toInt();
        EXPECT_LE(width, widest);
        EXPECT_TRUE(sizes.at(i)->isEnabled());
        EXPECT_EQ(sizes.at(i)->data().toInt(), i);
        widest = width;
        if (sizes.at(i)->isChecked()) {
            checked += sizes.at(i)->text();
        }
    }
    EXPECT_EQ(checked, QStringList{QStringLiteral("1280 x 800")});
}

TEST_F(KIVMenuObjTest, ListsNothingWhileTheResolutionEntryIsDisabled)
{
    menu.setFlags(4);
    menu.setActions({});
    menu.updResolutions();
    menu.setFlags(0);
    menu.setActions({});
    menu.updResolutions();
    EXPECT_EQ(outline(*item(32809)->menu()), "Not available -1\n");
    QAction *stale = menu.addSubItem(item(32809), QStringLiteral("800 x 600"), {}, 0, false, true, false);
    EXPECT_FALSE(alertFrom([&] { menu.onMenuAction(stale); }));
    EXPECT_EQ(mainDisplaySize(), QSize(1280, 800)) << "a list that is gone was used";
}

TEST_F(KIVMenuObjTest, ShowsThePlaceholderForADisplayThatTellsNoModesButNothingForOneWithNoUsableMode)
{
    QAction &resolution = *item(32809);
    menu.fillResolutions(resolution, nullptr, {1280, 800});
    EXPECT_EQ(outline(*resolution.menu()), "Not available -1\n");
    fill({});
    EXPECT_EQ(outline(*resolution.menu()), "Not available -1\n");
    fill({{1, 600}, {800, 0}});
    EXPECT_EQ(outline(*resolution.menu()), "");
}

TEST_F(KIVMenuObjTest, SaysWhyThereIsNoSizeToChoose)
{
    LogLines log;
    menu.updResolutions();
    EXPECT_THAT(log.take(), testing::Contains("kiv.item: no display sizes to choose from: the service has not made "
                                              "the item active"));
    QAction &resolution = *item(32809);
    resolution.setEnabled(true);
    menu.fillResolutions(resolution, nullptr, {1280, 800});
    EXPECT_THAT(log.take(), testing::Contains("kiv.item: no display sizes to choose from: the display tells none"));
    fill({{800, 600}});
    QAction *stale = menu.addSubItem(&resolution, QStringLiteral("stale"), {}, 7, false, true, false);
    menu.onMenuAction(stale);
    EXPECT_THAT(log.take(), testing::Contains("kiv.item: there is no display size 7 any more"));
}

TEST_F(KIVMenuObjTest, ChecksTheCurrentSizeIfItIsListed)
{
    const std::vector<QSize> sizes{{1024, 768}, {1440, 900}, {1440, 1080}, {900, 1440}};
    fill(sizes, {1440, 900});
    EXPECT_EQ(outline(*item(32809)->menu()), "1440 x 900 0 enabled checked\n"
                                             "1440 x 1080 1 enabled\n"
                                             "1024 x 768 2 enabled\n"
                                             "900 x 1440 3 enabled\n");
    fill(sizes, {1440, 768});
    EXPECT_EQ(outline(*item(32809)->menu()).find("checked"), std::string::npos);
    fill(sizes, {0, 0});
    EXPECT_EQ(outline(*item(32809)->menu()).find("checked"), std::string::npos);
}

TEST_F(KIVMenuObjTest, RefillsNothingWithoutItsResolutionEntry)
{
    menu.menu()->removeAction(item(32809));
    const std::string before = outline(*menu.menu());
    menu.updResolutions();
    EXPECT_EQ(outline(*menu.menu()), before);
}

TEST_F(KIVMenuObjTest, IgnoresASizeWhoseIndexIsOutOfRange)
{
    fill({{800, 600}, {640, 480}});
    for (const std::uint32_t index : {2U, 3U, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFFFEU}) {
        QAction *stale = menu.addSubItem(item(32809), QStringLiteral("stale"), {}, index, false, true, false);
        EXPECT_FALSE(alertFrom([&] { menu.onMenuAction(stale); })) << index;
    }
    EXPECT_EQ(mainDisplaySize(), QSize(1280, 800));
}

TEST_F(KIVMenuObjTest, IgnoresAnEntryThatWentBeforeItsTurnCame)
{
    menu.setMenuProc(recordingProcedure);
    fill({{60000, 60000}});
    item(32809)->menu()->actions().first()->trigger();
    fill({{50000, 50000}});
    EXPECT_FALSE(alertFrom([] { QCoreApplication::sendPostedEvents(); }));
}

TEST_F(KIVMenuObjTest, SaysThatASwitchHasFailedAndDisablesTheItemMeanwhile)
{
    menu.setFlags(6);
    menu.setMenuProc(recordingProcedure);
    fill({{60000, 60000}});
    const auto choose = [this] { menu.onMenuAction(item(32809)->menu()->actions().first()); };
    const auto alert = alertFrom(choose, [this] {
        EXPECT_FALSE(menu.statusItem()->isEnabled());
        EXPECT_TRUE(showsSign(*QApplication::activeModalWidget(), AlertSign::Critical));
    });
    ASSERT_TRUE(alert);
    EXPECT_EQ(alert->title, QStringLiteral("Operation failed"));
    EXPECT_TRUE(alert->labels.contains(QStringLiteral("System could not set the selected resolution.")));
    EXPECT_EQ(alert->buttons, QStringList{QStringLiteral("Ok")});
    EXPECT_TRUE(menu.statusItem()->isEnabled());
    EXPECT_TRUE(procedureCalls.empty());
    EXPECT_EQ(mainDisplaySize(), QSize(1280, 800));
}

TEST_F(KIVMenuObjTest, SaysNothingForTheSizeThatTheDisplayHas)
{
    fill({{1280, 800}}, {1280, 800});
    EXPECT_FALSE(alertFrom([&] { menu.onMenuAction(item(32809)->menu()->actions().first()); }));
}

TEST_F(KIVMenuObjTest, EnablesAndDisablesTheItemsButtonIfThereIsOne)
{
    menu.setEnabled(false);
    menu.setFlags(2);
    EXPECT_TRUE(menu.statusItem()->isEnabled());
    menu.setEnabled(false);
    EXPECT_FALSE(menu.statusItem()->isEnabled());
    menu.setEnabled(true);
    EXPECT_TRUE(menu.statusItem()->isEnabled());
}

TEST_F(KIVMenuObjTest, HasNoFrameWithoutAnItem)
{
    EXPECT_FALSE(menu.getFrame());
    menu.setFlags(2);
    ASSERT_TRUE(waitUntil([&] { return menu.getFrame().has_value(); }));
    EXPECT_EQ(menu.getFrame(), menu.statusItem()->frame());
}

TEST_F(KIVMenuObjTest, RemembersTheItemsPlaceOnceItHasSettledInASessionOffTheConsole)
{
    menu.setFlags(2);
    EXPECT_EQ(menu.trayX(), 0);
    ASSERT_TRUE(waitUntil([&] { return menu.trayX() != 0; }));
    EXPECT_EQ(menu.trayX(), MainScreen::frame()->size.width - menu.statusItem()->frame()->origin.x);
}

TEST_F(KIVMenuObjTest, RemembersNothingWithoutAnItem)
{
    menu.saveTrayX();
    EXPECT_EQ(menu.trayX(), 0);
}

TEST_F(KIVMenuObjTest, KeepsTheRememberedPlaceWhenTheItemGoes)
{
    menu.setFlags(2);
    ASSERT_TRUE(waitUntil([&] { return menu.trayX() != 0; }));
    const float remembered = menu.trayX();
    menu.setFlags(0);
    menu.saveTrayX();
    EXPECT_EQ(menu.trayX(), remembered);
}

TEST(MenuSurroundings, LetTheItemSettleForTenSecondsInTheSessionAsItIs)
{
    const MenuSurroundings surroundings;
    EXPECT_EQ(surroundings.settling, std::chrono::seconds(10));
    EXPECT_EQ(surroundings.isHidden, &is_hidden);
}

TEST(MenuSurroundings, HoldTheItemInItsPlaceOnADisplayForRemoteViewers)
{
    EXPECT_TRUE(is_hidden()) << "the display is one, and no other session is known";
}

TEST_F(KIVMenuObjTest, SaysWhetherItRemembersTheItemsPlace)
{
    menu.setFlags(2);
    ASSERT_TRUE(waitUntil([&] { return menu.trayX() != 0; }));
    LogLines log;
    menu.saveTrayX();
    EXPECT_THAT(log.take(), testing::ElementsAre("kiv.item: the item's place is remembered: " +
                                                 std::to_string(static_cast<int>(menu.trayX())) + " from the right"));
    sessionIsHidden = false;
    menu.saveTrayX();
    EXPECT_THAT(log.take(), testing::ElementsAre("kiv.item: the item's place is not remembered: the session is at the "
                                                 "console, or not known"));
}

TEST_F(KIVMenuObjTest, RemembersNothingOnTheConsole)
{
    sessionIsHidden = false;
    menu.setFlags(2);
    menu.saveTrayX();
    EXPECT_EQ(menu.trayX(), 0);
}

TEST_F(KIVMenuObjTest, HoldsTheItemAtItsRememberedPlaceInASessionOffTheConsoleOnly)
{
    menu.setFlags(2);
    ASSERT_TRUE(waitUntil([&] { return menu.trayX() != 0; }));
    const float remembered = MainScreen::frame()->size.width - menu.trayX();

    FakeTray tray({200, 4});
    ASSERT_TRUE(waitUntil([&] {
        tray.serve();
        return menu.statusItem()->frame() && menu.statusItem()->frame()->origin.x == 200;
    }));
    EXPECT_EQ(menu.getFrame()->origin.x, remembered);
    EXPECT_EQ(menu.getFrame()->size, menu.statusItem()->frame()->size);
    EXPECT_EQ(menu.getFrame()->origin.y, menu.statusItem()->frame()->origin.y);
    sessionIsHidden = false;
    EXPECT_EQ(menu.getFrame()->origin.x, 200);
}

TEST_F(KIVMenuObjTest, OpensTheMenuWhereTheItemIsHeldToBe)
{
    menu.setFlags(2);
    ASSERT_TRUE(waitUntil([&] { return menu.trayX() != 0; }));
    const int held = static_cast<int>(MainScreen::frame()->size.width - menu.trayX());
    FakeTray tray({200, 4});
    ASSERT_TRUE(waitUntil([&] {
        tray.serve();
        return menu.statusItem()->frame() && menu.statusItem()->frame()->origin.x == 200;
    }));

    const int pointer = held % 12 == 0 ? held + 12 : held + 10;
    FakeInput::moveTo({pointer, 8});
    ASSERT_NE(pointer - pointer % 12, held) << "where it would open without the item";
    press([&] {
        EXPECT_EQ(anchorWindows().front()->geometry().left(), held);
        menu.menu()->close();
    });
}

TEST_F(KIVMenuObjTest, LeavesAnItemNearItsRememberedPlaceWhereItIs)
{
    menu.setFlags(2);
    ASSERT_TRUE(waitUntil([&] { return menu.trayX() != 0; }));
    const int remembered = static_cast<int>(MainScreen::frame()->size.width - menu.trayX());

    FakeTray tray({remembered - 40, 4});
    ASSERT_TRUE(waitUntil([&] {
        tray.serve();
        return menu.getFrame() && menu.getFrame()->origin.x == static_cast<float>(remembered - 40);
    }));
}

TEST_F(KIVMenuObjTest, RemembersThePlaceOfEachNewItem)
{
    menu.setFlags(2);
    ASSERT_TRUE(waitUntil([&] { return menu.trayX() != 0; }));
    const float first = menu.trayX();
    menu.setFlags(0);

    FakeTray tray({200, 4});
    menu.setFlags(6);
    EXPECT_TRUE(waitUntil([&] {
        tray.serve();
        return menu.trayX() == MainScreen::frame()->size.width - 200;
    })) << "still "
        << menu.trayX() << ", as at first " << first;
}

TEST_F(KIVMenuObjTest, AttachesOneInvisibleAnchorWindowWhileTheMenuIsOpen)
{
    menu.setFlags(2);
    press([&] {
        const auto anchors = anchorWindows();
        ASSERT_EQ(anchors.size(), 1U);
        EXPECT_EQ(associatedObject(*menu.menu(), "FakeWindow"), anchors.front());
        EXPECT_EQ(anchors.front()->size(), QSize(200, 200));
        EXPECT_EQ(anchors.front()->windowOpacity(), 0);
        EXPECT_TRUE(anchors.front()->testAttribute(Qt::WA_DontShowOnScreen));
        EXPECT_TRUE(anchors.front()->isVisible()) << "as a window can be that no screen shows";
        menu.menu()->close();
    });
    EXPECT_EQ(associatedObject(*menu.menu(), "FakeWindow"), nullptr);
    EXPECT_TRUE(menu.menu()->dynamicPropertyNames().isEmpty());
    EXPECT_TRUE(waitUntil([] { return anchorWindows().empty(); }));
}

TEST_F(KIVMenuObjTest, LeavesNoAnchorBehindWhenItEndsWithItsMenuOpen)
{
    auto ending = std::make_unique<KIVMenuObj>(bundle);
    // As a session ends: both loops are left, and no other comes after them.
    QTimer::singleShot(0, [&] {
        QTimer::singleShot(0, [] { QCoreApplication::exit(); });
        ending->menuTrayPressed();
    });
    QCoreApplication::exec();
    ASSERT_TRUE(ending->menu()->isVisible());
    ASSERT_EQ(anchorWindows().size(), 1U);
    ending.reset();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(anchorWindows().empty());
}

TEST_F(KIVMenuObjTest, OpensTheMenuAtTheAnchorsBottomLeftCorner)
{
    menu.setFlags(2);
    ASSERT_TRUE(waitUntil([&] { return menu.getFrame().has_value(); }));
    press([&] {
        const QRect anchor = anchorWindows().front()->geometry();
        // Qt moves a menu left that would not fit on the screen; it never moves it up or down here.
        EXPECT_EQ(menu.menu()->geometry().top(), anchor.top() + 200);
        menu.menu()->close();
    });
}

TEST_F(KIVMenuObjTest, OpensTheMenuWhereTheItemsHostSaysThatItWasPressed)
{
    press(
        [&] {
            EXPECT_EQ(menu.menu()->pos(), MainScreen::toQt({300, 500}));
            menu.menu()->close();
        },
        NSPoint{300, 500});
    press(
        [&] {
            EXPECT_EQ(menu.menu()->geometry().bottomLeft() + QPoint(0, 1), MainScreen::toQt({300, 20}));
            menu.menu()->close();
        },
        NSPoint{300, 20});
}

TEST_F(KIVMenuObjTest, OpensTheMenuAtThePressOfAnItemThatItsTrayHasOffTheScreen)
{
    FakeTray tray({-300, 400});
    menu.setFlags(2);
    ASSERT_TRUE(waitUntil([&] { return tray.serve(), tray.icons().size() == 1; }));
    FakeInput::moveTo({900, 700});
    QTimer opened;
    std::optional<QPoint> place;
    QObject::connect(&opened, &QTimer::timeout, &opened, [&] {
        if (menu.menu()->isVisible()) {
            place = menu.menu()->pos();
            menu.menu()->close();
        }
    });
    opened.start(1ms);
    tray.passPress(tray.icons().front(), {300, 200});
    EXPECT_TRUE(waitUntil([&] { return place.has_value(); }));
    EXPECT_EQ(place, MainScreen::toQt({300, 600}));
    menu.saveTrayX();
    EXPECT_EQ(menu.trayX(), 0) << "there is no place to remember";
}

TEST_F(KIVMenuObjTest, ClosesTheOpenMenuAtASecondPress)
{
    menu.setFlags(2);
    const int interval = QApplication::doubleClickInterval();
    QApplication::setDoubleClickInterval(0);
    press([&] { menu.menuTrayPressed(); });
    QApplication::setDoubleClickInterval(interval);
    EXPECT_FALSE(menu.menu()->isVisible());
}

TEST_F(KIVMenuObjTest, KeepsTheMenuOpenAtTheSecondPressOfADoubleClick)
{
    menu.setFlags(2);
    const QPoint place(600, 400);
    FakeInput::moveTo(place);
    bool staysOpen = false;
    const int interval = QApplication::doubleClickInterval();
    QApplication::setDoubleClickInterval(10'000);
    press([&] {
        menu.menuTrayPressed();
        // The menu has the mouse: it hears of presses elsewhere.
        QWidget *const open = menu.menu();
        const auto pressAt = [&](QPoint global) {
            QMouseEvent event(QEvent::MouseButtonPress, open->mapFromGlobal(global), global, Qt::LeftButton,
                              Qt::LeftButton, Qt::NoModifier);
            QCoreApplication::sendEvent(open, &event);
        };
        pressAt(place + QPoint(2, 1));
        staysOpen = open->isVisible();
        pressAt(place + QPoint(0, 100));
        EXPECT_FALSE(open->isVisible()) << "that is no double click";
        open->close();
    });
    QApplication::setDoubleClickInterval(interval);
    EXPECT_TRUE(staysOpen);
}

TEST_F(KIVMenuObjTest, SurvivesTheRemovalOfTheItemWhileTheMenuIsOpen)
{
    menu.setFlags(6);
    press([&] {
        menu.setFlags(0);
        menu.setActions({});
        EXPECT_TRUE(menu.menu()->isVisible());
        menu.menu()->close();
    });
    EXPECT_EQ(menu.statusItem(), nullptr);
}
