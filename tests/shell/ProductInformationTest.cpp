#include "shell/ProductInformation.h"

#include "shell/ProductTexts.h"

#include <gtest/gtest.h>

namespace
{

QString text(const char16_t *utf16)
{
    return QString::fromUtf16(utf16);
}

QString bodyOf(const QVariantMap &dictionary)
{
    return productInformation(dictionary).body;
}

} // namespace

TEST(ProductInformation, SaysEverythingThatTheBundleSays)
{
    const QVariantMap dictionary{
        {QStringLiteral("KIVBuildVersion"), QStringLiteral("3.2.1")},
        {QStringLiteral("KIVBuildDate"), QStringLiteral("20110520")},
        {QStringLiteral("KIVProductCopyright"), QStringLiteral("(c) Somebody")},
        {QStringLiteral("KIVProductHome"), QStringLiteral("https://home.example/")},
        {QStringLiteral("KIVPrivateLabel"), QStringLiteral("Special edition")},
    };
    const ProductInformation information = productInformation(dictionary);
    EXPECT_EQ(information.body, text(u"\nProduct:\t\tKivune Server for Mac OS X"
                                     u"\nVersion:\t\t3.2.1/20110520"
                                     u"\nCopyright:\t\t(c) Somebody"
                                     u"\nHome:\t\thttps://home.example/"
                                     u"\nLabel:\t\tSpecial edition"
                                     u"\n\n"));
    EXPECT_EQ(information.home, QStringLiteral("https://home.example/"));
}

TEST(ProductInformation, FallsBackToTheBuiltInTextsWithoutABundle)
{
    const QString expected = text(u"\nProduct:\t\tKivune Server for Mac OS X"
                                  u"\nVersion:\t\tUndefined"
                                  u"\nCopyright:\t\tCopyright (c) 2026 The Kivune contributors"
                                  u"\nHome:\t\thttps://www.kivune.example/"
                                  u"\n\n");
    EXPECT_EQ(productInformation(std::nullopt).body, expected);
    EXPECT_EQ(bodyOf({}), expected);
    EXPECT_EQ(productInformation(std::nullopt).home, text(u"https://www.kivune.example/"));
}

TEST(ProductInformation, PutsTheBuildDateBehindAnUndefinedVersion)
{
    const QString body = bodyOf({{QStringLiteral("KIVBuildDate"), QStringLiteral("20110520")}});
    EXPECT_TRUE(body.contains(text(u"\nVersion:\t\tUndefined/20110520\n")));
}

TEST(ProductInformation, HasNoDateBehindAVersionWithoutOne)
{
    const QString body = bodyOf({{QStringLiteral("KIVBuildVersion"), QStringLiteral("3.2.1")}});
    EXPECT_TRUE(body.contains(text(u"\nVersion:\t\t3.2.1\n")));
}

TEST(ProductInformation, HasALabelLineForALabelThatIsNotEmpty)
{
    EXPECT_FALSE(bodyOf({}).contains(QLatin1String("Label")));
    EXPECT_FALSE(bodyOf({{QStringLiteral("KIVPrivateLabel"), QString()}}).contains(QLatin1String("Label")));
    EXPECT_FALSE(bodyOf({{QStringLiteral("KIVPrivateLabel"), QStringLiteral("")}}).contains(QLatin1String("Label")));
}

TEST(ProductInformation, TakesNumbersForTheirTexts)
{
    const ProductInformation information = productInformation(QVariantMap{
        {QStringLiteral("KIVBuildVersion"), 3.5},
        {QStringLiteral("KIVBuildDate"), 20110520},
        {QStringLiteral("KIVProductCopyright"), true},
        {QStringLiteral("KIVProductHome"), QVariantList{1}},
        {QStringLiteral("KIVPrivateLabel"), 7},
    });
    EXPECT_EQ(information.body, text(u"\nProduct:\t\tKivune Server for Mac OS X\nVersion:\t\t3.5/20110520"
                                     u"\nCopyright:\t\t") +
                                    text(ProductTexts::copyright) + text(u"\nHome:\t\t") +
                                    text(ProductTexts::homePage) + text(u"\nLabel:\t\t7\n\n"));
    EXPECT_EQ(supportPage(QVariantMap{{QStringLiteral("KIVProductSupport"), 42}}), QStringLiteral("42"));
}

TEST(ProductInformation, LetsAnEmptyTextReplaceADefault)
{
    EXPECT_TRUE(bodyOf({{QStringLiteral("KIVBuildVersion"), QStringLiteral("")}}).contains(text(u"\nVersion:\t\t\n")));
}

TEST(SupportPage, IsTheBundlesElseTheBuiltInOne)
{
    const QString builtIn = text(u"https://www.kivune.example/support/");
    EXPECT_EQ(supportPage(QVariantMap{{QStringLiteral("KIVProductSupport"), QStringLiteral("https://help.example/")}}),
              QStringLiteral("https://help.example/"));
    EXPECT_EQ(supportPage(QVariantMap{}), builtIn);
    EXPECT_EQ(supportPage(std::nullopt), builtIn);
}

TEST(Credits, HaveALineForEachRole)
{
    const QStringList lines = text(ProductTexts::credits).split(u'\n');
    ASSERT_GE(lines.size(), 7);
    EXPECT_EQ(lines.front(), QString());
    EXPECT_TRUE(text(ProductTexts::credits).endsWith(text(u"\n\n")));
    for (const char *role : {"Programming:", "Images design:", "Product idea:", "Company:"}) {
        EXPECT_EQ(lines.filter(QLatin1String(role)).size(), 1) << role;
    }
}
