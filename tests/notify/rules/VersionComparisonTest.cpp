#include "notify/rules/VersionComparison.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace
{

struct VersionPair {
    const char *a; ///< Null is nil.
    const char *b;
    int result;
};

constexpr VersionPair versionPairs[] = {
    {nullptr, nullptr, 0},
    {"3.1", nullptr, 1},
    {nullptr, "3.1", -1},
    // A nil side is settled before any component is looked for.
    {"3", nullptr, 1},
    {nullptr, "3", -1},
    {"", nullptr, 1},
    {nullptr, "", -1},
    {"3.2.1", "3.2.9", 0},
    {"3.1", "3.2", -1},
    {"3.2", "3.1", 1},
    // As text "10" sorts before "9".
    {"3.10", "3.9", -1},
    {"3.9", "3.10", 1},
    {"4.0.0", "3.0", 0},
    {"3.0", "4.0.0", 0},
    {"1.5", "9.5.7.8", 0},
    {"10.6.8", "10.7", -1},
    {"10.10", "10.6", -1},
    {"10.6.8", "10.6.9.1", 0},
    // Equal as integers, whatever the text.
    {"3.01", "3.1", 0},
    {"3.1b", "3.1a", 0},
    {"3.b", "3.a", 0},
    {"3.", "3.0", 0},
    {".", "3.", 0},
    {"3. 2", "3.2", 0},
    // Different as integers, then by text alone.
    {"3.", "3.1", -1},
    {"3.02", "3.1", -1},
    {"3.1", "3.02", 1},
    {"3.-1", "3.1", -1},
    {"3.-1", "3.-2", -1},
    {"3.1Z", "3.2a", -1},
    {"3..5", "3.-1", -1},
    {"3.B", "3.1", 1},
    {"3.a1", "3.1", 1},
    {"3.A", "3.1a", 1},
    // Both are too large for an integer.
    {"3.99999999998", "3.99999999999", 0},
    {"3.2147483647", "3.2147483648", 0},
    {"3.2147483646", "3.2147483648", -1},
};

struct OneOfThem {
    const char *a;
    const char *b;
};

constexpr OneOfThem unfitVersions[] = {{"3", "3"},  {"3", "3.1"}, {"3.1", "3"},  {"", "3.1"},
                                       {"3.1", ""}, {"", ""},     {"3,1", "3.1"}};

QString ofBytes(const char *bytes)
{
    return bytes ? QString::fromLatin1(bytes) : QString();
}

} // namespace

TEST(VersionComparison, GoesByTheSecondComponents)
{
    for (const VersionPair &pair : versionPairs) {
        EXPECT_EQ(compareToVersion(ofBytes(pair.a), ofBytes(pair.b)), pair.result)
            << (pair.a ? pair.a : "nil") << " and " << (pair.b ? pair.b : "nil");
    }
}

TEST(VersionComparison, SortsTextByCodeUnits)
{
    // U+FF5A is one code unit above the surrogates that stand for U+1F600, yet a smaller character.
    EXPECT_EQ(compareToVersion(QStringLiteral("3.1\uFF5A"), QStringLiteral("3.2")), -1);
    EXPECT_EQ(compareToVersion(QStringLiteral("3.\uFF5A"), QStringLiteral("3.1")), 1);
    EXPECT_EQ(compareToVersion(QStringLiteral("3. 1"), QStringLiteral("3.\u00A02")), -1);
}

TEST(VersionComparison, FailsForAVersionWithoutASecondComponent)
{
    for (const OneOfThem &single : unfitVersions) {
        EXPECT_THROW((void)compareToVersion(ofBytes(single.a), ofBytes(single.b)), std::out_of_range)
            << single.a << " and " << single.b;
    }
}
