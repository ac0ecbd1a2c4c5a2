#include "platform/SystemVersion.h"

#include <QFile>
#include <QRegularExpression>

#include <gtest/gtest.h>

TEST(SystemVersionWithoutFile, IsTheRunningKernels)
{
    QFile release(QStringLiteral("/proc/sys/kernel/osrelease"));
    ASSERT_TRUE(release.open(QFile::ReadOnly));
    const QString text = QString::fromLatin1(release.readAll());
    const QRegularExpression leadingNumber(QStringLiteral("^[0-9]+(\\.[0-9]+)*"));
    EXPECT_EQ(systemVersionWithoutFile(), leadingNumber.match(text).captured());
    EXPECT_TRUE(systemVersionWithoutFile().contains(u'.'));
}
