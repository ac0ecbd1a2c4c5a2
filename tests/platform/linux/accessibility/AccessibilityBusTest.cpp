#include "platform/linux/accessibility/AccessibilityBus.h"

#include "tests/support/FakeScreenReader.h"
#include "tests/support/ScopedVariable.h"
#include "tests/support/WaitUntil.h"

#include <QElapsedTimer>

#include <gtest/gtest.h>

namespace
{

/// The session bus is one of the test's own; that the tree is then served is what tests/session/ScreenReaderTest.cpp
/// has with a real reader.
class AccessibilityBusTest : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(bus.start());
        reader.emplace(bus);
    }

    PrivateBus bus;
    const ScopedVariable address{"DBUS_SESSION_BUS_ADDRESS", bus.address().toLocal8Bit()};
    std::optional<FakeScreenReader> reader;
};

TEST_F(AccessibilityBusTest, SeeksTheBusOfAReaderThatBeginsLater)
{
    ASSERT_TRUE(reader->come());
    SessionBus session;
    const AccessibilityBus accessibility(session);
    ASSERT_TRUE(waitUntil([this] { return reader->isAsked(); }));
    EXPECT_FALSE(reader->isSought());
    reader->begin();
    EXPECT_TRUE(waitUntil([this] { return reader->isSought(); }));
}

TEST_F(AccessibilityBusTest, SeeksTheBusOfAReaderThatComesLater)
{
    SessionBus session;
    const AccessibilityBus accessibility(session);
    reader->begin();
    ASSERT_TRUE(reader->come());
    EXPECT_TRUE(waitUntil([this] { return reader->isSought(); }));
}

TEST_F(AccessibilityBusTest, SeeksItOnTheBusThatTheSessionGetsAfterTheFirst)
{
    SessionBus session(std::chrono::milliseconds(50));
    const AccessibilityBus accessibility(session);
    reader.reset();
    ASSERT_TRUE(bus.start());
    reader.emplace(bus);
    reader->begin();
    ASSERT_TRUE(reader->come());
    EXPECT_TRUE(waitUntil([this] { return reader->isSought(); }));
}

TEST_F(AccessibilityBusTest, WaitsForNobody)
{
    reader->fallSilent();
    ASSERT_TRUE(reader->come());
    SessionBus session;
    QElapsedTimer sinceThen;
    sinceThen.start();
    const AccessibilityBus accessibility(session);
    EXPECT_LT(sinceThen.elapsed(), 1000);
    ASSERT_TRUE(waitUntil([this] { return reader->isAsked(); }));
    EXPECT_FALSE(reader->isSought());
}

} // namespace
