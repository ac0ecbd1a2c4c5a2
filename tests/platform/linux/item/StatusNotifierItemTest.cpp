#include "platform/linux/item/StatusNotifierItem.h"

#include "tests/support/BusPeer.h"
#include "tests/support/PrivateBus.h"
#include "tests/support/WaitUntil.h"

#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusPendingCall>
#include <QFile>
#include <QMenu>
#include <QPixmap>
#include <QXmlStreamReader>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace
{

const QString itemInterface = QStringLiteral("org.kde.StatusNotifierItem");
const QString itemPath = QStringLiteral("/StatusNotifierItem");

QIcon iconOf(Qt::GlobalColor colour)
{
    QPixmap pixmap(22, 22);
    pixmap.fill(colour);
    return QIcon(pixmap);
}

/// Hears the signals that an item sends on the bus, with their arguments.
class SignalRecorder final : public QObject
{
    Q_OBJECT

public:
    SignalRecorder(QDBusConnection connection, const QString &sender)
    {
        connection.connect(sender, itemPath, itemInterface, QString(), this, SLOT(record(QDBusMessage)));
    }

    std::vector<std::string> heard;

public Q_SLOTS:
    void record(const QDBusMessage &message)
    {
        QString text = message.member();
        for (const QVariant &argument : message.arguments()) {
            text += QLatin1Char(' ') + argument.toString();
        }
        heard.push_back(text.toStdString());
    }
};

class StatusNotifierItemTest : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(isStarted);
        look.image = iconOf(Qt::red);
        look.toolTip = QStringLiteral("Kivune Menu");
        item.setLook(look);
        item.serve(server.connection());
    }

    [[nodiscard]] QDBusMessage call(const QString &ofInterface, const QString &member, const QVariantList &arguments)
    {
        QDBusMessage message = QDBusMessage::createMethodCall(server.name(), itemPath, ofInterface, member);
        message.setArguments(arguments);
        const QDBusPendingCall pending = host.connection().asyncCall(message);
        EXPECT_TRUE(waitUntil([&] { return pending.isFinished(); }));
        return pending.reply();
    }

    [[nodiscard]] QVariant property(const QString &name)
    {
        const QDBusMessage answer =
            call(QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"), {itemInterface, name});
        EXPECT_EQ(answer.type(), QDBusMessage::ReplyMessage) << qPrintable(name);
        return answer.arguments().value(0).value<QDBusVariant>().variant();
    }

    /// What the item has sent since the last time. An answer of the item comes after all that it has sent before.
    [[nodiscard]] std::vector<std::string> heard()
    {
        static_cast<void>(property(QStringLiteral("Id")));
        return std::exchange(recorder.heard, {});
    }

    PrivateBus bus;
    bool isStarted = bus.start();
    BusPeer server{bus};
    BusPeer host{bus};
    StatusItemLook look;
    StatusNotifierItem item;
    SignalRecorder recorder{host.connection(), server.name()};
};

TEST_F(StatusNotifierItemTest, TellsWhatAHostAsksFor)
{
    EXPECT_EQ(property(QStringLiteral("Id")), QStringLiteral("kivmenua"));
    EXPECT_EQ(property(QStringLiteral("Category")), QStringLiteral("SystemServices"));
    EXPECT_EQ(property(QStringLiteral("Status")), QStringLiteral("Active"));
    EXPECT_EQ(property(QStringLiteral("Title")), QStringLiteral("Kivune Menu"));
    EXPECT_EQ(property(QStringLiteral("ItemIsMenu")), false);
    EXPECT_EQ(property(QStringLiteral("IconName")), QStringLiteral(""));
    EXPECT_FALSE(qvariant_cast<QDBusObjectPath>(property(QStringLiteral("Menu"))).path().isEmpty());
    EXPECT_EQ(qdbus_cast<NotifierToolTip>(property(QStringLiteral("ToolTip"))).title, QStringLiteral("Kivune Menu"));
    EXPECT_EQ(qdbus_cast<NotifierPixmaps>(property(QStringLiteral("IconPixmap"))),
              notifierPixmaps(look.image, IconLook::Normal));

    look.title = QStringLiteral("Title");
    look.enabled = false;
    item.setLook(look);
    EXPECT_EQ(property(QStringLiteral("Title")), QStringLiteral("Title"));
    EXPECT_EQ(qdbus_cast<NotifierPixmaps>(property(QStringLiteral("IconPixmap"))),
              notifierPixmaps(look.image, IconLook::Faded));
}

TEST_F(StatusNotifierItemTest, HasTheTypesThatItsContractSays)
{
    QFile contract(QStringLiteral(KIV_SOURCE_DIR "/resources/dbus/org.kde.StatusNotifierItem.xml"));
    ASSERT_TRUE(contract.open(QIODevice::ReadOnly));
    QXmlStreamReader xml(&contract);
    int properties = 0;
    while (!xml.atEnd()) {
        if (xml.readNext() == QXmlStreamReader::StartElement && xml.name() == QStringLiteral("property")) {
            ++properties;
            const QString name = xml.attributes().value(QStringLiteral("name")).toString();
            const QVariant value = property(name);
            const QString type = value.metaType() == QMetaType::fromType<QDBusArgument>()
                                     ? value.value<QDBusArgument>().currentSignature()
                                     : QString::fromLatin1(QDBusMetaType::typeToSignature(value.metaType()));
            EXPECT_EQ(type, xml.attributes().value(QStringLiteral("type"))) << qPrintable(name);
        }
    }
    EXPECT_EQ(properties, 16);
}

TEST_F(StatusNotifierItemTest, TellsEachChangeOnceAndNothingElse)
{
    item.setLook(look);
    EXPECT_THAT(heard(), testing::IsEmpty());

    look.image = iconOf(Qt::blue);
    item.setLook(look);
    item.setLook(look);
    EXPECT_THAT(heard(), testing::ElementsAre("NewIcon"));

    look.enabled = false;
    item.setLook(look);
    EXPECT_THAT(heard(), testing::ElementsAre("NewIcon"));

    look.title = QStringLiteral("Title");
    item.setLook(look);
    EXPECT_THAT(heard(), testing::ElementsAre("NewTitle"));

    look.toolTip = QStringLiteral("Another");
    item.setLook(look);
    EXPECT_THAT(heard(), testing::ElementsAre("NewToolTip"));
}

TEST_F(StatusNotifierItemTest, IsPassiveWhileItHasNoImage)
{
    const QIcon image = std::exchange(look.image, QIcon());
    item.setLook(look);
    EXPECT_EQ(property(QStringLiteral("Status")), QStringLiteral("Passive"));
    EXPECT_THAT(heard(), testing::ElementsAre("NewIcon", "NewStatus Passive"));

    look.image = image;
    item.setLook(look);
    EXPECT_EQ(property(QStringLiteral("Status")), QStringLiteral("Active"));
    EXPECT_THAT(heard(), testing::ElementsAre("NewIcon", "NewStatus Active"));
}

TEST_F(StatusNotifierItemTest, IsPressedWhereItsHostSays)
{
    std::vector<std::optional<QPoint>> presses;
    QObject::connect(&item, &StatusNotifierItem::pressed, &item,
                     [&](std::optional<QPoint> place) { presses.push_back(place); });
    EXPECT_EQ(call(itemInterface, QStringLiteral("Activate"), {300, 20}).type(), QDBusMessage::ReplyMessage);
    EXPECT_EQ(call(itemInterface, QStringLiteral("ContextMenu"), {310, -20}).type(), QDBusMessage::ReplyMessage);
    EXPECT_EQ(call(itemInterface, QStringLiteral("SecondaryActivate"), {7, 8}).type(), QDBusMessage::ReplyMessage);
    EXPECT_EQ(call(itemInterface, QStringLiteral("Activate"), {0, 0}).type(), QDBusMessage::ReplyMessage);
    EXPECT_TRUE(waitUntil([&] { return presses.size() >= 4; }));
    EXPECT_THAT(presses, testing::ElementsAre(QPoint(300, 20), QPoint(310, -20), QPoint(7, 8), std::nullopt));
}

TEST_F(StatusNotifierItemTest, NamesTheMenuThatAHostMayDraw)
{
    EXPECT_EQ(qvariant_cast<QDBusObjectPath>(property(QStringLiteral("Menu"))).path(), QStringLiteral("/NO_DBUSMENU"));

    QMenu menu;
    StatusNotifierItem withMenu(&menu);
    EXPECT_EQ(withMenu.menu().path(), QStringLiteral("/StatusNotifierItem/Menu"));
    const BusPeer servesMenu(bus);
    withMenu.serve(servesMenu.connection());
    QDBusMessage question =
        QDBusMessage::createMethodCall(servesMenu.name(), withMenu.menu().path(),
                                       QStringLiteral("com.canonical.dbusmenu"), QStringLiteral("GetLayout"));
    question.setArguments({0, 0, QStringList()});
    const QDBusPendingCall answer = host.connection().asyncCall(question);
    ASSERT_TRUE(waitUntil([&] { return answer.isFinished(); }));
    EXPECT_EQ(answer.reply().type(), QDBusMessage::ReplyMessage);
}

TEST_F(StatusNotifierItemTest, TakesTheWheelForNothing)
{
    int presses = 0;
    QObject::connect(&item, &StatusNotifierItem::pressed, &item, [&] { ++presses; });
    EXPECT_EQ(call(itemInterface, QStringLiteral("Scroll"), {120, QStringLiteral("vertical")}).type(),
              QDBusMessage::ReplyMessage);
    // Presses are told in the order of the calls.
    EXPECT_EQ(call(itemInterface, QStringLiteral("Activate"), {1, 1}).type(), QDBusMessage::ReplyMessage);
    EXPECT_TRUE(waitUntil([&] { return presses > 0; }));
    EXPECT_EQ(presses, 1);
}

} // namespace

#include "StatusNotifierItemTest.moc"
