#include "shell/Application.h"

#include "shell/TerminationSignals.h"
#include "tests/support/LogLines.h"
#include "tests/support/WaitUntil.h"

#include <QEvent>
#include <QTimer>
#include <QWidget>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <stdexcept>

TEST(Application, GoesOnAfterAnExceptionInAnEventCallback)
{
    bool later = false;
    QTimer::singleShot(0, qApp, [] { throw std::out_of_range("no second component"); });
    QTimer::singleShot(0, qApp, [&] { later = true; });
    EXPECT_TRUE(waitUntil([&] { return later; }));
}

TEST(Application, EndsWithoutClosingItsWindowsWhenItIsAskedToQuit)
{
    QWidget window;
    window.show();
    QTimer::singleShot(0, qApp, [] { QCoreApplication::postEvent(qApp, new QEvent(QEvent::Quit)); });
    QTimer::singleShot(std::chrono::seconds(10), qApp, [] { QCoreApplication::exit(1); });
    EXPECT_EQ(Application::exec(), 0);
    EXPECT_TRUE(window.isVisible());
}

TEST(TerminationSignals, EndTheEventLoop)
{
    for (const int signal : {SIGTERM, SIGINT, SIGHUP, SIGQUIT}) {
        const TerminationSignals endTheLoop;
        QTimer::singleShot(0, qApp, [signal] { ::raise(signal); });
        QTimer::singleShot(std::chrono::seconds(10), qApp, [] { QCoreApplication::exit(1); });
        EXPECT_EQ(Application::exec(), 0) << "signal " << signal;
    }
}

TEST(Application, SaysWhoAsksItToEnd)
{
    LogLines log;
    QTimer::singleShot(0, qApp, [] { QCoreApplication::postEvent(qApp, new QEvent(QEvent::Quit)); });
    EXPECT_EQ(Application::exec(), 0);
    EXPECT_THAT(log.take(), testing::Contains("kiv.agent: the session asks it to end"));

    const TerminationSignals endTheLoop;
    QTimer::singleShot(0, qApp, [] { ::raise(SIGTERM); });
    EXPECT_EQ(Application::exec(), 0);
    EXPECT_THAT(log.take(), testing::Contains("kiv.agent: a signal asks it to end"));
}

TEST(TerminationSignals, ThatComeAfterTheFirstDisturbNothing)
{
    {
        const TerminationSignals endTheLoop;
        QTimer::singleShot(0, qApp, [] { ::raise(SIGTERM); });
        EXPECT_EQ(Application::exec(), 0);
        ::raise(SIGHUP);
    }
    for (const int signal : {SIGTERM, SIGINT, SIGHUP, SIGQUIT}) {
        ::raise(signal);
    }
}

TEST(TerminationSignals, EndNestedEventLoopsToo)
{
    const TerminationSignals endTheLoop;
    bool nestedReturned = false;
    QTimer::singleShot(0, qApp, [&] {
        QEventLoop nested;
        QTimer::singleShot(0, &nested, [] { ::raise(SIGTERM); });
        nested.exec();
        nestedReturned = true;
    });
    EXPECT_EQ(Application::exec(), 0);
    EXPECT_TRUE(nestedReturned);
}

int main(int argc, char **argv)
{
    testing::InitGoogleTest(&argc, argv);
    Application application(argc, argv);
    return RUN_ALL_TESTS();
}
