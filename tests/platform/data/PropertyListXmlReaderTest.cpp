#include "platform/data/PropertyListXmlReader.h"

#include "platform/data/PropertyListValues.h"
#include "platform/data/UtcTime.h"

#include <QDateTime>
#include <QElapsedTimer>
#include <QStringEncoder>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using PropertyListXmlReader::read;

namespace
{

QVariant readValue(const QByteArray &xml)
{
    return read("<plist version=\"1.0\">" + xml + "</plist>");
}

/// Whether both the types and the values are the same: 1, 1.0 and "1" are not.
testing::AssertionResult isSame(const QVariant &value, const QVariant &expected)
{
    if (value.typeId() == expected.typeId() && value == expected) {
        return testing::AssertionSuccess();
    }
    return testing::AssertionFailure() << (value.typeName() ? value.typeName() : "malformed") << ' '
                                       << value.toString().toStdString() << " instead of " << expected.typeName() << ' '
                                       << expected.toString().toStdString();
}

TEST(PropertyListXmlReader, ReadsEveryType)
{
    const std::pair<const char *, QVariant> values[] = {
        {"<string>text</string>", QStringLiteral("text")},
        {"<string> a\n b </string>", QStringLiteral(" a\n b ")},
        {"<string>&lt;&gt;&amp;&quot;&apos;&#65;&#x42;&#13;</string>", QStringLiteral("<>&\"'AB\r")},
        {"<string>a<![CDATA[<b> & ]] >]]>c</string>", QStringLiteral("a<b> & ]] >c")},
        {"<string>a<!-- no -->b<?no ?>c</string>", QStringLiteral("abc")},
        {"<string>1\r\n2\r3</string>", QStringLiteral("1\n2\n3")},
        {"<string>12</string>", QStringLiteral("12")},
        {"<true/>", true},
        {"<false></false>", false},
        {"<integer>0</integer>", qlonglong(0)},
        {"<integer>\n -7 </integer>", qlonglong(-7)},
        {"<integer>+7</integer>", qlonglong(7)},
        {"<integer>0x1F</integer>", qlonglong(31)},
        {"<integer>-0X1f</integer>", qlonglong(-31)},
        {"<integer>9223372036854775807</integer>", std::numeric_limits<qlonglong>::max()},
        {"<integer>-9223372036854775808</integer>", std::numeric_limits<qlonglong>::min()},
        {"<integer>9223372036854775808</integer>", qulonglong(1) << 63},
        {"<integer>18446744073709551615</integer>", std::numeric_limits<qulonglong>::max()},
        {"<integer>0000000000000000000000000000001</integer>", qlonglong(1)},
        {"<real>1.5</real>", 1.5},
        {"<real> -2 </real>", -2.0},
        {"<real>1e999</real>", std::numeric_limits<double>::infinity()},
        {"<real>-1e999</real>", -std::numeric_limits<double>::infinity()},
        {"<real>1e-999</real>", 0.0},
        {"<real>inf</real>", std::numeric_limits<double>::infinity()},
        {"<real>+Infinity</real>", std::numeric_limits<double>::infinity()},
        {"<real>-INF</real>", -std::numeric_limits<double>::infinity()},
        {"<data></data>", QByteArray("")},
        {"<data>\n\tAAEC\n\t/w==\n</data>", QByteArray("\x00\x01\x02\xFF", 4)},
        {"<date>2001-01-01T00:00:00Z</date>", QDateTime(QDate(2001, 1, 1), QTime(0, 0), inUtc)},
        {"<array/>", QVariantList()},
        {"<array> <true/> <!-- no --> <integer>1</integer>\n</array>", QVariantList({true, qlonglong(1)})},
        {"<dict/>", QVariantMap()},
        {"<dict><key>b</key><true/>\n<key></key>\n<string/><key>&amp;</key><array><dict/></array></dict>",
         QVariantMap({{QStringLiteral("b"), true},
                      {QStringLiteral(""), QStringLiteral("")},
                      {QStringLiteral("&"), QVariantList({QVariantMap()})}})},
    };
    for (const auto &[xml, expected] : values) {
        EXPECT_TRUE(isSame(readValue(xml), expected)) << xml;
    }
    EXPECT_TRUE(std::isnan(readValue("<real>NaN</real>").toDouble()));
    EXPECT_TRUE(std::signbit(readValue("<real>-0.0</real>").toDouble()));
}

TEST(PropertyListXmlReader, TellsEmptyTextFromNone)
{
    EXPECT_TRUE(isSame(readValue("<string/>"), QStringLiteral("")));
    EXPECT_FALSE(readValue("<string/>").toString().isNull());
    EXPECT_FALSE(readValue("<string></string>").toString().isNull());
}

TEST(PropertyListXmlReader, LetsTheLaterOfTwoEqualKeysCount)
{
    EXPECT_TRUE(isSame(readValue("<dict><key>a</key><true/><key>a</key><string>b</string></dict>"),
                       QVariantMap({{QStringLiteral("a"), QStringLiteral("b")}})));
}

TEST(PropertyListXmlReader, TakesThePlainDocumentType)
{
    const char *heads[] = {
        "",
        "<?xml version=\"1.0\"?>",
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
        "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" \"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n",
        "<!DOCTYPE plist PUBLIC \"-//Apple Computer//DTD PLIST 1.0//EN\" "
        "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">",
        "<!DOCTYPE plist SYSTEM \"file://localhost/System/Library/DTDs/PropertyList.dtd\">",
        "<!DOCTYPE plist>",
        "<!-- <!DOCTYPE html [ --> <?x <!DOCTYPE html ?>\n<!DOCTYPE\nplist\n>\n<!-- [ -->",
    };
    for (const char *head : heads) {
        EXPECT_TRUE(isSame(read(head + QByteArray("<plist><true/></plist>\n<!-- end -->\n")), true)) << head;
    }
}

TEST(PropertyListXmlReader, RefusesEveryOtherDocumentTypeAndItsEntities)
{
    const char *heads[] = {
        "<!DOCTYPE html>",
        "<!DOCTYPE plists>",
        "<!DOCTYPEplist>",
        "<!DOCTYPE plist <a>",
        "<!DOCTYPE plist []>",
        "<!DOCTYPE plist [<!ENTITY e \"x\">]>",
        "<!DOCTYPE plist PUBLIC \"a\" \"b\" [<!ENTITY e \"x\">]>",
        "<?xml version=\"1.0\"?><!-- --><?a?> <!DOCTYPE plist [<!ENTITY e SYSTEM \"file:///etc/passwd\">]>",
        "<!DOCTYPE plist [<!ELEMENT plist ANY>]>",
        "<!DOCTYPE plist [<!ENTITY % a \"%b;\"><!ENTITY % b \"%a;\">%a;]>",
    };
    for (const char *head : heads) {
        EXPECT_FALSE(read(head + QByteArray("<plist><true/></plist>")).isValid()) << head;
        EXPECT_FALSE(read(head + QByteArray("<plist><string>&e;</string></plist>")).isValid()) << head;
    }
    EXPECT_FALSE(read("<!DOCTYPE plist SYSTEM \"x\"><plist><string>&e;</string></plist>").isValid());
    EXPECT_FALSE(readValue("<string>&e;</string>").isValid());
}

TEST(PropertyListXmlReader, RefusesADocumentTypeWithDeclarationsBehindTheRootToo)
{
    const QByteArray list = "<plist><true/></plist>";
    EXPECT_TRUE(read(list).isValid());
    EXPECT_FALSE(read(list + "<!DOCTYPE plist [<!ENTITY e 'x'>]>").isValid());
    EXPECT_FALSE(read("<!DOCTYPE plist>" + list + "<!DOCTYPE plist [<!ENTITY e 'x'>]>").isValid());
}

TEST(PropertyListXmlReader, RefusesEntityBombs)
{
    QByteArray bomb = "<!DOCTYPE plist [<!ENTITY e0 \"ha\">";
    for (int i = 1; i < 40; ++i) {
        const QByteArray before = "&e" + QByteArray::number(i - 1) + ';';
        bomb += "<!ENTITY e" + QByteArray::number(i) + " \"" + before.repeated(10) + "\">";
    }
    EXPECT_FALSE(read(bomb + "]><plist><string>&e39;</string></plist>").isValid());

    QByteArray chain = "<!DOCTYPE plist [";
    for (int i = 0; i < 200'000; ++i) {
        chain += "<!ENTITY % e" + QByteArray::number(i) + " \"%e" + QByteArray::number(i + 1) + ";\">";
    }
    EXPECT_FALSE(read(chain + "%e0;]><plist><true/></plist>").isValid());
}

TEST(PropertyListXmlReader, RefusesWhatIsMalformed)
{
    const char *documents[] = {
        "",
        " ",
        "plist",
        "<",
        "<plist>",
        "<plist/>",
        "<plist></plist>",
        "<true/>",
        "<dict/>",
        "<list><true/></list>",
        "<plist><true/></plist><plist><true/></plist>",
        "<plist><true/></plist>text",
        "<plist><true/><true/></plist>",
        "<plist>text<true/></plist>",
        "<plist><true/>text</plist>",
        "<plist><true/></list>",
        "<plist><true/>",
        "<plist><null/></plist>",
        "<plist><key>a</key></plist>",
        "<plist><True/></plist>",
        "<p:plist xmlns:p=\"p\"><true/></p:plist>",
    };
    for (const char *document : documents) {
        EXPECT_FALSE(read(document).isValid()) << document;
    }
    EXPECT_FALSE(read(QByteArray()).isValid());

    const char *values[] = {
        "<true>1</true>",
        "<true> </true>",
        "<true><false/></true>",
        "<string>a",
        "<string><b>a</b></string>",
        "<string>a & b</string>",
        "<string>&#0;</string>",
        "<string>&#1;</string>",
        "<string>&#xD800;</string>",
        "<string>&#xFFFE;</string>",
        "<string>\x01</string>",
        "<string>\xFF</string>",
        "<string>\xC3</string>",
        "<string>\xED\xA0\x80</string>",
        "<string>]]></string>",
        "<integer/>",
        "<integer> </integer>",
        "<integer>one</integer>",
        "<integer>1.5</integer>",
        "<integer>1 2</integer>",
        "<integer>12a</integer>",
        "<integer>--1</integer>",
        "<integer>+-1</integer>",
        "<integer>- 1</integer>",
        "<integer>0x</integer>",
        "<integer>0x0x1</integer>",
        "<integer>0xG</integer>",
        "<integer>\xD9\xA1</integer>",
        "<integer>18446744073709551616</integer>",
        "<integer>-9223372036854775809</integer>",
        "<integer>0x10000000000000000</integer>",
        "<real/>",
        "<real>.</real>",
        "<real>1,5</real>",
        "<real>1.5x</real>",
        "<real>1e</real>",
        "<real>0x1p4</real>",
        "<real>infinit</real>",
        "<real>nan(1)</real>",
        "<data>A</data>",
        "<data>AA</data>",
        "<data>AAE</data>",
        "<data>AAEC=</data>",
        "<data>A===</data>",
        "<data>====</data>",
        "<data>AA==AAEC</data>",
        "<data>AA=A</data>",
        "<data>AA*=</data>",
        "<data>AA-_</data>",
        "<data>AA\xC3\xA9=</data>",
        "<date/>",
        "<date>today</date>",
        "<array><null/></array>",
        "<array>text</array>",
        "<array><key>a</key></array>",
        "<array><true/>",
        "<dict>text</dict>",
        "<dict><true/></dict>",
        "<dict><key>a</key></dict>",
        "<dict><key>a</key><key>b</key></dict>",
        "<dict><key>a</key><true/><true/></dict>",
        "<dict><key>a</key><true/><key>b</key></dict>",
        "<dict><key>a</key>text<true/></dict>",
        "<dict><key><b/></key><true/></dict>",
        "<dict><string>a</string><true/></dict>",
        "<dict><key>a</key><null/></dict>",
    };
    for (const char *value : values) {
        EXPECT_FALSE(readValue(value).isValid()) << value;
    }
}

TEST(PropertyListXmlReader, ReadsUtf8AndUtf16WithTheirMarks)
{
    const QString text = QStringLiteral("Gr\u00FC\u00DFe \U0001F600");
    const QString xml =
        QStringLiteral("<?xml version=\"1.0\" encoding=\"UTF-16\"?><plist><string>%1</string></plist>").arg(text);
    for (const auto encoding : {QStringConverter::Utf8, QStringConverter::Utf16LE, QStringConverter::Utf16BE}) {
        QStringEncoder encoder(encoding, QStringConverter::Flag::WriteBom);
        const QByteArray bytes = encoder(xml);
        EXPECT_TRUE(isSame(read(bytes), text)) << QStringConverter::nameForEncoding(encoding);
    }
    EXPECT_TRUE(isSame(read(xml.toUtf8()), text));
}

TEST(PropertyListXmlReader, RefusesHalfACharacterOfUtf16)
{
    QStringEncoder encoder(QStringConverter::Utf16LE, QStringConverter::Flag::WriteBom);
    const QByteArray odd = encoder(QStringLiteral("<plist><true/></plist>"));
    EXPECT_FALSE(read(odd.chopped(1)).isValid());
    const char16_t lone[] = u"\uFEFF<plist><string>\xD83D</string></plist>";
    EXPECT_FALSE(read(QByteArray(reinterpret_cast<const char *>(lone), sizeof lone - 2)).isValid());
}

TEST(PropertyListXmlReader, TakesFiveHundredAndTwelveLevels)
{
    const std::pair<QByteArray, QByteArray> containers[] = {{"<array>", "</array>"}, {"<dict><key>k</key>", "</dict>"}};
    for (const auto &container : containers) {
        const auto nested = [&container](int levels) {
            return readValue(container.first.repeated(levels) + "<true/>" + container.second.repeated(levels));
        };
        EXPECT_TRUE(nested(512).isValid()) << container.first.toStdString();
        EXPECT_FALSE(nested(513).isValid()) << container.first.toStdString();
        EXPECT_FALSE(nested(500'000).isValid()) << container.first.toStdString();
    }
}

TEST(PropertyListXmlReader, TakesAMillionValues)
{
    const auto flat = [](int count) {
        return readValue("<array>" + QByteArray("<true/>").repeated(count) + "</array>");
    };
    EXPECT_EQ(flat(999'999).toList().size(), 999'999);
    EXPECT_FALSE(flat(1'000'000).isValid());
}

TEST(PropertyListXmlReader, SurvivesNamesLongerThanTheParsersOwnLimit)
{
    for (const int length : {4094, 4095, 4096, 4097, 70'000}) {
        for (const int colon : {1, length / 2, length - 1}) {
            QByteArray name(length, 'a');
            name[colon] = ':';
            for (const QByteArray &xml :
                 {"<" + name + "/>", "<plist " + name + "='1'><true/></plist>", "<plist><" + name + "/></plist>",
                  "<plist><string>&" + name + ";</string></plist>", "<!DOCTYPE plist " + name + "><" + name + "/>"}) {
                EXPECT_FALSE(read(xml).isValid() && length > 4096) << xml.left(20).toStdString() << length;
            }
        }
    }
}

TEST(PropertyListXmlReader, RefusesATagWithTooManyAttributesBeforeComparingThem)
{
    const auto list = [](int attributes) {
        QByteArray tag = "<plist";
        for (int i = 0; i < attributes; ++i) {
            tag += " a" + QByteArray::number(i) + "=''";
        }
        return tag + "><true/></plist>";
    };
    EXPECT_TRUE(read(list(64)).isValid());
    EXPECT_FALSE(read(list(65)).isValid());
    QElapsedTimer time;
    time.start();
    EXPECT_FALSE(read(list(50'000)).isValid());
    EXPECT_LT(time.elapsed(), 2000) << "comparing them takes Qt many seconds";
}

} // namespace
