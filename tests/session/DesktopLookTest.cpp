#include "tests/session/support/DesktopSettings.h"
#include "tests/session/support/DesktopWithAgent.h"
#include "tests/session/support/Session.h"
#include "tests/session/support/SessionWithMessages.h"
#include "tests/support/FakePortal.h"
#include "tests/support/ScopedVariable.h"
#include "tests/support/WaitUntil.h"

#include <QDBusMessage>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <X11/keysym.h>
#include <algorithm>

namespace
{

/// The colour that most of the window has.
QColor ground(const Desktop &desktop, const QRect &window)
{
    const QImage picture = const_cast<Desktop &>(desktop).view().grab(window).convertToFormat(QImage::Format_RGB32);
    QHash<QRgb, int> counts;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            ++counts[picture.pixel(x, y)];
        }
    }
    QRgb most = 0;
    for (auto it = counts.cbegin(); it != counts.cend(); ++it) {
        most = it.value() > counts.value(most) ? it.key() : most;
    }
    return QColor(most);
}

bool isDark(const Desktop &desktop, const QRect &window)
{
    const int lightness = ground(desktop, window).lightness();
    return lightness > 0 && lightness < 100; // Black is what has not been drawn yet.
}

bool isLight(const Desktop &desktop, const QRect &window)
{
    return ground(desktop, window).lightness() > 200;
}

/// A desktop whose menu is open.
class DesktopLook : public DesktopWithAgent
{
protected:
    void openTheMenu()
    {
        ASSERT_TRUE(agent->startAndDock());
        ASSERT_TRUE(waitUntil([&] { return agent->isLinked(); }));
        ASSERT_TRUE(agent->openMenu());
    }
    /// Its anchor would count as a leak of an agent that ends beside it.
    void TearDown() override
    {
        EXPECT_TRUE(waitUntil([&] {
            desktop.input().key(XK_Escape);
            return agent->freeWindows().isEmpty();
        }));
    }
    [[nodiscard]] QRect menu() const { return agent->freeWindows().value(0).geometry; }
    [[nodiscard]] bool becomesDark() const
    {
        return waitUntil([&] { return isDark(desktop, menu()); });
    }
    [[nodiscard]] bool becomesLight() const
    {
        return waitUntil([&] { return isLight(desktop, menu()); });
    }
};

class MessagesOfTheDesktopsLook : public SessionWithMessages
{
};

} // namespace

TEST_F(DesktopLook, IsLightWhereNobodySaysOtherwise)
{
    openTheMenu();
    EXPECT_TRUE(becomesLight());
}

TEST_F(DesktopLook, FollowsTheThemeWhileTheMenuIsOpen)
{
    DesktopSettings settings(desktop.server());
    settings.setText("Net/ThemeName", "Adwaita-dark");
    openTheMenu();
    EXPECT_TRUE(becomesDark());
    settings.setText("Net/ThemeName", "Adwaita");
    EXPECT_TRUE(becomesLight());
    settings.setNumber("Gtk/ApplicationPreferDarkTheme", 1);
    EXPECT_TRUE(becomesDark());
}

TEST_F(DesktopLook, FollowsWhoeverKeepsTheSettings)
{
    openTheMenu();
    EXPECT_TRUE(becomesLight());
    std::optional<DesktopSettings> first(std::in_place, desktop.server());
    first->setText("Net/ThemeName", "Adwaita-dark");
    EXPECT_TRUE(becomesDark()) << "one came";
    DesktopSettings second(desktop.server(), XSettingsProperty::ByteOrder::Big);
    EXPECT_TRUE(becomesLight()) << "another took its place";
    second.setText("Net/ThemeName", "Yaru-dark");
    EXPECT_TRUE(becomesDark());
    first.reset();
    {
        const DesktopSettings third(desktop.server());
        EXPECT_TRUE(becomesLight());
    }
    EXPECT_TRUE(becomesLight()) << "none is left";
}

TEST_F(DesktopLook, TakesSettingsThatCannotBeReadForNone)
{
    DesktopSettings settings(desktop.server());
    settings.setText("Net/ThemeName", "Adwaita-dark");
    openTheMenu();
    EXPECT_TRUE(becomesDark());
    settings.setBytes("nonsense");
    EXPECT_TRUE(becomesLight());
    settings.setText("Net/ThemeName", "Adwaita-dark");
    EXPECT_TRUE(becomesDark());
}

TEST_F(DesktopLook, FollowsThePortalBeforeTheTheme)
{
    DesktopSettings settings(desktop.server());
    settings.setText("Net/ThemeName", "Adwaita-dark");
    std::optional<FakePortal> portal(std::in_place, desktop.bus());
    ASSERT_TRUE(portal->isThere());
    portal->setColourScheme(2);
    openTheMenu();
    EXPECT_TRUE(becomesLight());
    portal->setColourScheme(1);
    EXPECT_TRUE(becomesDark());
    settings.setText("Net/ThemeName", "Adwaita");
    portal->setColourScheme(0);
    EXPECT_TRUE(becomesLight()) << "no preference: the theme's";
    portal->setColourScheme(1);
    EXPECT_TRUE(becomesDark());
    portal.reset();
    EXPECT_TRUE(becomesLight()) << "the portal has gone";
}

TEST_F(DesktopLook, AsksThePortalAgainWhenItAndTheBusAreBack)
{
    std::optional<FakePortal> portal(std::in_place, desktop.bus());
    portal->setColourScheme(1);
    openTheMenu();
    EXPECT_TRUE(becomesDark());
    portal.reset();
    EXPECT_TRUE(becomesLight());
    portal.emplace(desktop.bus());
    portal->setColourScheme(1);
    EXPECT_TRUE(becomesDark()) << "it came while the agent was there";
    desktop.bus().stop();
    EXPECT_TRUE(becomesLight());
    ASSERT_TRUE(desktop.bus().start());
    portal.reset();
    portal.emplace(desktop.bus());
    ASSERT_TRUE(portal->isThere());
    portal->setColourScheme(1);
    EXPECT_TRUE(waitUntil([&] { return isDark(desktop, menu()); }, std::chrono::seconds(20)));
}

TEST(DesktopLookWithoutAPortal, StartsNone)
{
    const QTemporaryDir folder;
    const QString services = folder.path() + QStringLiteral("/dbus-1/services");
    ASSERT_TRUE(QDir().mkpath(services));
    for (const QString &name : {QStringLiteral("org.freedesktop.portal.Desktop"), QStringLiteral("of.the.Test")}) {
        QFile file(services + u'/' + name + QStringLiteral(".service"));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(
            QStringLiteral("[D-BUS Service]\nName=%1\nExec=/usr/bin/touch %2/%1\n").arg(name, folder.path()).toUtf8());
    }
    const ScopedVariable dataHome("XDG_DATA_HOME", folder.path().toLocal8Bit());
    Desktop desktop;
    ASSERT_TRUE(desktop.start());
    ASSERT_TRUE(desktop.startWindowManager());
    ASSERT_TRUE(desktop.startPanel());
    Agent agent(desktop);
    ASSERT_TRUE(agent.startAndDock());
    ASSERT_TRUE(waitUntil([&] { return agent.isLinked(); }));
    ASSERT_TRUE(agent.openMenu());
    const BusPeer peer(desktop.bus());
    peer.connection().send(QDBusMessage::createMethodCall(QStringLiteral("of.the.Test"), QStringLiteral("/"),
                                                          QStringLiteral("of.the.Test"), QStringLiteral("Start")));
    ASSERT_TRUE(waitUntil([&] { return QFile::exists(folder.path() + QStringLiteral("/of.the.Test")); }));
    EXPECT_FALSE(QFile::exists(folder.path() + QStringLiteral("/org.freedesktop.portal.Desktop")));
}

TEST_F(DesktopLook, GivesTheOpenMenuTheDesktopsFontAndKeepsItOnTheScreen)
{
    DesktopSettings settings(desktop.server());
    openTheMenu();
    const QSize before = menu().size();
    settings.setText("Gtk/FontName", "DejaVu Sans Bold 20");
    EXPECT_TRUE(waitUntil([&] {
        return menu().height() > before.height() * 3 / 2 && menu().width() > before.width() * 3 / 2 &&
               menu().right() < desktop.view().screenSize().width();
    })) << menu().x()
        << ' ' << menu().width() << ' ' << menu().height();
    settings.setText("Gtk/FontName", "");
    EXPECT_TRUE(waitUntil([&] { return menu().size() == before; }));
}

TEST_F(DesktopLook, HasTheScaleOfTheDesktopsWindows)
{
    openTheMenu();
    const QSize usual = menu().size();
    agent.emplace(desktop);
    DesktopSettings settings(desktop.server());
    settings.setNumber("Gdk/WindowScalingFactor", 2);
    openTheMenu();
    EXPECT_EQ(menu().size(), usual * 2);
    agent.emplace(desktop);
    settings.setNumber("Gdk/UnscaledDPI", 96 * 1024);
    settings.setDotsPerInch(192);
    openTheMenu();
    EXPECT_EQ(menu().size(), usual * 2) << "the dots have it in them";
    agent.emplace(desktop);
    agent->environment.insert(QStringLiteral("QT_SCALE_FACTOR"), QStringLiteral("1"));
    settings.setDotsPerInch(96);
    openTheMenu();
    EXPECT_EQ(menu().size(), usual) << "the user has chosen another";
}

TEST_F(MessagesOfTheDesktopsLook, ArePopUpsInItsColoursAndItsFont)
{
    DesktopSettings settings(desktop.server());
    ASSERT_TRUE(start({{{.id = "1", .text = "<p>Read <b>this</b></p>"}}}));
    const std::optional<XWindow> window = popUp();
    ASSERT_TRUE(window);
    const auto picture = [&] { return desktop.view().grab(window->geometry); };
    EXPECT_TRUE(waitUntil([&] { return isLight(desktop, window->geometry); })) << "it fades in";
    settings.setText("Net/ThemeName", "Adwaita-dark");
    EXPECT_TRUE(waitUntil([&] { return isDark(desktop, window->geometry); }));
    const QImage usual = picture();
    settings.setText("Gtk/FontName", "DejaVu Serif 30");
    EXPECT_TRUE(waitUntil([&] { return picture() != usual; }));
    EXPECT_EQ(agent->freeWindows().value(0).geometry.width(), window->geometry.width()) << "in its one size";
}

TEST(DesktopLookOfAPanel, ChangesWhileItIsUp)
{
    Session session;
    ASSERT_TRUE(session.start());
    DesktopSettings settings(session.desktop.server());
    ASSERT_TRUE(session.choose(Session::About, Session::By::Keys));
    const std::optional<XWindow> panel = session.panel();
    ASSERT_TRUE(panel);
    EXPECT_TRUE(isLight(session.desktop, panel->geometry));
    settings.setText("Net/ThemeName", "Adwaita-dark");
    EXPECT_TRUE(waitUntil([&] { return isDark(session.desktop, panel->geometry); }));
    settings.setText("Gtk/FontName", "DejaVu Sans 16");
    EXPECT_TRUE(
        waitUntil([&] { return session.agent->freeWindows().value(0).geometry.height() > panel->geometry.height(); }));
    session.desktop.input().key(XK_Escape);
    EXPECT_TRUE(session.agent->waitUntilClosed());
}
