#include "platform/SystemVersion.h"

#include "platform/data/PropertyList.h"

#include <QFile>
#include <QTemporaryDir>
#include <QVariantMap>

#include <gtest/gtest.h>

namespace
{

class SystemVersion : public testing::Test
{
protected:
    void write(const QByteArray &bytes)
    {
        QFile file(path);
        ASSERT_TRUE(file.open(QFile::WriteOnly));
        file.write(bytes);
    }

    QTemporaryDir directory;
    QString path = directory.filePath(QStringLiteral("SystemVersion.plist"));
};

} // namespace

TEST_F(SystemVersion, IsKeptWhereTheSystemHasIt)
{
    EXPECT_STREQ(standardSystemVersionFile, "/System/Library/CoreServices/SystemVersion.plist");
}

TEST_F(SystemVersion, IsTheProductVersionOfTheFile)
{
    write(R"(<plist version="1.0"><dict>
             <key>ProductName</key><string>System</string><key>ProductVersion</key><string>10.6.8</string>
             </dict></plist>)");
    EXPECT_EQ(systemVersion(path), QStringLiteral("10.6.8"));
}

TEST_F(SystemVersion, IsNilWhenTheFileDoesNotStateIt)
{
    for (const char *content : {"", "not a list", "<plist><dict/></plist>", "<plist><array/></plist>",
                                "<plist><dict><key>ProductVersion</key><integer>10</integer></dict></plist>",
                                "<plist><dict><key>ProductVersion</key><string>10.6"}) {
        write(content);
        EXPECT_TRUE(systemVersion(path).isNull()) << content;
    }
}

TEST_F(SystemVersion, IsNilForADirectory)
{
    EXPECT_TRUE(systemVersion(directory.path()).isNull());
}

TEST_F(SystemVersion, IsNilWithoutTheFile)
{
    EXPECT_TRUE(systemVersion(path).isNull());
}
