#include "tools/kivservice/ServiceLine.h"

#include <gtest/gtest.h>

namespace
{
template <typename Kind>
Kind parsed(const char *line)
{
    return std::get<Kind>(ServiceLine::parse(line));
}

bool isMalformed(const char *line)
{
    return std::holds_alternative<ServiceLine::Malformed>(ServiceLine::parse(line));
}
} // namespace

TEST(ServiceLine, ReadsFlags)
{
    EXPECT_EQ(parsed<ServiceLine::Flags>("flags 6").flags, 6U);
    EXPECT_EQ(parsed<ServiceLine::Flags>("  flags   4294967295 ").flags, 4294967295U);
}

TEST(ServiceLine, ReadsActions)
{
    EXPECT_EQ(parsed<ServiceLine::Actions>("actions 32793 32796").codes, (std::vector<std::uint32_t>{32793, 32796}));
    EXPECT_TRUE(parsed<ServiceLine::Actions>("actions none").codes.empty());
}

TEST(ServiceLine, KeepsTheSpacesInsideAHint)
{
    EXPECT_EQ(parsed<ServiceLine::Hint>("hint  Mind  the gap ").text, "Mind  the gap");
}

TEST(ServiceLine, ReadsQuitAndBlankLines)
{
    EXPECT_NO_THROW(parsed<ServiceLine::Quit>("quit"));
    EXPECT_NO_THROW(parsed<ServiceLine::Nothing>(""));
    EXPECT_NO_THROW(parsed<ServiceLine::Nothing>("   "));
}

TEST(ServiceLine, RefusesWhatItDoesNotKnow)
{
    for (const char *line : {"flags", "flags six", "flags 6 7", "flags -1", "flags +1", "flags 4294967296", "actions",
                             "actions 1 none", "actions 0x10", "hint", "hint  ", "quit now", "flag 6", "FLAGS 6"}) {
        EXPECT_TRUE(isMalformed(line)) << line;
    }
}

TEST(ServiceLine, SaysWhatIsWrong)
{
    EXPECT_EQ(parsed<ServiceLine::Malformed>("flags six").reason.toStdString(), "\"flags six\": expected flags NUMBER");
}

TEST(ServiceLine, SaysWhichLinesThereAre)
{
    EXPECT_EQ(parsed<ServiceLine::Malformed>("hide").reason.toStdString(),
              "\"hide\": expected flags, actions, hint or quit");
}
