#include "settings/SettingsWindow.h"

#include "notify/rules/SettingTable.h"
#include "platform/data/PropertyList.h"

#include <QAbstractButton>
#include <QCheckBox>
#include <QComboBox>
#include <QCoreApplication>
#include <QFile>
#include <QLabel>
#include <QPalette>
#include <QPushButton>
#include <QTemporaryDir>
#include <QWheelEvent>

#include <gtest/gtest.h>

namespace
{

class SettingsWindowTest : public testing::Test
{
protected:
    SettingsWindow &window()
    {
        if (!m_window) {
            m_window = std::make_unique<SettingsWindow>(file, [this] {
                ++told;
                return canBeTold;
            });
        }
        return *m_window;
    }

    QCheckBox &box(const char *key) { return *window().findChild<QCheckBox *>(QLatin1String(key)); }
    QComboBox &list(const char *key) { return *window().findChild<QComboBox *>(QLatin1String(key)); }
    QLabel &label(const char *name) { return *window().findChild<QLabel *>(QLatin1String(name)); }

    /// As a person does by the keyboard.
    void choose(QComboBox &of, int index)
    {
        of.setCurrentIndex(index);
        Q_EMIT of.activated(index);
    }

    NotificationSettings saved() const { return file.read().value().settings; }

    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("settings.plist"));
    const PreferencesFile file{path};
    int told = 0;
    bool canBeTold = true;

private:
    std::unique_ptr<SettingsWindow> m_window;
};

TEST_F(SettingsWindowTest, HasEverySetting)
{
    for (const SettingEntry &setting : settingTable()) {
        EXPECT_NE(setting.isSwitch() ? static_cast<QWidget *>(window().findChild<QCheckBox *>(setting.key))
                                     : window().findChild<QComboBox *>(setting.key),
                  nullptr)
            << setting.key.data();
    }
}

TEST_F(SettingsWindowTest, ShowsWhatTheFileHolds)
{
    ASSERT_TRUE(file.change(*settingWithKey(QStringLiteral("KivNotificationShowNews")), 0).isNull());
    ASSERT_TRUE(file.change(*settingWithKey(QStringLiteral("KivNotificationCloseTimeout")), 4).isNull());
    EXPECT_FALSE(box("KivNotificationShowNews").isChecked());
    EXPECT_TRUE(box("KivNotificationShowNotices").isChecked());
    EXPECT_EQ(list("KivNotificationCloseTimeout").currentText(), QStringLiteral("Never"));
    EXPECT_EQ(list("KivNotificationRepeatTimeout").currentText(), QStringLiteral("After 5 hours"));
    EXPECT_EQ(list("KivNotificationShowTimeout").currentText(), QStringLiteral("Every 15 minutes"));
    EXPECT_EQ(label("lastMessage").text(), QStringLiteral("none yet"));
    EXPECT_TRUE(label("remark").isHidden());
    EXPECT_EQ(told, 0) << "nothing has changed";
}

TEST_F(SettingsWindowTest, ShowsWhatTheAgentMakesOfNumbersThatNobodyCanChoose)
{
    ASSERT_TRUE(
        PropertyList::writeFile(path,
                                QVariantMap{{QStringLiteral("KivNotificationShowTimeout"), 99},
                                            {QStringLiteral("KivNotificationLastMessId"), QStringLiteral("x7")}},
                                PropertyList::Writing::InPlace));
    EXPECT_EQ(list("KivNotificationShowTimeout").currentText(), QStringLiteral("Every minute"));
    EXPECT_EQ(label("lastMessage").text(), QStringLiteral("x7"));
}

TEST_F(SettingsWindowTest, SavesAndAnnouncesEachChangeAtOnce)
{
    box("KivNotificationShowWarnings").click();
    EXPECT_FALSE(saved().shouldDisplayWarnings);
    EXPECT_EQ(told, 1);
    box("KivNotificationShowWarnings").click();
    EXPECT_TRUE(saved().shouldDisplayWarnings);
    choose(list("KivNotificationRepeatTimeout"), 3);
    EXPECT_EQ(saved().notificationRepeat, kRepeatNever);
    EXPECT_EQ(told, 3);
    EXPECT_TRUE(label("remark").isHidden());
}

TEST_F(SettingsWindowTest, ChangesNothingWhenTheWheelIsTurnedOverAListThatNobodyHasChosen)
{
    QComboBox &show = list("KivNotificationShowTimeout");
    const int before = show.currentIndex();
    QWheelEvent turned(QPointF(5, 5), show.mapToGlobal(QPointF(5, 5)), {}, QPoint(0, -120), Qt::NoButton,
                       Qt::NoModifier, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(&show, &turned);
    EXPECT_EQ(show.currentIndex(), before);
    EXPECT_EQ(told, 0);
}

TEST_F(SettingsWindowTest, TakesUpWhatOthersHaveChangedMeanwhile)
{
    EXPECT_TRUE(box("KivNotificationShowNews").isChecked());
    ASSERT_TRUE(file.change(*settingWithKey(QStringLiteral("KivNotificationShowNews")), 0).isNull());
    QEvent used(QEvent::WindowActivate);
    QCoreApplication::sendEvent(&window(), &used);
    EXPECT_FALSE(box("KivNotificationShowNews").isChecked());
    ASSERT_TRUE(file.change(*settingWithKey(QStringLiteral("KivNotificationShowNews")), 1).isNull());
    window().reload();
    EXPECT_TRUE(box("KivNotificationShowNews").isChecked());
    EXPECT_EQ(told, 0);
}

TEST_F(SettingsWindowTest, SaysThatAChangeIsNotSavedAndShowsWhatHolds)
{
    QFile broken(path);
    ASSERT_TRUE(broken.open(QIODevice::WriteOnly));
    ASSERT_GT(broken.write("no property list"), 0);
    broken.close();
    EXPECT_FALSE(label("remark").isHidden());
    box("KivNotificationShowNews").click();
    EXPECT_TRUE(label("remark").text().contains(path)) << qPrintable(label("remark").text());
    EXPECT_FALSE(label("remark").isHidden());
    EXPECT_FALSE(box("KivNotificationShowNews").isChecked());
    EXPECT_EQ(told, 0);
}

TEST_F(SettingsWindowTest, SaysWhenNobodyCouldBeTold)
{
    canBeTold = false;
    box("KivNotificationShowNews").click();
    EXPECT_TRUE(label("remark").text().contains(QStringLiteral("no session bus")));
    EXPECT_FALSE(label("remark").isHidden());
    EXPECT_FALSE(saved().shouldDisplayNews);
}

TEST_F(SettingsWindowTest, IsClosedByItsButton)
{
    window().show();
    ASSERT_TRUE(window().isVisible());
    window().findChild<QPushButton *>()->click();
    EXPECT_FALSE(window().isVisible());
}

/// KIV_PICTURES names a folder for a picture of each.
TEST_F(SettingsWindowTest, CutsNoTextInLightAndDark)
{
    window().show();
    for (const bool isDark : {false, true}) {
        if (isDark) {
            window().setPalette(QPalette(QColor(0x2d, 0x2f, 0x33)));
        }
        const QImage picture = window().grab().toImage();
        EXPECT_EQ(picture.pixelColor(1, 1).lightness() < 128, isDark);
        if (const QString pictures = qEnvironmentVariable("KIV_PICTURES"); !pictures.isEmpty()) {
            EXPECT_TRUE(picture.save(pictures + QLatin1String(isDark ? "/settings-dark.png" : "/settings-light.png")));
        }
    }
    const QList<QWidget *> widgets = window().findChildren<QWidget *>();
    int looked = 0;
    for (const QWidget *widget : widgets) {
        const auto *label = qobject_cast<const QLabel *>(widget);
        const bool wraps = label && label->wordWrap();
        if (!widget->isVisible() ||
            !(label || qobject_cast<const QAbstractButton *>(widget) || qobject_cast<const QComboBox *>(widget))) {
            continue;
        }
        ++looked;
        const QString name = QString::fromLatin1(widget->metaObject()->className()) + u' ' + widget->objectName();
        EXPECT_TRUE(wraps || widget->width() >= widget->sizeHint().width()) << qPrintable(name);
        EXPECT_GE(widget->height(), wraps ? widget->heightForWidth(widget->width()) : widget->sizeHint().height())
            << qPrintable(name);
    }
    EXPECT_EQ(looked, 7 + 3 + 4 + 2 + 1) << "switches, lists, their names, texts, and the button";
}

} // namespace
