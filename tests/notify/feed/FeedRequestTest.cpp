#include "notify/feed/FeedRequest.h"

#include <gtest/gtest.h>

namespace
{

FeedRequest sample()
{
    return {.baseAddress = QStringLiteral("http://feed.example/messages"),
            .productCode = QStringLiteral("kivunets"),
            .productVersion = QStringLiteral("3.2.1"),
            .buildDate = QStringLiteral("20110520"),
            .systemCode = QStringLiteral("osx"),
            .systemVersion = QStringLiteral("10.6.8"),
            .messageLevel = QStringLiteral("user"),
            .licenseType = QStringLiteral("paid"),
            .lastMesID = QStringLiteral("0")};
}

std::string addressed(const FeedRequest &request)
{
    return feedAddress(request).toEncoded().toStdString();
}

/// The address with that value as the build date.
std::string withValue(const QString &value)
{
    FeedRequest request = sample();
    request.buildDate = value;
    return addressed(request);
}

std::string expectedWith(const std::string &value)
{
    return "http://feed.example/messages?product=kivunets&version=3.2.1&build_date=" + value +
           "&system=osx&sysver=10.6.8&level=user&license=paid&lastId=0&limit=5";
}

TEST(FeedRequest, StatesTheInstallationInOrderAndWantsFiveMessages)
{
    EXPECT_EQ(addressed(sample()), "http://feed.example/messages?product=kivunets&version=3.2.1&build_date=20110520"
                                   "&system=osx&sysver=10.6.8&level=user&license=paid&lastId=0&limit=5");
}

TEST(FeedRequest, KeepsWhatHasAMeaningInAUrl)
{
    EXPECT_EQ(withValue(QStringLiteral("a&b=c+d/e?f;g[h]")), expectedWith("a&b=c+d/e?f;g[h]"));
    EXPECT_EQ(withValue(QStringLiteral("%26%2B%0a")), expectedWith("%26%2B%0A"));
    EXPECT_EQ(withValue(QStringLiteral("a#b")), expectedWith("a#b")); // The rest is a fragment, which is not sent.
}

TEST(FeedRequest, EncodesWhatNoUrlCanHold)
{
    EXPECT_EQ(withValue(QStringLiteral("May 20")), expectedWith("May%2020"));
    EXPECT_EQ(withValue(QString::fromUtf8("\xC3\xA9\xF0\x9F\x98\x80")), expectedWith("%C3%A9%F0%9F%98%80"));
    EXPECT_EQ(withValue(QStringLiteral("\"<>\\^`{|}")), expectedWith("%22%3C%3E%5C%5E%60%7B%7C%7D"));
    EXPECT_EQ(withValue(QStringLiteral("x HTTP/1.1\r\nHost: other")), expectedWith("x%20HTTP/1.1%0D%0AHost:%20other"));
}

TEST(FeedRequest, EncodesAStrayPercentSignWithoutChangingTheOtherValues)
{
    FeedRequest request = sample();
    request.productCode = QStringLiteral("%26");
    request.buildDate = QStringLiteral("100%");
    request.systemVersion = QStringLiteral("%zz%4%");
    request.lastMesID = QStringLiteral("a%20b c");
    EXPECT_EQ(addressed(request), "http://feed.example/messages?product=%26&version=3.2.1&build_date=100%25"
                                  "&system=osx&sysver=%25zz%254%25&level=user&license=paid&lastId=a%20b%20c&limit=5");
}

TEST(FeedRequest, TakesNoValueForAPlaceOfAnotherOne)
{
    EXPECT_EQ(withValue(QStringLiteral("%@")), expectedWith("%25@"));
    EXPECT_EQ(withValue(QStringLiteral("%1%2")), expectedWith("%251%252"));
}

TEST(FeedRequest, WritesNilAndEmptyDifferently)
{
    EXPECT_EQ(withValue(QString()), expectedWith("(null)"));
    EXPECT_EQ(withValue(QStringLiteral("")), expectedWith(""));
}

TEST(FeedRequest, IsInvalidUnlessTheAddressIsHttpOrHttpsWithAHost)
{
    for (const char *base : {"", "feed", "not a url", "//feed.example/f", "ftp://feed.example/f", "file:///etc/passwd",
                             "javascript:alert(1)", "http://", "http:///f", "http:feed", "http://feed.example:99999/f",
                             " http://feed.example/f", "http ://feed.example/f", "%@%@"}) {
        FeedRequest request = sample();
        request.baseAddress = QString::fromLatin1(base);
        EXPECT_FALSE(feedAddress(request).isValid()) << base;
    }
    FeedRequest request = sample();
    request.baseAddress = QString();
    EXPECT_FALSE(feedAddress(request).isValid());
}

TEST(FeedRequest, TakesAnyHttpOrHttpsAddress)
{
    for (const char *base : {"https://feed.example", "HTTP://feed.example/f", "http://127.0.0.1:8080/f",
                             "http://[::1]:8080/f", "http://feed.example/f?a=b"}) {
        FeedRequest request = sample();
        request.baseAddress = QString::fromLatin1(base);
        EXPECT_TRUE(feedAddress(request).isValid()) << base;
    }
}

} // namespace
