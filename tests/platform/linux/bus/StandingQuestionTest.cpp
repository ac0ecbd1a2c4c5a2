#include "platform/linux/bus/StandingQuestion.h"

#include "tests/support/BusPeer.h"
#include "tests/support/PrivateBus.h"
#include "tests/support/ScopedVariable.h"
#include "tests/support/WaitUntil.h"

#include <QDBusConnectionInterface>
#include <QDBusVirtualObject>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <utility>
#include <vector>

namespace
{

using namespace std::chrono_literals;

const QString serviceName = QStringLiteral("of.the.Weather");
const QString servicePath = QStringLiteral("/of/the/weather");

/// Anybody's news of the weather: what is said of rain, or of something else.
void sendNews(const BusPeer &peer, const QString &what = QStringLiteral("rain"))
{
    QDBusMessage news = QDBusMessage::createSignal(servicePath, serviceName, QStringLiteral("Changed"));
    news.setArguments({what});
    EXPECT_TRUE(peer.connection().send(news));
}

/// Answers with a number, at once or when the test lets it.
class Weather final : public QDBusVirtualObject
{
public:
    explicit Weather(const PrivateBus &bus)
        : peer(bus)
    {
        EXPECT_TRUE(peer.connection().registerVirtualObject(servicePath, this));
        EXPECT_TRUE(peer.connection().registerService(serviceName));
    }

    [[nodiscard]] QString introspect(const QString &) const override { return {}; }
    bool handleMessage(const QDBusMessage &question, const QDBusConnection &) override
    {
        ++questions;
        waiting.push_back(question);
        if (!isSlow) {
            answer();
        }
        return true;
    }
    void answer()
    {
        for (const QDBusMessage &question : std::exchange(waiting, {})) {
            peer.connection().send(question.createReply(temperature));
        }
    }

    BusPeer peer;
    int temperature = 20;
    bool isSlow = false;
    int questions = 0;
    std::vector<QDBusMessage> waiting;
};

class StandingQuestionTest : public testing::Test
{
protected:
    void SetUp() override { ASSERT_TRUE(isStarted); }

    void ask()
    {
        question.emplace(
            bus, QDBusMessage::createMethodCall(serviceName, servicePath, serviceName, QStringLiteral("Temperature")),
            StandingQuestion::News{serviceName, QStringLiteral("Changed"), {QStringLiteral("rain")}});
        QObject::connect(&*question, &StandingQuestion::answered, [this](const QDBusMessage &answer) {
            heard.push_back(answer.type() == QDBusMessage::ReplyMessage ? answer.arguments().value(0).toInt() : none);
        });
    }
    [[nodiscard]] bool hears(int temperature) const
    {
        return waitUntil([&] { return !heard.empty() && heard.back() == temperature; });
    }

    static constexpr int none = -1000;

    PrivateBus daemon;
    bool isStarted = daemon.start();
    ScopedVariable address{"DBUS_SESSION_BUS_ADDRESS", daemon.address().toUtf8()};
    SessionBus bus{10ms};
    std::optional<StandingQuestion> question;
    std::vector<int> heard;
};

} // namespace

TEST_F(StandingQuestionTest, IsAnsweredByWhoIsThereAndByWhoComesLater)
{
    std::optional<Weather> weather(std::in_place, daemon);
    ask();
    EXPECT_TRUE(hears(20));
    weather.reset();
    EXPECT_TRUE(hears(none));
    weather.emplace(daemon);
    EXPECT_TRUE(hears(20));
    weather->temperature = 21;
    sendNews(weather->peer);
    EXPECT_TRUE(hears(21));
    EXPECT_EQ(weather->questions, 2);
}

TEST_F(StandingQuestionTest, IsAnsweredByNobodyWhenNobodyIsThere)
{
    ask();
    EXPECT_TRUE(hears(none));
    EXPECT_EQ(heard.size(), 1u);
}

TEST_F(StandingQuestionTest, IsAskedAgainOnTheBusThatComesAfterTheFirst)
{
    std::optional<Weather> weather(std::in_place, daemon);
    ask();
    EXPECT_TRUE(hears(20));
    weather.reset();
    EXPECT_TRUE(hears(none));
    daemon.stop();
    ASSERT_TRUE(daemon.start());
    weather.emplace(daemon);
    EXPECT_TRUE(hears(20));
    weather->temperature = 21;
    sendNews(weather->peer);
    EXPECT_TRUE(hears(21));
}

TEST_F(StandingQuestionTest, IsNotAskedAgainForNewsOfAnybodyElseOrOfSomethingElse)
{
    Weather weather(daemon);
    ask();
    ASSERT_TRUE(hears(20));
    const BusPeer stranger(daemon);
    for (int i = 0; i < 100; ++i) {
        sendNews(stranger);
        sendNews(weather.peer, QStringLiteral("snow"));
    }
    // What the bus passed on before this has been heard with it.
    static_cast<void>(stranger.connection().interface()->registeredServiceNames());
    weather.temperature = 21;
    sendNews(weather.peer);
    ASSERT_TRUE(hears(21));
    EXPECT_EQ(weather.questions, 2);
}

TEST_F(StandingQuestionTest, IsAskedOnceMoreForAllThatIsNewsWhileItWaits)
{
    Weather weather(daemon);
    weather.isSlow = true;
    ask();
    ASSERT_TRUE(waitUntil([&] { return weather.questions == 1; }));
    for (int i = 0; i < 100; ++i) {
        sendNews(weather.peer);
    }
    // The news has come when this is answered, and is taken in before what is put off until then.
    static_cast<void>(weather.peer.connection().interface()->registeredServiceNames());
    ASSERT_FALSE(bus.names().isEmpty());
    bool isTakenIn = false;
    QMetaObject::invokeMethod(
        &*question, [&] { isTakenIn = true; }, Qt::QueuedConnection);
    ASSERT_TRUE(waitUntil([&] { return isTakenIn; }));
    weather.isSlow = false;
    weather.temperature = 21;
    weather.answer();
    ASSERT_TRUE(waitUntil([&] { return heard.size() == 2; }));
    sendNews(weather.peer);
    ASSERT_TRUE(waitUntil([&] { return heard.size() == 3; }));
    EXPECT_THAT(heard, testing::ElementsAre(21, 21, 21));
    EXPECT_EQ(weather.questions, 3);
}

TEST_F(StandingQuestionTest, IsPutToTheNewOwnerAfterTheAnswerOfTheOld)
{
    Weather old(daemon);
    old.isSlow = true;
    ask();
    ASSERT_TRUE(waitUntil([&] { return old.questions == 1; }));
    EXPECT_TRUE(old.peer.connection().unregisterService(serviceName));
    Weather next(daemon);
    next.temperature = 30;
    old.answer();
    EXPECT_TRUE(hears(30));
    EXPECT_EQ(next.questions, 1);
    next.temperature = 31;
    sendNews(next.peer);
    EXPECT_TRUE(hears(31));
}
