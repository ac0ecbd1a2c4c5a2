#include "tests/support/ChildProcess.h"
#include "tests/support/WaitUntil.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

TEST(FeedFetchBehindSlowNames, EndsWithItsAskerThoughANameIsStillLookedUp)
{
    const QTemporaryDir directory;
    const QString asked = directory.filePath(QStringLiteral("asked"));
    ChildProcess fetch;
    fetch.environment.insert(QStringLiteral("LD_PRELOAD"), QStringLiteral(KIV_SLOW_NAMES));
    fetch.environment.insert(QStringLiteral("KIV_LOOKUP_FILE"), asked);
    // A sanitizer's run time wants to be the first library of all.
    fetch.environment.insert(QStringLiteral("ASAN_OPTIONS"), QStringLiteral("verify_asan_link_order=0"));
    ASSERT_TRUE(
        fetch.start(QStringLiteral(KIV_FETCH), {QStringLiteral("http://feed.invalid/"), QStringLiteral("60000")}));
    ASSERT_TRUE(waitUntil([&] { return QFile::exists(asked); }));
    EXPECT_TRUE(fetch.isRunning());
    fetch.closeInput();
    ASSERT_TRUE(waitUntil([&] { return !fetch.isRunning(); }));
    EXPECT_EQ(fetch.exitCode(), 1);
}
