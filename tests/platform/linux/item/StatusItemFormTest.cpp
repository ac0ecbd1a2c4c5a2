#include "platform/linux/item/StatusItemForm.h"

#include <gtest/gtest.h>

namespace
{

using Form = StatusItemForm;

constexpr StatusItemHosts noHost{false};
constexpr StatusItemHosts trayOnly{true};
constexpr StatusItemHosts notifierOnly{false, NotifierHosts::Ours};
constexpr StatusItemHosts sharedOnly{false, NotifierHosts::Shared};
constexpr StatusItemHosts both{true, NotifierHosts::Ours};
constexpr StatusItemHosts trayAndShared{true, NotifierHosts::Shared};
constexpr StatusItemHosts proxyOnly{true, NotifierHosts::None, true};
constexpr StatusItemHosts proxyAndNotifier{true, NotifierHosts::Ours, true};
constexpr StatusItemHosts proxyAndShared{true, NotifierHosts::Shared, true};

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

TEST(StatusItemForm, IsNeverWhatShowsItOnAnotherDisplay)
{
    EXPECT_EQ(wantedForm(sharedOnly), Form::Strip);
    EXPECT_EQ(wantedForm(trayAndShared), Form::Tray);
    EXPECT_EQ(wantedForm(proxyAndShared), Form::Strip);
}

TEST(StatusItemForm, IsSaidWithTheHostsThatThereAre)
{
    EXPECT_EQ(description(noHost), "no tray and no StatusNotifierItem host");
    EXPECT_EQ(description(proxyAndNotifier), "a proxy for a tray and a StatusNotifierItem host");
    EXPECT_EQ(description(trayAndShared), "a tray and a StatusNotifierItem host on another display");
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
        {"notifier host on another display comes just now", sharedOnly, Form::Notifier, Settling::Underway, Form::None},
        {"notifier host on another display has come", sharedOnly, Form::None, Settling::Over, Form::Strip},
        {"the same, behind a proxy, just now", proxyAndShared, Form::Tray, Settling::Underway, Form::None},
        {"the same, behind a proxy", proxyAndShared, Form::None, Settling::Over, Form::Strip},
        {"the same, beside a tray", trayAndShared, Form::Tray, Settling::Underway, Form::Tray},
        {"notifier host is back", notifierOnly, Form::None, Settling::Underway, Form::None},
    };
    for (const Row &row : rows) {
        EXPECT_EQ(pickForm(row.hosts, row.present, row.settling), row.picked) << row.what;
    }
}

} // namespace
