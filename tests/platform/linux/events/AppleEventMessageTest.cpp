#include "platform/linux/events/AppleEventMessage.h"

#include "tests/platform/linux/events/RawEvent.h"
#include "tests/support/BusPeer.h"
#include "tests/support/PrivateBus.h"
#include "tests/support/ProcessMemory.h"
#include "tests/support/WaitUntil.h"

#include <QCoreApplication>
#include <QDBusVirtualObject>

#include <gtest/gtest.h>

#include <malloc.h>
#include <optional>

namespace
{

/// Keeps the last message that has come to it over a bus: only what has come so is yet to be unpacked.
class Letterbox final : public QDBusVirtualObject
{
public:
    [[nodiscard]] QString introspect(const QString &) const override { return {}; }
    bool handleMessage(const QDBusMessage &message, const QDBusConnection &) override
    {
        last = message;
        return true;
    }

    std::optional<QDBusMessage> last;
};

class EventMessage : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(bus.start());
        receiver.emplace(bus);
        ASSERT_TRUE(receiver->connection().registerVirtualObject(QStringLiteral("/com/tamborel/kivune/AppleEvents"),
                                                                 &letterbox));
    }

    /// An event with so many parameters, each with a keyword of its own and without bytes, as it comes to a receiver.
    [[nodiscard]] QDBusMessage received(int parameters)
    {
        letterbox.last.reset();
        const BusPeer sender(bus);
        const QString four = QStringLiteral("four");
        QList<RawParameter> list;
        for (int number = 0; number < parameters; ++number) {
            list.append({QStringLiteral("%1").arg(number, 4, 36, QLatin1Char('0')), four, QByteArray()});
        }
        EXPECT_TRUE(sender.connection().send(rawEvent(receiver->name(), four, four, list)));
        EXPECT_TRUE(waitUntil([this] { return letterbox.last.has_value(); }));
        return letterbox.last.value_or(QDBusMessage());
    }

    PrivateBus bus;
    Letterbox letterbox;
    std::optional<BusPeer> receiver;
};

} // namespace

TEST_F(EventMessage, HasSixtyFourParametersAtTheMost)
{
    const std::optional<AppleEventContents> event = eventOf(received(64));
    ASSERT_TRUE(event);
    EXPECT_EQ(event->parameters().size(), 64u);
    EXPECT_FALSE(eventOf(received(65)));
}

TEST_F(EventMessage, OfTooManyParametersIsNotUnpacked)
{
    constexpr int parameters = 200'000; // Unpacked they are more than 20 MB.
    const QDBusMessage message = received(parameters);
    ASSERT_EQ(message.signature(), QStringLiteral("ssa(ssay)"));
    ::malloc_trim(0); // What is free in the heap would take them in without a trace.
    const qint64 self = QCoreApplication::applicationPid();
    ASSERT_TRUE(ProcessMemory::forgetPeak());
    const qint64 before = ProcessMemory::peakKilobytes(self);
    EXPECT_FALSE(eventOf(message));
    EXPECT_LT(ProcessMemory::peakKilobytes(self) - before, 4'000) << "kB";
}
