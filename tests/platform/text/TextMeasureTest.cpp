#include "platform/text/TextMeasure.h"

#include <QElapsedTimer>
#include <QFontDatabase>
#include <QFontMetricsF>
#include <QTextLayout>

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>

namespace
{

QFontMetricsF metrics()
{
    QFont font = QFontDatabase::systemFont(QFontDatabase::GeneralFont);
    font.setPixelSize(12);
    return QFontMetricsF(font);
}

float heightInOneLayout(const QString &text, qreal width)
{
    QFont font = QFontDatabase::systemFont(QFontDatabase::GeneralFont);
    font.setPixelSize(12);
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    QTextLayout layout(text, font);
    layout.setTextOption(option);
    layout.beginLayout();
    qreal height = 0;
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
        line.setLineWidth(width);
        height += line.height();
    }
    layout.endLayout();
    return static_cast<float>(height);
}

QString words(int count)
{
    return QStringLiteral("word ").repeated(count);
}

constexpr float infinity = std::numeric_limits<float>::infinity();

} // namespace

TEST(TextMeasure, GivesAnEmptyTextNoHeight)
{
    EXPECT_EQ(textHeight(QStringLiteral(""), 320), 0);
    EXPECT_EQ(textHeight(QString(), 320), 0);
}

TEST(TextMeasure, GivesOneLineTheHeightOfTheSystemFontOfSizeTwelve)
{
    EXPECT_NEAR(textHeight(QStringLiteral("One line"), 320), metrics().height(), 1);
}

TEST(TextMeasure, MultipliesTheLinesBetweenBreaksOfEveryKind)
{
    const float line = textHeight(QStringLiteral("a"), 320);
    for (const char16_t *text : {u"a\nb\nc", u"a\r\nb\r\nc", u"a\rb\rc", u"a\u2028b\u2029c", u"a\n\nc"}) {
        EXPECT_FLOAT_EQ(textHeight(QString::fromUtf16(text), 320), 3 * line) << QString::fromUtf16(text).toStdString();
    }
}

TEST(TextMeasure, WrapsBetweenWordsAtTheWidth)
{
    const QString twoWords = QStringLiteral("measured measured");
    const float line = textHeight(QStringLiteral("measured"), 320);
    const qreal needed = metrics().horizontalAdvance(twoWords);
    EXPECT_FLOAT_EQ(textHeight(twoWords, static_cast<float>(needed + 2)), line);
    EXPECT_FLOAT_EQ(textHeight(twoWords, static_cast<float>(needed - 2)), 2 * line);
}

TEST(TextMeasure, BreaksAWordThatIsWiderThanTheWidth)
{
    const float line = textHeight(QStringLiteral("a"), 100);
    EXPECT_GE(textHeight(QString(200, u'm'), 100), 10 * line);
}

TEST(TextMeasure, GrowsAsTheWidthShrinks)
{
    float previous = 0;
    for (const float width : {640.0F, 320.0F, 160.0F, 80.0F}) {
        const float height = textHeight(words(100), width);
        EXPECT_GT(height, previous) << width;
        previous = height;
    }
}

TEST(TextMeasure, WrapsNothingAtAWidthThatIsNoPositiveNumber)
{
    const float line = textHeight(QStringLiteral("word"), 320);
    for (const float width : {0.0F, -1.0F, -infinity, infinity, std::numeric_limits<float>::quiet_NaN(),
                              std::numeric_limits<float>::max()}) {
        EXPECT_FLOAT_EQ(textHeight(words(500), width), line) << width;
    }
}

TEST(TextMeasure, EndsAtTwentyThousandPoints)
{
    EXPECT_EQ(textHeight(QString(100'000, u'\n'), 320), 20000);
    EXPECT_EQ(textHeight(words(1'000'000), 320), 20000);
    EXPECT_LT(textHeight(QString(1000, u'\n'), 320), 20000);
}

TEST(TextMeasure, CountsTheEmptyLineAfterTheLastBreak)
{
    const float line = textHeight(QStringLiteral("a"), 320);
    EXPECT_FLOAT_EQ(textHeight(QStringLiteral("a\n"), 320), 2 * line);
    EXPECT_FLOAT_EQ(textHeight(QStringLiteral("\n"), 320), 2 * line);
}

TEST(TextMeasure, MeasuresALongTextAsOneLayoutDoes)
{
    const QString sentence = QStringLiteral("Some words, of several lengths, and a longlonglonglonglonglongest one. ");
    const QString texts[] = {
        sentence.repeated(400),
        (sentence + QChar(QChar::LineSeparator)).repeated(300),
        QString(9000, u'i'),
        QStringLiteral("\U0001F600").repeated(5000),
        QString(8192, u'\u8A9E'),
        QStringLiteral("a\u0301\u0302").repeated(5000),
        QString(4095, u'i') + QChar(QChar::LineSeparator) + sentence.repeated(100),
        QString(4096, QChar(QChar::LineSeparator)).left(1200),
    };
    for (const QString &text : texts) {
        for (const qreal width : {100.0, 320.0, 1'000'000.0}) {
            const float whole = heightInOneLayout(text, width);
            EXPECT_FLOAT_EQ(textHeight(text, static_cast<float>(width)), std::min(whole, 20000.0F))
                << text.left(20).toStdString() << " at " << width;
        }
    }
}

TEST(TextMeasure, AgreesWithTheFontMetricsOnParagraphs)
{
    const QString paragraph = QStringLiteral("The server was updated last night. Please reconnect to use all of it. ");
    for (const int paragraphs : {1, 2, 7}) {
        for (const float width : {200.0F, 320.0F, 400.0F}) {
            const QString text = (paragraph.repeated(paragraphs) + u'\n').repeated(paragraphs).chopped(1);
            const QRectF bounds =
                metrics().boundingRect(QRectF(0, 0, width, 20000), Qt::TextWordWrap | Qt::AlignLeft, text);
            EXPECT_NEAR(textHeight(text, width), bounds.height(), 0.05 * bounds.height())
                << paragraphs << " at " << width;
        }
    }
}

TEST(TextMeasure, DoesNotStopTheAgentForEndlessMarks)
{
    QElapsedTimer time;
    time.start();
    EXPECT_GT(textHeight(u'a' + QString(100'000, QChar(0x301)), 320), 0);
    EXPECT_GT(textHeight(u'a' + QStringLiteral("\U0001D165").repeated(100'000), 320), 0);
    EXPECT_LT(time.elapsed(), 1000) << "laying all of them out takes seconds";
}

TEST(TextMeasure, EndsWhereThePopUpShowsNoMore)
{
    const QString mixed = QStringLiteral("a\u05d0 ");
    EXPECT_FLOAT_EQ(textHeight(mixed.repeated(50'000), 320), textHeight(mixed.repeated(1000), 320));
    EXPECT_LT(textHeight(mixed.repeated(900), 320), textHeight(mixed.repeated(1000), 320));
}

TEST(TextMeasure, DoesNotStopTheAgentForAnEndlessWord)
{
    QElapsedTimer time;
    time.start();
    EXPECT_EQ(textHeight(QString(16777216, u'i'), 320), 20000);
    EXPECT_GT(textHeight(QString(16777216, u'i'), 1'000'000), 0);
    EXPECT_LT(time.elapsed(), 10'000) << "one layout would need minutes";
}
