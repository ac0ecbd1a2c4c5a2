#include "platform/linux/item/StatusItemForm.h"

#include <gtest/gtest.h>

namespace
{

using Form = StatusItemForm;

constexpr StatusItemHosts noHost{false, false};
constexpr StatusItemHosts trayOnly{true, false};
constexpr StatusItemHosts notifierOnly{false, true};
constexpr StatusItemHosts both{true, true};
constexpr StatusItemHosts proxyOnly{true, false, true};
constexpr StatusItemHosts proxyAndNotifier{true, true, true};

struct Row {
    const char *what;
    StatusItemHosts hosts;
    Form present;
    Settling settling;
    Form picked;
};

TEST(StatusItemForm, IsTheTrayBeforeTheNotifierHostBeforeTheStrip)
{
    EXPECT_EQ(wantedForm(noHost), Form::Strip);
    EXPECT_EQ(wantedForm(trayOnly), Form::Tray);
    EXPECT_EQ(wantedForm(notifierOnly), Form::Notifier);
    EXPECT_EQ(wantedForm(both), Form::Tray);
    EXPECT_EQ(wantedForm(proxyOnly), Form::Tray);
    EXPECT_EQ(wantedForm(proxyAndNotifier), Form::Notifier);
}

TEST(StatusItemForm, TakesATrayAtOnceAndAllElseAfterSettling)
{
    const Row rows[] = {
        {"new, no host", noHost, Form::None, Settling::Over, Form::Strip},
        {"new, tray", both, Form::None, Settling::Over, Form::Tray},
        {"new, notifier host", notifierOnly, Form::None, Settling::Over, Form::Notifier},
        {"tray stays", trayOnly, Form::Tray, Settling::Underway, Form::Tray},
        {"tray gone just now", noHost, Form::Tray, Settling::Underway, Form::None},
        {"tray gone just now, notifier host stays", notifierOnly, Form::Tray, Settling::Underway, Form::None},
        {"tray still gone", noHost, Form::None, Settling::Underway, Form::None},
        {"tray gone for good", noHost, Form::None, Settling::Over, Form::Strip},
        {"tray gone for good, notifier host there", notifierOnly, Form::None, Settling::Over, Form::Notifier},
        {"tray is back", trayOnly, Form::None, Settling::Underway, Form::Tray},
        {"tray comes", trayOnly, Form::Strip, Settling::Underway, Form::Tray},
        {"tray comes to the notifier host", both, Form::Notifier, Settling::Underway, Form::Tray},
        {"notifier host comes just now", notifierOnly, Form::Strip, Settling::Underway, Form::Strip},
        {"notifier host has come", notifierOnly, Form::Strip, Settling::Over, Form::Notifier},
        {"notifier host gone just now", noHost, Form::Notifier, Settling::Underway, Form::None},
        {"new, proxy whose host is not known yet", proxyOnly, Form::None, Settling::Underway, Form::None},
        {"new, proxy without a host", proxyOnly, Form::None, Settling::Over, Form::Tray},
        {"new, proxy and its host", proxyAndNotifier, Form::None, Settling::Over, Form::Notifier},
        {"host of the proxy comes just now", proxyAndNotifier, Form::Tray, Settling::Underway, Form::Tray},
        {"host of the proxy has come", proxyAndNotifier, Form::Tray, Settling::Over, Form::Notifier},
        {"host of the proxy gone just now", proxyOnly, Form::Notifier, Settling::Underway, Form::None},
        {"notifier host is back", notifierOnly, Form::None, Settling::Underway, Form::None},
    };
    for (const Row &row : rows) {
        EXPECT_EQ(pickForm(row.hosts, row.present, row.settling), row.picked) << row.what;
    }
}

} // namespace
