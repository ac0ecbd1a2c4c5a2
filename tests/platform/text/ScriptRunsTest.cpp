#include "platform/text/ScriptRuns.h"

#include <QList>
#include <QString>

#include <gtest/gtest.h>

namespace
{

int runsOf(const QString &text)
{
    ScriptRuns runs;
    for (const char32_t character : text.toUcs4()) {
        runs.add(character);
    }
    return runs.count();
}

QString times(int count, const char16_t *text)
{
    return QString::fromUtf16(text).repeated(count);
}

struct Row {
    const char *what;
    const char16_t *text;
    int runs;
};

TEST(ScriptRuns, AreCountedWhereScriptOrDirectionChanges)
{
    const Row rows[] = {
        {"one script", u"Words, words!", 0},
        {"numbers within it", u"On 24 March 2026 (a Tuesday), at 17:30", 0},
        {"two scripts", u"Alpha \u03b1 beta", 2},
        {"ideographs and syllables", u"\u6f22\u5b57\u3068\u304b\u306a\u3001\u30ab\u30bf", 2},
        {"right to left", u"word \u05e9\u05dc\u05d5\u05dd, \u05e9 word", 2},
        {"numbers from left to right", u"word \u05e9 12:30 \u05e9", 3},
        {"marks of their letters", u"e\u0301e\u0301", 0},
        {"joined pictures", u"\U0001F469\u200d\U0001F4BB a \U0001F600", 0},
        {"letters beyond the first plane", u"a\U00010480a", 2},
        {"tabs", u"a\tb\tc", 2},
        {"marks that set a direction", u"a\u202ab\u202cc\u2067d\u2069", 4},
        {"marks that have one", u"a\u200fb", 2},
    };
    for (const Row &row : rows) {
        EXPECT_EQ(runsOf(QString::fromUtf16(row.text)), row.runs) << row.what;
    }
}

TEST(ScriptRuns, KeepWholeWhatPeopleWrite)
{
    const char *messages[] = {
        "\u05d2\u05e8\u05e1\u05d4 8.2 \u05e9\u05dc Kivune Server \u05de\u05d5\u05db\u05e0\u05d4 "
        "\u05dc\u05d4\u05d5\u05e8\u05d3\u05d4. \u05d4\u05d9\u05d0 \u05ea\u05d5\u05de\u05db\u05ea "
        "\u05d1-Debian 12 \u05d5\u05d1-Ubuntu 24.04, \u05d5\u05de\u05ea\u05e7\u05e0\u05ea 17 "
        "\u05ea\u05e7\u05dc\u05d5\u05ea. \u05dc\u05e4\u05e8\u05d8\u05d9\u05dd: "
        "https://www.example.com/8.2/he (\u05d1\u05e2\u05d1\u05e8\u05d9\u05ea).\n",
        "\u0627\u0644\u0625\u0635\u062f\u0627\u0631 8.2 \u0645\u0646 Kivune Server "
        "\u062c\u0627\u0647\u0632 \u0644\u0644\u062a\u0646\u0632\u064a\u0644. \u0648\u0647\u0648 "
        "\u064a\u062f\u0639\u0645 Debian 12 \u0648 Ubuntu 24.04 \u0648\u064a\u0635\u0644\u062d 17 "
        "\u062e\u0637\u0623. \u0644\u0644\u0645\u0632\u064a\u062f: https://www.example.com/8.2/ar "
        "(\u0628\u0627\u0644\u0639\u0631\u0628\u064a\u0629).\n",
        "Kivune Server 8.2 \u3092\u30c0\u30a6\u30f3\u30ed\u30fc\u30c9\u3067\u304d\u307e\u3059\u3002"
        "Debian 12 \u3068 Ubuntu 24.04 \u306b\u5bfe\u5fdc\u3057\u300117 "
        "\u4ef6\u306e\u4e0d\u5177\u5408\u3092\u4fee\u6b63\u3057\u307e\u3057\u305f\u3002"
        "\u8a73\u3057\u3044\u60c5\u5831\u306f\u30b5\u30dd\u30fc\u30c8\u306e\u30da\u30fc\u30b8\u3092"
        "\u3054\u89a7\u304f\u3060\u3055\u3044\u3002\n",
    };
    for (const char *message : messages) {
        QString text;
        while (text.toUtf8().size() < 12'000) {
            text += QString::fromUtf8(message);
        }
        EXPECT_EQ(firstScriptRuns(text).size(), text.size()) << message << runsOf(text) << " runs";
    }
}

TEST(ScriptRuns, EndTheTextAtTheTwoThousandth)
{
    const QString within = times(1000, u"a\u05d0") + u'b';
    EXPECT_EQ(firstScriptRuns(within).size(), within.size());
    EXPECT_EQ(firstScriptRuns(within + times(5, u"\u05d0c")).size(), within.size());
    EXPECT_EQ(firstScriptRuns(times(1001, u"a\U00010800")).size(), within.size() + 1000) << "pairs stay whole";
    EXPECT_EQ(firstScriptRuns({}).size(), 0);
    EXPECT_EQ(firstScriptRuns(times(9000, u"\t")).size(), 2000);
}

} // namespace
