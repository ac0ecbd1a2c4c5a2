#pragma once

#include <string>

/// What a request says besides its address. docs/man/kivmenua.1 tells the user so, line by line, and a test compares.
namespace RequestHeaders
{

inline constexpr char userAgent[] = "kivfetch";
inline constexpr char acceptEncoding[] = "gzip, deflate";

/// The language of a session with that locale ("de_DE.UTF-8"), then English, then any: "de-DE,en,*".
[[nodiscard]] std::string acceptLanguage(std::string locale);

/// As the environment has it; empty when it has none.
[[nodiscard]] std::string localeOfTheSession();

} // namespace RequestHeaders
