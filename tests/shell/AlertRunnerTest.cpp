#include "shell/AlertRunner.h"

#include "menu/MenuCommands.h"
#include "shell/ProcessState.h"
#include "tests/support/ShownSign.h"
#include "tests/support/WaitUntil.h"

#include <QApplication>
#include <QLabel>
#include <QPushButton>
#include <QTimer>

#include <gtest/gtest.h>

#include <functional>

namespace
{

using namespace std::chrono_literals;

class AlertRunner : public testing::Test
{
protected:
    AlertRunner()
    {
        __menu = std::make_unique<KIVMenuObj>();
        __menu->setFlags(kMenuFlagVisible);
    }
    ~AlertRunner() override { __menu.reset(); }

    /// Shows an alert with three buttons and does something once it is up.
    static int respond(const std::function<void(QWidget &)> &react, const QString &message = QStringLiteral("Message"))
    {
        QTimer look;
        QObject::connect(&look, &QTimer::timeout, &look, [&] {
            if (QWidget *alert = QApplication::activeModalWidget()) {
                look.stop();
                react(*alert);
            }
        });
        look.start(1ms);
        return __run_alert(QStringLiteral("Title"), message, QStringLiteral("Default"), QStringLiteral("Alternate"),
                           QStringLiteral("Other"));
    }

    static void click(const QWidget &alert, const char *text)
    {
        for (QPushButton *button : alert.findChildren<QPushButton *>()) {
            if (button->text() == QLatin1String(text)) {
                button->click();
            }
        }
    }

    static bool itemIsEnabled() { return __menu->statusItem()->isEnabled(); }
};

} // namespace

TEST_F(AlertRunner, ReturnsOneForTheDefaultButtonZeroForTheAlternateAndMinusOneForTheOther)
{
    const std::pair<const char *, int> table[] = {{"Default", 1}, {"Alternate", 0}, {"Other", -1}};
    for (const auto &[button, result] : table) {
        bool enabledMeanwhile = true;
        EXPECT_EQ(respond([&, text = button](QWidget &alert) {
                      enabledMeanwhile = itemIsEnabled();
                      click(alert, text);
                  }),
                  result);
        EXPECT_FALSE(enabledMeanwhile) << button;
        EXPECT_TRUE(itemIsEnabled()) << button;
    }
}

TEST_F(AlertRunner, ReturnsMinusTwoWhenNobodyAnswersAndEnablesTheItemAllTheSame)
{
    EXPECT_EQ(respond([](QWidget &alert) { alert.close(); }), -2);
    EXPECT_TRUE(itemIsEnabled());
}

TEST_F(AlertRunner, TakesPercentSignsForNothingButThemselves)
{
    QStringList labels;
    const auto read = [&](QWidget &alert) {
        EXPECT_TRUE(showsSign(alert, AlertSign::Information));
        for (const QLabel *label : alert.findChildren<QLabel *>()) {
            labels += label->text();
        }
        click(alert, "Default");
    };
    EXPECT_EQ(respond(read, QStringLiteral("100%% of %@ and %s, %n, %1$d, 50% off %")), 1);
    EXPECT_TRUE(labels.contains(QStringLiteral("Title"))) << qPrintable(labels.join(u'|'));
    EXPECT_TRUE(labels.contains(QStringLiteral("100% of %@ and %s, %n, %1$d, 50% off %")))
        << qPrintable(labels.join(u'|'));
}

TEST_F(AlertRunner, OutlivesTheItem)
{
    EXPECT_EQ(respond([](QWidget &alert) {
                  __menu->setFlags(0);
                  click(alert, "Default");
              }),
              1);
    EXPECT_EQ(__menu->statusItem(), nullptr);
}

TEST_F(AlertRunner, EnablesTheItemThatCameMeanwhile)
{
    EXPECT_EQ(respond([](QWidget &alert) {
                  __menu->setFlags(0);
                  __menu->setFlags(kMenuFlagVisible);
                  __menu->setEnabled(false);
                  click(alert, "Default");
              }),
              1);
    EXPECT_TRUE(itemIsEnabled());
}

TEST_F(AlertRunner, NeedsNoMenu)
{
    __menu.reset();
    EXPECT_EQ(respond([](QWidget &alert) { click(alert, "Alternate"); }), 0);
}
