#include "fetch/RequestHeaders.h"

#include <gtest/gtest.h>

#include <utility>

namespace
{

TEST(AcceptLanguage, IsThatOfTheLocaleThenEnglishThenAny)
{
    const std::pair<const char *, const char *> cases[] = {
        {"de_DE.UTF-8", "de-DE,en,*"},
        {"de_DE@euro", "de-DE,en,*"},
        {"fr", "fr,en,*"},
        {"en_GB.UTF-8", "en-GB,*"},
        {"en", "en,*"},
        {"enm_GB", "enm-GB,en,*"},
    };
    for (const auto &[locale, expected] : cases) {
        EXPECT_EQ(RequestHeaders::acceptLanguage(locale), expected) << locale;
    }
}

TEST(AcceptLanguage, IsEnglishWithoutALanguage)
{
    for (const char *locale : {"", "C", "C.UTF-8", "POSIX", ".UTF-8", "de\r\nX: y", "../../etc"}) {
        EXPECT_EQ(RequestHeaders::acceptLanguage(locale), "en,*") << locale;
    }
}

} // namespace
