#include "fetch/RequestHeaders.h"

#include <algorithm>
#include <cstdlib>

std::string RequestHeaders::acceptLanguage(std::string locale)
{
    locale.resize(std::min(locale.find_first_of(".@"), locale.size()));
    std::ranges::replace(locale, '_', '-');
    const bool isLanguage = std::ranges::all_of(locale, [](char character) {
        return character == '-' || (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z');
    });
    if (!isLanguage || locale.empty() || locale == "C" || locale == "POSIX") {
        return "en,*";
    }
    return locale + (locale == "en" || locale.starts_with("en-") ? ",*" : ",en,*");
}

std::string RequestHeaders::localeOfTheSession()
{
    for (const char *variable : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        if (const char *locale = std::getenv(variable); locale && *locale != '\0') {
            return locale;
        }
    }
    return {};
}
