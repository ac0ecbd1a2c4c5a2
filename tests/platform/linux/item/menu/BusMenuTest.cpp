#include "platform/linux/item/menu/BusMenu.h"

#include "tests/support/BusPeer.h"
#include "tests/support/PrivateBus.h"
#include "tests/support/WaitUntil.h"

#include <QDBusMessage>
#include <QDBusPendingCall>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace
{

using testing::ElementsAre;
using testing::IsEmpty;

const QString busMenuInterface = QStringLiteral("com.canonical.dbusmenu");
const QString busMenuPath = QStringLiteral("/Menu");

/// Hears the signals that a menu sends on the bus, one line each.
class MenuSignals final : public QObject
{
    Q_OBJECT

public:
    MenuSignals(QDBusConnection connection, const QString &sender)
    {
        connection.connect(sender, busMenuPath, busMenuInterface, QString(), this, SLOT(record(QDBusMessage)));
    }

    std::vector<std::string> heard;

public Q_SLOTS:
    void record(const QDBusMessage &message)
    {
        QString text = message.member() + QLatin1Char(' ') + message.signature();
        if (message.member() == QStringLiteral("LayoutUpdated")) {
            text += QStringLiteral(" below %1").arg(message.arguments().value(1).toInt());
        } else {
            const auto entries = qdbus_cast<BusMenuEntries>(message.arguments().value(0));
            for (const BusMenuEntry &entry : entries) {
                text += QStringLiteral(" %1").arg(entry.id);
                for (auto it = entry.properties.cbegin(); it != entry.properties.cend(); ++it) {
                    text += QLatin1Char(' ') + it.key() + QLatin1Char(':') + it.value().toString();
                }
            }
            const auto removals = qdbus_cast<BusMenuRemovals>(message.arguments().value(1));
            for (const BusMenuRemoval &removal : removals) {
                text += QStringLiteral(" %1 without ").arg(removal.id) + removal.properties.join(QLatin1Char(' '));
            }
        }
        heard.push_back(text.toStdString());
    }
};

/// The numbers and labels of a layout, in brackets what is below an entry.
std::string described(const BusMenuLayout &layout)
{
    std::string text = std::to_string(layout.id);
    const QString label = layout.properties.value(QStringLiteral("label")).toString();
    if (!label.isEmpty()) {
        text += " " + label.toStdString();
    }
    if (!layout.children.isEmpty()) {
        text += " [";
        for (const BusMenuLayout &child : layout.children) {
            text += (&child == &layout.children.first() ? "" : ", ") + described(child);
        }
        text += "]";
    }
    return text;
}

class BusMenuTest : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(isStarted);
        ASSERT_TRUE(busMenu.serve(server.connection(), busMenuPath));
    }

    [[nodiscard]] QDBusMessage call(const QString &member, const QVariantList &arguments,
                                    const QString &ofInterface = busMenuInterface)
    {
        QDBusMessage message = QDBusMessage::createMethodCall(server.name(), busMenuPath, ofInterface, member);
        message.setArguments(arguments);
        const QDBusPendingCall pending = host.connection().asyncCall(message);
        EXPECT_TRUE(waitUntil([&] { return pending.isFinished(); }));
        return pending.reply();
    }

    [[nodiscard]] QDBusMessage event(int id, const char *what)
    {
        return call(QStringLiteral("Event"),
                    {id, QLatin1String(what), QVariant::fromValue(QDBusVariant(QVariant(0))), QVariant(0U)});
    }

    [[nodiscard]] BusMenuLayout layout(int parent = 0, int depth = -1, const QStringList &names = {})
    {
        const QDBusMessage answer = call(QStringLiteral("GetLayout"), {parent, depth, names});
        EXPECT_EQ(answer.signature(), QStringLiteral("u(ia{sv}av)"));
        return qdbus_cast<BusMenuLayout>(answer.arguments().value(1));
    }

    [[nodiscard]] uint revision()
    {
        return call(QStringLiteral("GetLayout"), {0, 0, QStringList()}).arguments().value(0).toUInt();
    }

    [[nodiscard]] bool aboutToShow(int id)
    {
        return call(QStringLiteral("AboutToShow"), {id}).arguments().value(0).toBool();
    }

    /// What the menu has sent since the last time. An answer comes after all that has been sent before.
    [[nodiscard]] std::vector<std::string> heard()
    {
        static_cast<void>(revision());
        return std::exchange(recorder.heard, {});
    }

    PrivateBus bus;
    bool isStarted = bus.start();
    BusPeer server{bus};
    BusPeer host{bus};
    QMenu menu;
    QMenu &sizes = *menu.addMenu(QStringLiteral("Sizes"));
    QAction *wide = sizes.addAction(QStringLiteral("Wide"));
    QAction *narrow = sizes.addAction(QStringLiteral("Narrow"));
    QAction *line = menu.addSeparator();
    QAction *about = menu.addAction(QStringLiteral("About"));
    BusMenu busMenu{menu};
    MenuSignals recorder{host.connection(), server.name()};
};

TEST_F(BusMenuTest, TellsTheWholeMenuOrAsMuchOfItAsAskedFor)
{
    EXPECT_EQ(described(layout()), "0 [1 Sizes [2 Wide, 3 Narrow], 4, 5 About]");
    EXPECT_EQ(described(layout(0, 1)), "0 [1 Sizes, 4, 5 About]");
    EXPECT_EQ(described(layout(0, 0)), "0");
    EXPECT_EQ(described(layout(1, 1)), "1 Sizes [2 Wide, 3 Narrow]");

    const BusMenuLayout enabledOnly = layout(5, 0, {QStringLiteral("enabled")});
    EXPECT_EQ(enabledOnly.properties, (QVariantMap{{QStringLiteral("enabled"), true}}));
}

TEST_F(BusMenuTest, TellsThePropertiesOfSomeEntriesOrOfAll)
{
    const auto group = [&](const QList<int> &ids) {
        const QDBusMessage answer =
            call(QStringLiteral("GetGroupProperties"),
                 {QVariant::fromValue(ids), QStringList{QStringLiteral("label"), QStringLiteral("type")}});
        EXPECT_EQ(answer.signature(), QStringLiteral("a(ia{sv})"));
        std::vector<std::string> told;
        const auto entries = qdbus_cast<BusMenuEntries>(answer.arguments().value(0));
        for (const BusMenuEntry &entry : entries) {
            QString text = QString::number(entry.id);
            for (const QVariant &value : entry.properties) {
                text += QLatin1Char(' ') + value.toString();
            }
            told.push_back(text.toStdString());
        }
        return told;
    };
    EXPECT_THAT(group({5, 77, 4}), ElementsAre("5 About", "4 separator"));
    EXPECT_THAT(group({}), ElementsAre("0", "1 Sizes", "2 Wide", "3 Narrow", "4 separator", "5 About"));

    const QDBusMessage label = call(QStringLiteral("GetProperty"), {5, QStringLiteral("label")});
    EXPECT_EQ(label.arguments().value(0).value<QDBusVariant>().variant(), QStringLiteral("About"));
    const QString version = QStringLiteral("Version");
    EXPECT_EQ(
        call(QStringLiteral("Get"), {busMenuInterface, version}, QStringLiteral("org.freedesktop.DBus.Properties"))
            .arguments()
            .value(0)
            .value<QDBusVariant>()
            .variant(),
        3U);
}

TEST_F(BusMenuTest, FailsForAnEntryThatThereIsNot)
{
    const QString invalid = QStringLiteral("org.freedesktop.DBus.Error.InvalidArgs");
    EXPECT_EQ(call(QStringLiteral("GetLayout"), {77, -1, QStringList()}).errorName(), invalid);
    EXPECT_EQ(call(QStringLiteral("GetProperty"), {77, QStringLiteral("label")}).errorName(), invalid);
    EXPECT_EQ(call(QStringLiteral("GetProperty"), {5, QStringLiteral("toggle-state")}).errorName(), invalid);
    EXPECT_EQ(event(77, "clicked").errorName(), invalid);
    EXPECT_EQ(call(QStringLiteral("AboutToShow"), {77}).errorName(), invalid);
    EXPECT_EQ(described(layout(5)), "5 About");
}

TEST_F(BusMenuTest, FailsForSeveralEntriesOnlyIfThereIsNoneOfThem)
{
    const QString invalid = QStringLiteral("org.freedesktop.DBus.Error.InvalidArgs");
    const auto showing = [&](const QList<int> &ids) {
        return call(QStringLiteral("AboutToShowGroup"), {QVariant::fromValue(ids)});
    };
    const auto hovering = [&](const QList<int> &ids) {
        BusMenuEvents events;
        for (const int id : ids) {
            events.append({id, QStringLiteral("hovered"), QDBusVariant(QVariant(0)), 0});
        }
        return call(QStringLiteral("EventGroup"), {QVariant::fromValue(events)});
    };
    const auto unknown = [](const QDBusMessage &answer) {
        EXPECT_EQ(answer.type(), QDBusMessage::ReplyMessage) << answer.errorMessage().toStdString();
        return qdbus_cast<QList<int>>(answer.arguments().value(answer.arguments().size() - 1));
    };
    EXPECT_EQ(unknown(showing({77, 1, 78})), (QList<int>{77, 78}));
    EXPECT_EQ(unknown(hovering({77, 1, 78})), (QList<int>{77, 78}));
    EXPECT_THAT(unknown(showing({})), IsEmpty());
    EXPECT_THAT(unknown(hovering({})), IsEmpty());
    EXPECT_EQ(showing({77, 78}).errorName(), invalid);
    EXPECT_EQ(hovering({77, 78}).errorName(), invalid);

    const QDBusMessage properties =
        call(QStringLiteral("GetGroupProperties"), {QVariant::fromValue(QList<int>{77}), QStringList()});
    EXPECT_EQ(properties.type(), QDBusMessage::ReplyMessage);
    EXPECT_THAT(qdbus_cast<BusMenuEntries>(properties.arguments().value(0)), IsEmpty());
}

TEST_F(BusMenuTest, TriggersWhatIsChosenIfItCanBeChosen)
{
    std::vector<std::string> chosen;
    QObject::connect(&menu, &QMenu::triggered, &menu,
                     [&](const QAction *action) { chosen.push_back(action->text().toStdString()); });
    narrow->setEnabled(false);
    EXPECT_EQ(event(2, "clicked").type(), QDBusMessage::ReplyMessage);
    for (const int id : {0, 1, 3, 4}) {
        EXPECT_EQ(event(id, "clicked").type(), QDBusMessage::ReplyMessage) << id;
    }
    EXPECT_EQ(event(5, "hovered").type(), QDBusMessage::ReplyMessage);
    EXPECT_THAT(chosen, ElementsAre("Wide"));

    const BusMenuEvents events{{5, QStringLiteral("clicked"), QDBusVariant(QVariant(0)), 0},
                               {77, QStringLiteral("clicked"), QDBusVariant(QVariant(0)), 0}};
    const QDBusMessage answer = call(QStringLiteral("EventGroup"), {QVariant::fromValue(events)});
    EXPECT_EQ(qdbus_cast<QList<int>>(answer.arguments().value(0)), QList<int>{77});
    EXPECT_THAT(chosen, ElementsAre("Wide", "About"));

    busMenu.setChoice(Choice::Barred);
    EXPECT_EQ(event(5, "clicked").type(), QDBusMessage::ReplyMessage);
    EXPECT_THAT(chosen, ElementsAre("Wide", "About"));
}

TEST_F(BusMenuTest, HasTheMenuMadeReadyWhenAnyPartOfItIsAboutToBeShown)
{
    int preparations = 0;
    QObject::connect(&menu, &QMenu::aboutToShow, &menu, [&] { ++preparations; });
    EXPECT_FALSE(aboutToShow(0));
    EXPECT_FALSE(aboutToShow(1));
    EXPECT_EQ(event(0, "opened").type(), QDBusMessage::ReplyMessage);
    EXPECT_EQ(preparations, 3);

    menu.popup({0, 0});
    ASSERT_EQ(preparations, 4);
    EXPECT_FALSE(aboutToShow(0)) << "it is open here";
    EXPECT_EQ(preparations, 4);
}

TEST_F(BusMenuTest, CarriesOutWhatWasChosenThoughTheHostAnnouncesTheMenuAgainBefore)
{
    std::vector<std::string> chosen;
    int fillings = 0;
    const auto fill = [&] {
        ++fillings;
        sizes.clear();
        for (const char *title : {"Wide", "Narrow"}) {
            QAction *size = sizes.addAction(QLatin1String(title));
            // As the menu's owner does, for a command may run an event loop of its own.
            const auto carryOut = [&chosen, size = QPointer<QAction>(size)] {
                chosen.push_back(size ? size->text().toStdString() : "nothing");
            };
            QObject::connect(size, &QAction::triggered, &menu, carryOut, Qt::QueuedConnection);
        }
    };
    fill();
    QObject::connect(&menu, &QMenu::aboutToShow, &menu, fill);
    const QDBusVariant noData(QVariant(0));
    const BusMenuEvents events{{3, QStringLiteral("clicked"), noData, 0}, {0, QStringLiteral("opened"), noData, 0}};
    static_cast<void>(call(QStringLiteral("EventGroup"), {QVariant::fromValue(events)}));
    EXPECT_TRUE(waitUntil([&] { return !chosen.empty(); }));
    EXPECT_THAT(chosen, ElementsAre("Narrow"));

    EXPECT_EQ(fillings, 1);
    EXPECT_FALSE(aboutToShow(0));
    EXPECT_EQ(fillings, 2);
}

TEST_F(BusMenuTest, TellsAMenuThatIsFilledAnewOnlyIfItHasOtherEntriesThen)
{
    std::vector<QString> titles{QStringLiteral("Wide"), QStringLiteral("Narrow")};
    QObject::connect(&menu, &QMenu::aboutToShow, &menu, [&] {
        sizes.clear();
        for (const QString &title : titles) {
            sizes.addAction(title);
        }
    });
    static_cast<void>(heard());
    const uint before = revision();
    EXPECT_FALSE(aboutToShow(0));
    EXPECT_THAT(heard(), IsEmpty());
    EXPECT_EQ(revision(), before);

    titles[1] = QStringLiteral("Tall");
    const QDBusMessage answer = call(QStringLiteral("AboutToShowGroup"), {QVariant::fromValue(QList<int>{0, 77})});
    EXPECT_EQ(qdbus_cast<QList<int>>(answer.arguments().value(0)), QList<int>{0});
    EXPECT_EQ(qdbus_cast<QList<int>>(answer.arguments().value(1)), QList<int>{77});
    EXPECT_THAT(heard(), ElementsAre("LayoutUpdated ui below 1"));
    EXPECT_EQ(revision(), before + 1);
    EXPECT_EQ(described(layout(1)), "1 Sizes [2 Wide, 6 Tall]");
}

TEST_F(BusMenuTest, TellsChangesByItselfInOneSignal)
{
    static_cast<void>(heard());
    about->setEnabled(false);
    narrow->setEnabled(false);
    EXPECT_TRUE(waitUntil([&] { return !recorder.heard.empty(); }));
    EXPECT_THAT(heard(), ElementsAre("ItemsPropertiesUpdated a(ia{sv})a(ias) 3 enabled:false 5 enabled:false"));

    busMenu.setChoice(Choice::Barred);
    EXPECT_THAT(heard(), ElementsAre("ItemsPropertiesUpdated a(ia{sv})a(ias) 1 enabled:false 2 enabled:false"));

    delete line;
    EXPECT_TRUE(waitUntil([&] { return !recorder.heard.empty(); }));
    EXPECT_THAT(heard(), ElementsAre("LayoutUpdated ui below 0"));
}

TEST_F(BusMenuTest, HearsOfSubmenusThatCameLater)
{
    QMenu &more = *menu.addMenu(QStringLiteral("More"));
    EXPECT_TRUE(waitUntil([&] { return !recorder.heard.empty(); }));
    static_cast<void>(heard());
    more.addAction(QStringLiteral("One"));
    EXPECT_TRUE(waitUntil([&] { return !recorder.heard.empty(); }));
    EXPECT_THAT(heard(), ElementsAre("LayoutUpdated ui below 6"));
    EXPECT_EQ(described(layout(6)), "6 More [7 One]");
}

TEST_F(BusMenuTest, HasHostsReadAnEntryAnewThatGetsACheckMarkOrLosesIt)
{
    static_cast<void>(heard());
    wide->setCheckable(true);
    wide->setChecked(true);
    EXPECT_TRUE(waitUntil([&] { return !recorder.heard.empty(); }));
    EXPECT_THAT(heard(), ElementsAre("LayoutUpdated ui below 1"));
    EXPECT_EQ(described(layout(1)), "1 Sizes [6 Wide, 3 Narrow]");
    EXPECT_EQ(layout(6).properties.value(QStringLiteral("toggle-state")), 1);

    wide->setChecked(false);
    EXPECT_TRUE(waitUntil([&] { return !recorder.heard.empty(); }));
    EXPECT_THAT(heard(), ElementsAre("ItemsPropertiesUpdated a(ia{sv})a(ias) 6 toggle-state:0"));

    wide->setCheckable(false);
    EXPECT_TRUE(waitUntil([&] { return !recorder.heard.empty(); }));
    EXPECT_THAT(heard(), ElementsAre("LayoutUpdated ui below 1"));
    EXPECT_EQ(described(layout(1)), "1 Sizes [7 Wide, 3 Narrow]");
    EXPECT_FALSE(layout(7).properties.contains(QStringLiteral("toggle-state")));
}

} // namespace

#include "BusMenuTest.moc"
