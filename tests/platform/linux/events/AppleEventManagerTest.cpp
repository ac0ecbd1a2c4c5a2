#include "platform/linux/bus/WorkInTurns.h"
#include "platform/linux/include/SessionBus.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/LogLines.h"
#include "tests/support/PrivateBus.h"
#include "tests/support/WaitUntil.h"

#include <Carbon/Carbon.h>
#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QElapsedTimer>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <limits>
#include <memory>
#include <vector>

namespace
{

constexpr AEEventClass testClass = fourCharCode("test");
constexpr AEEventID numberedId = fourCharCode("numb");
constexpr AEKeyword dataKey = fourCharCode("data");

/// An event for a process, given up with its scope.
struct Event {
    explicit Event(SInt32 pid = 1)
    {
        AEAddressDesc target;
        EXPECT_EQ(AECreateDesc(typeKernelProcessID, &pid, sizeof pid, &target), noErr);
        EXPECT_EQ(AECreateAppleEvent(testClass, numberedId, &target, kAutoGenerateReturnID, kAnyTransactionID, &event),
                  noErr);
        EXPECT_EQ(AEDisposeDesc(&target), noErr);
    }
    ~Event() { AEDisposeDesc(&event); }
    Event(const Event &) = delete;
    Event &operator=(const Event &) = delete;

    void setNumber(SInt32 number)
    {
        EXPECT_EQ(AEPutParamPtr(&event, numberedId, typeSInt32, &number, sizeof number), noErr);
    }
    [[nodiscard]] OSErr send(AESendMode mode = kAENoReply) const
    {
        return AESend(&event, nullptr, mode, kAENormalPriority, kNoTimeOut, nullptr, nullptr);
    }

    AppleEvent event{};
};

TEST(AECreateDesc, RefusesWhatIsNotThere)
{
    const char data[] = "data";
    AEDesc desc{1, reinterpret_cast<AEDataStorage>(1)};
    EXPECT_EQ(AECreateDesc(typeSInt32, data, 4, nullptr), paramErr);
    for (const Size size : {Size(1), std::numeric_limits<Size>::max()}) {
        desc = {1, reinterpret_cast<AEDataStorage>(1)};
        EXPECT_EQ(AECreateDesc(typeSInt32, nullptr, size, &desc), paramErr);
        EXPECT_EQ(desc.descriptorType, typeNull);
        EXPECT_EQ(desc.dataHandle, nullptr);
    }
    EXPECT_EQ(AECreateDesc(typeSInt32, data, -1, &desc), paramErr);
    EXPECT_EQ(AECreateDesc(typeSInt32, data, std::numeric_limits<Size>::min(), &desc), paramErr);
    EXPECT_EQ(AECreateDesc(typeSInt32, data, std::numeric_limits<Size>::max(), &desc), memFullErr);
    EXPECT_EQ(desc.dataHandle, nullptr);
}

TEST(AECreateDesc, MayBeEmpty)
{
    AEDesc desc;
    EXPECT_EQ(AECreateDesc(typeKernelProcessID, nullptr, 0, &desc), noErr);
    EXPECT_EQ(desc.descriptorType, typeKernelProcessID);
    EXPECT_EQ(AEDisposeDesc(&desc), noErr);
}

TEST(AEDisposeDesc, MakesItNullAndMayBeRepeated)
{
    AEDesc desc;
    ASSERT_EQ(AECreateDesc(typeSInt32, "data", 4, &desc), noErr);
    EXPECT_EQ(AEDisposeDesc(&desc), noErr);
    EXPECT_EQ(desc.descriptorType, typeNull);
    EXPECT_EQ(desc.dataHandle, nullptr);
    EXPECT_EQ(AEDisposeDesc(&desc), noErr);
    EXPECT_EQ(AEDisposeDesc(nullptr), paramErr);
}

TEST(AECreateAppleEvent, NeedsATargetAndAResult)
{
    AEDesc target;
    ASSERT_EQ(AECreateDesc(typeKernelProcessID, "pid!", 4, &target), noErr);
    AppleEvent event{1, reinterpret_cast<AEDataStorage>(1)};
    EXPECT_EQ(AECreateAppleEvent(testClass, numberedId, &target, -1, 0, nullptr), paramErr);
    EXPECT_EQ(AECreateAppleEvent(testClass, numberedId, nullptr, -1, 0, &event), paramErr);
    EXPECT_EQ(event.descriptorType, typeNull);
    EXPECT_EQ(event.dataHandle, nullptr);
    AEDisposeDesc(&target);
}

TEST(AEPutParamPtr, RefusesWhatIsNotThere)
{
    Event made;
    AppleEvent none{typeNull, nullptr};
    AEDesc plain;
    ASSERT_EQ(AECreateDesc(typeSInt32, "data", 4, &plain), noErr);
    EXPECT_EQ(AEPutParamPtr(nullptr, dataKey, typeSInt32, "data", 4), paramErr);
    EXPECT_EQ(AEPutParamPtr(&none, dataKey, typeSInt32, "data", 4), paramErr);
    EXPECT_EQ(AEPutParamPtr(&plain, dataKey, typeSInt32, "data", 4), paramErr) << "no event";
    EXPECT_EQ(AEPutParamPtr(&made.event, dataKey, typeSInt32, nullptr, 4), paramErr);
    EXPECT_EQ(AEPutParamPtr(&made.event, dataKey, typeSInt32, nullptr, std::numeric_limits<Size>::max()), paramErr);
    EXPECT_EQ(AEPutParamPtr(&made.event, dataKey, typeSInt32, "data", -1), paramErr);
    EXPECT_EQ(AEPutParamPtr(&made.event, dataKey, typeSInt32, "data", std::numeric_limits<Size>::max()), memFullErr);
    EXPECT_EQ(AEGetParamPtr(&made.event, dataKey, typeSInt32, nullptr, nullptr, 0, nullptr), errAEDescNotFound);
    AEDisposeDesc(&plain);
}

TEST(AEPutParamPtr, HoldsNoMoreThanTheBusCanCarry)
{
    Event made;
    const std::vector<char> large(std::size_t{20} * 1024 * 1024);
    const auto size = static_cast<Size>(large.size());
    EXPECT_EQ(AEPutParamPtr(&made.event, dataKey, typeSInt32, large.data(), size), noErr);
    EXPECT_EQ(AEPutParamPtr(&made.event, fourCharCode("more"), typeSInt32, large.data(), size), memFullErr);
    EXPECT_EQ(AEPutParamPtr(&made.event, dataKey, typeSInt32, large.data(), size), noErr) << "replaces, so it fits";
    EXPECT_EQ(AEPutParamPtr(&made.event, dataKey, typeSInt32, "data", 4), noErr);
    EXPECT_EQ(AEPutParamPtr(&made.event, fourCharCode("more"), typeSInt32, large.data(), size), noErr);
}

TEST(AEPutParamPtr, ReplacesTypeAndContent)
{
    Event made;
    ASSERT_EQ(AEPutParamPtr(&made.event, dataKey, typeSInt32, "data", 4), noErr);
    ASSERT_EQ(AEPutParamPtr(&made.event, dataKey, fourCharCode("ptxt"), "no", 2), noErr);
    DescType type = 0;
    Size size = -1;
    std::array<char, 4> data{'-', '-', '-', '-'};
    EXPECT_EQ(AEGetParamPtr(&made.event, dataKey, fourCharCode("ptxt"), &type, data.data(), 4, &size), noErr);
    EXPECT_EQ(type, fourCharCode("ptxt"));
    EXPECT_EQ(size, 2);
    EXPECT_EQ(std::string(data.data(), 4), "no--");
}

TEST(AEGetParamPtr, CopiesAtMostWhatIsAskedFor)
{
    Event made;
    ASSERT_EQ(AEPutParamPtr(&made.event, dataKey, typeUInt32, "12345678", 8), noErr);
    struct Case {
        Size maximumSize;
        const char *expected;
    };
    for (const Case &c : {Case{0, "----------"}, Case{1, "1---------"}, Case{7, "1234567---"}, Case{8, "12345678--"},
                          Case{9, "12345678--"}, Case{std::numeric_limits<Size>::max(), "12345678--"}}) {
        char data[] = "----------";
        Size size = -1;
        EXPECT_EQ(AEGetParamPtr(&made.event, dataKey, typeUInt32, nullptr, data, c.maximumSize, &size), noErr);
        EXPECT_STREQ(data, c.expected) << c.maximumSize;
        EXPECT_EQ(size, 8) << "its full size";
    }
    Size size = -1;
    EXPECT_EQ(AEGetParamPtr(&made.event, dataKey, typeUInt32, nullptr, nullptr, 0, &size), noErr);
    EXPECT_EQ(size, 8);
}

TEST(AEGetParamPtr, SaysWhyThereIsNothing)
{
    Event made;
    ASSERT_EQ(AEPutParamPtr(&made.event, dataKey, typeUInt32, "1234", 4), noErr);
    const AppleEvent none{typeNull, nullptr};
    char data[] = "----";
    DescType type = 0;
    Size size = -1;
    const auto get = [&](const AppleEvent *event, AEKeyword keyword, DescType wanted, void *to, Size maximumSize) {
        return AEGetParamPtr(event, keyword, wanted, &type, to, maximumSize, &size);
    };
    EXPECT_EQ(get(nullptr, dataKey, typeUInt32, data, 4), paramErr);
    EXPECT_EQ(get(&none, dataKey, typeUInt32, data, 4), paramErr);
    EXPECT_EQ(get(&made.event, dataKey, typeUInt32, nullptr, 4), paramErr);
    EXPECT_EQ(get(&made.event, dataKey, typeUInt32, data, -1), paramErr);
    EXPECT_EQ(get(&made.event, fourCharCode("none"), typeUInt32, data, 4), errAEDescNotFound);
    EXPECT_EQ(get(&made.event, dataKey, typeSInt32, data, 4), errAECoercionFail);
    EXPECT_STREQ(data, "----");
    EXPECT_EQ(type, 0u);
    EXPECT_EQ(size, -1);
}

TEST(AEGetAttributePtr, HasNoSenderInAnEventMadeHere)
{
    Event made;
    SInt32 pid = 42;
    const auto get = [&](const AppleEvent *event, AEKeyword keyword, void *to, Size maximumSize) {
        return AEGetAttributePtr(event, keyword, typeSInt32, nullptr, to, maximumSize, nullptr);
    };
    EXPECT_EQ(get(&made.event, keySenderPIDAttr, &pid, 4), errAEDescNotFound);
    EXPECT_EQ(get(&made.event, dataKey, &pid, 4), errAEDescNotFound);
    EXPECT_EQ(get(nullptr, keySenderPIDAttr, &pid, 4), paramErr);
    EXPECT_EQ(get(&made.event, keySenderPIDAttr, nullptr, 4), paramErr);
    EXPECT_EQ(get(&made.event, keySenderPIDAttr, &pid, -4), paramErr);
    EXPECT_EQ(pid, 42);
}

TEST(AESend, RefusesWhatIsNoEvent)
{
    AppleEvent none{typeNull, nullptr};
    AEDesc plain;
    ASSERT_EQ(AECreateDesc(typeKernelProcessID, "pid!", 4, &plain), noErr);
    for (const AppleEvent *event : {static_cast<const AppleEvent *>(nullptr), const_cast<const AppleEvent *>(&none),
                                    const_cast<const AppleEvent *>(&plain)}) {
        EXPECT_EQ(AESend(event, nullptr, kAENoReply, kAENormalPriority, kNoTimeOut, nullptr, nullptr), paramErr);
    }
    AppleEvent unaddressed;
    for (const Size size : {Size(0), Size(3)}) {
        AEDesc target;
        ASSERT_EQ(AECreateDesc(typeKernelProcessID, "pid!", size, &target), noErr);
        ASSERT_EQ(AECreateAppleEvent(testClass, numberedId, &target, -1, 0, &unaddressed), noErr);
        EXPECT_EQ(AESend(&unaddressed, nullptr, kAENoReply, 0, kNoTimeOut, nullptr, nullptr), paramErr);
        AEDisposeDesc(&unaddressed);
        AEDisposeDesc(&target);
    }
    AEDisposeDesc(&plain);
}

TEST(AESend, ReportsAMissingBusOnlyForATargetThatRuns)
{
    ASSERT_FALSE(SessionBus::instance().isConnected()) << "must run before a bus is started";
    EXPECT_EQ(Event(0).send(), procNotFound);
    EXPECT_EQ(Event(-1).send(kAEWaitReply), procNotFound);
    EXPECT_EQ(Event(static_cast<SInt32>(QCoreApplication::applicationPid())).send(), connectionInvalid);
    EXPECT_EQ(Event(static_cast<SInt32>(QCoreApplication::applicationPid())).send(kAEWaitReply), connectionInvalid);
}

OSErr receivedSize(const AppleEvent *event, AppleEvent *reply, SRefCon refcon)
{
    EXPECT_EQ(event->descriptorType, typeAppleEvent);
    EXPECT_EQ(reply->descriptorType, typeNull);
    Size size = -1;
    AEGetParamPtr(event, dataKey, typeUInt32, nullptr, nullptr, 0, &size);
    static_cast<std::vector<Size> *>(refcon)->push_back(size);
    return 11;
}

OSErr otherHandler(const AppleEvent *, AppleEvent *, SRefCon)
{
    return 12;
}

OSErr selfRemoving(const AppleEvent *, AppleEvent *, SRefCon)
{
    EXPECT_EQ(AERemoveEventHandler(testClass, numberedId, selfRemoving, false), noErr);
    return 13;
}

OSErr slow(const AppleEvent *, AppleEvent *, SRefCon)
{
    const QDeadlineTimer end(2 * WorkInTurns::defaultMaxShareOfATurn, Qt::PreciseTimer);
    while (!end.hasExpired()) {
    }
    return 14;
}

OSErr throwing(const AppleEvent *, AppleEvent *, SRefCon)
{
    throw std::runtime_error("on purpose");
}

/// With a bus, which stays for all of these: there is only one connection in the process.
class AppleEventManager : public testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        daemon = std::make_unique<PrivateBus>();
        ASSERT_TRUE(daemon->start());
        qputenv("DBUS_SESSION_BUS_ADDRESS", daemon->address().toUtf8());
        ASSERT_TRUE(waitUntil([] { return SessionBus::instance().isConnected(); }));
    }
    static void TearDownTestSuite() { daemon.reset(); }

    [[nodiscard]] static bool isNameOwned()
    {
        return SessionBus::instance().processOf(QStringLiteral("com.tamborel.kivune.p%1").arg(self)) == self;
    }

    static std::unique_ptr<PrivateBus> daemon;
    static inline const auto self = static_cast<SInt32>(QCoreApplication::applicationPid());
};
std::unique_ptr<PrivateBus> AppleEventManager::daemon;

TEST_F(AppleEventManager, RefusesAHandlerThatIsNone)
{
    EXPECT_EQ(AEInstallEventHandler(testClass, numberedId, nullptr, nullptr, false), paramErr);
    EXPECT_EQ(AERemoveEventHandler(testClass, numberedId, nullptr, false), paramErr);
    EXPECT_EQ(AERemoveEventHandler(testClass, numberedId, otherHandler, false), errAEHandlerNotFound);
    EXPECT_FALSE(isNameOwned());
}

TEST_F(AppleEventManager, RemovesAHandlerWithinASecondWhenTheBusIsStuck)
{
    ASSERT_EQ(AEInstallEventHandler(testClass, numberedId, otherHandler, nullptr, false), noErr);
    daemon->suspend();
    QElapsedTimer time;
    time.start();
    EXPECT_EQ(AERemoveEventHandler(testClass, numberedId, otherHandler, false), noErr);
    EXPECT_LT(time.elapsed(), 1000);
    daemon->resume();
    EXPECT_FALSE(isNameOwned());
}

TEST_F(AppleEventManager, ReceivesEventsWhileAHandlerIsInstalled)
{
    std::vector<Size> sizes;
    EXPECT_EQ(Event(self).send(), procNotFound);
    ASSERT_EQ(AEInstallEventHandler(testClass, numberedId, receivedSize, &sizes, false), noErr);
    ASSERT_EQ(AEInstallEventHandler(testClass, dataKey, otherHandler, nullptr, false), noErr);
    EXPECT_TRUE(isNameOwned());

    Event made(self);
    ASSERT_EQ(AEPutParamPtr(&made.event, dataKey, typeUInt32, "123", 3), noErr);
    EXPECT_EQ(made.send(), noErr);
    EXPECT_TRUE(waitUntil([&] { return sizes == std::vector<Size>{3}; }));
    EXPECT_EQ(made.send(kAEWaitReply), 11);

    EXPECT_EQ(AERemoveEventHandler(testClass, numberedId, otherHandler, false), errAEHandlerNotFound);
    EXPECT_EQ(AERemoveEventHandler(testClass, numberedId, receivedSize, false), noErr);
    EXPECT_EQ(made.send(kAEWaitReply), errAEEventNotHandled) << "the other ID does not take it";
    EXPECT_EQ(sizes.size(), 2u);
    EXPECT_TRUE(isNameOwned());
    EXPECT_EQ(AERemoveEventHandler(testClass, dataKey, otherHandler, false), noErr);
    EXPECT_FALSE(isNameOwned());
    EXPECT_EQ(made.send(), procNotFound);
}

TEST_F(AppleEventManager, SaysWhichEventHasNoHandler)
{
    ASSERT_EQ(AEInstallEventHandler(testClass, dataKey, otherHandler, nullptr, false), noErr);
    LogLines log;
    EXPECT_EQ(Event(self).send(kAEWaitReply), errAEEventNotHandled);
    EXPECT_THAT(log.take(), testing::Contains("kiv.link: refused an event test numb: it has no handler"));
    EXPECT_EQ(AERemoveEventHandler(testClass, dataKey, otherHandler, false), noErr);
}

TEST_F(AppleEventManager, ReplacesAHandler)
{
    std::vector<Size> sizes;
    ASSERT_EQ(AEInstallEventHandler(testClass, numberedId, receivedSize, &sizes, false), noErr);
    ASSERT_EQ(AEInstallEventHandler(testClass, numberedId, otherHandler, nullptr, false), noErr);
    EXPECT_EQ(Event(self).send(kAEWaitReply), 12);
    EXPECT_EQ(AERemoveEventHandler(testClass, numberedId, receivedSize, false), errAEHandlerNotFound);
    EXPECT_EQ(AERemoveEventHandler(testClass, numberedId, otherHandler, false), noErr);
    EXPECT_TRUE(sizes.empty());
}

TEST_F(AppleEventManager, LetsAHandlerRemoveItself)
{
    ASSERT_EQ(AEInstallEventHandler(testClass, numberedId, selfRemoving, nullptr, false), noErr);
    EXPECT_EQ(Event(self).send(kAEWaitReply), 13);
    EXPECT_FALSE(isNameOwned());
}

TEST_F(AppleEventManager, AnswersItsOwnProcessRightAfterASlowHandler)
{
    ASSERT_EQ(AEInstallEventHandler(testClass, numberedId, slow, nullptr, false), noErr);
    EXPECT_EQ(Event(self).send(kAEWaitReply), 14);
    EXPECT_EQ(Event(self).send(kAEWaitReply), 14);
    EXPECT_EQ(AERemoveEventHandler(testClass, numberedId, slow, false), noErr);
}

TEST_F(AppleEventManager, ReportsAHandlerThatThrows)
{
    ASSERT_EQ(AEInstallEventHandler(testClass, numberedId, throwing, nullptr, false), noErr);
    EXPECT_EQ(Event(self).send(kAEWaitReply), errAEEventFailed);
    EXPECT_EQ(AERemoveEventHandler(testClass, numberedId, throwing, false), noErr);
}

TEST_F(AppleEventManager, ReachesAnotherProcess)
{
    ChildProcess peer;
    ASSERT_TRUE(peer.start(QStringLiteral(KIV_CARBON_PEER), {QStringLiteral("receive")}));
    ASSERT_TRUE(waitUntil([&] { return peer.output().contains("ready\n"); }));
    const auto pid = static_cast<SInt32>(peer.pid());
    Event made(pid);
    made.setNumber(21);
    EXPECT_EQ(made.send(), noErr);
    made.setNumber(22);
    AppleEvent reply{1, reinterpret_cast<AEDataStorage>(1)};
    EXPECT_EQ(AESend(&made.event, &reply, kAEWaitReply, kAENormalPriority, kAEDefaultTimeout, nullptr, nullptr), 22);
    EXPECT_EQ(reply.descriptorType, typeNull);
    const QByteArray from = " from " + QByteArray::number(self) + '\n';
    EXPECT_TRUE(waitUntil([&] { return peer.output() == "ready\n21" + from + "22" + from; })) << peer.output().data();

    peer.process().terminate();
    ASSERT_TRUE(waitUntil([&] { return !peer.isRunning(); }));
    EXPECT_EQ(made.send(), procNotFound);
}

/// Remembers the sender's process ID, or 0 when it had gone before the bus could be asked.
OSErr rememberSender(const AppleEvent *event, AppleEvent *, SRefCon refcon)
{
    SInt32 number = 0;
    EXPECT_EQ(AEGetParamPtr(event, numberedId, typeSInt32, nullptr, &number, sizeof number, nullptr), noErr);
    EXPECT_EQ(number, 41);
    SInt32 pid = 0;
    DescType type = 0;
    Size size = 0;
    const OSErr status = AEGetAttributePtr(event, keySenderPIDAttr, typeSInt32, &type, &pid, sizeof pid, &size);
    if (status == noErr) {
        EXPECT_EQ(type, typeSInt32);
        EXPECT_EQ(size, 4);
        // What is asked for in another type is not given.
        SInt32 none = 0;
        EXPECT_EQ(AEGetAttributePtr(event, keySenderPIDAttr, typeUInt32, nullptr, &none, sizeof none, nullptr),
                  errAECoercionFail);
    } else {
        EXPECT_EQ(status, errAEDescNotFound);
    }
    static_cast<std::vector<SInt32> *>(refcon)->push_back(pid);
    return noErr;
}

TEST_F(AppleEventManager, LosesNothingThatIsSentJustBeforeTheEnd)
{
    std::vector<SInt32> senders;
    ASSERT_EQ(AEInstallEventHandler(testClass, numberedId, rememberSender, &senders, false), noErr);
    const QString ways[] = {QStringLiteral("leave"), QStringLiteral("exit"), QStringLiteral("return")};
    for (std::size_t count = 1; count <= 30; ++count) {
        ChildProcess peer;
        ASSERT_TRUE(peer.start(QStringLiteral(KIV_CARBON_PEER),
                               {QStringLiteral("tell"), QString::number(self), ways[count % std::size(ways)]}));
        const auto pid = static_cast<SInt32>(peer.pid());
        ASSERT_TRUE(waitUntil([&] { return senders.size() == count && !peer.isRunning(); }));
        EXPECT_EQ(peer.exitCode(), 0);
        EXPECT_TRUE(senders.back() == pid || senders.back() == 0) << senders.back();
    }
    EXPECT_EQ(AERemoveEventHandler(testClass, numberedId, rememberSender, false), noErr);
}

TEST_F(AppleEventManager, StaysInstalledAtTheEndOfTheProcess)
{
    // Nobody removes this one: the program's end must cope.
    EXPECT_EQ(AEInstallEventHandler(testClass, numberedId, otherHandler, nullptr, false), noErr);
    EXPECT_TRUE(isNameOwned());
}

} // namespace
