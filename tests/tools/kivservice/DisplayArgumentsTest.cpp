#include "tools/kivservice/DisplayArguments.h"

#include <gtest/gtest.h>

namespace
{
DisplayArguments parse(const char *line)
{
    return parseDisplayArguments(QString::fromLatin1(line).split(u' ', Qt::SkipEmptyParts));
}
} // namespace

TEST(DisplayArguments, ReadTheSizeInAnyOrderOfTheOptions)
{
    EXPECT_EQ(parse("set -w 1024 -h 768 -c").size, (DisplaySize{1024, 768}));
    EXPECT_EQ(parse("set -c -h 768 -w 1024").size, (DisplaySize{1024, 768}));
    EXPECT_EQ(parse("set -w 32 -h 65535 -c").size, (DisplaySize{32, 65535}));
}

TEST(DisplayArguments, RefuseSizesThatNoDisplayHas)
{
    for (const char *line : {"set -w 31 -h 768 -c", "set -w 1024 -h 31 -c", "set -w 0 -h 768 -c", "set -w -1 -h 768 -c",
                             "set -w 65536 -h 768 -c", "set -w 99999999999 -h 768 -c"}) {
        EXPECT_FALSE(parse(line).size) << line;
        EXPECT_TRUE(parse(line).reason.contains(QLatin1String("is no size"))) << line;
    }
}

TEST(DisplayArguments, RefuseTextThatIsNoNumber)
{
    for (const char *line : {"set -w wide -h 768 -c", "set -w 1024 -h 768px -c", "set -w +1024 -h 768 -c",
                             "set -w 0x400 -h 768 -c", "set -w 1e3 -h 768 -c"}) {
        EXPECT_FALSE(parse(line).size) << line;
    }
}

TEST(DisplayArguments, RefuseMissingAndUnknownArguments)
{
    for (const char *line :
         {"", "get -w 1024 -h 768 -c", "set", "set -w 1024 -c", "set -h 768 -c", "set -w 1024 -h 768", "set -w 1024 -h",
          "set -w -h 768 -c", "set -w 1024 -h 768 -c extra"}) {
        const DisplayArguments parsed = parse(line);
        EXPECT_FALSE(parsed.size) << line;
        EXPECT_FALSE(parsed.reason.isEmpty()) << line;
    }
}
