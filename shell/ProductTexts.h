#pragma once

#include <QLatin1String>

/// The names of the product in this library: see platform/ProductTexts.h. The first are for where the bundle's
/// information dictionary says nothing else.
namespace ProductTexts
{

inline constexpr char16_t product[] = u"Kivune Server for Mac OS X";
inline constexpr char16_t version[] = u"Undefined";
inline constexpr char16_t copyright[] = u"Copyright (c) 2026 The Kivune contributors";
inline constexpr char16_t homePage[] = u"https://www.kivune.example/";
inline constexpr char16_t supportPage[] = u"https://www.kivune.example/support/";

/// The program's file name, as shell/CMakeLists.txt has it.
inline constexpr char programName[] = "kivmenua";

/// A line for each role; names that follow the first one stand below it.
inline constexpr char16_t credits[] = u"\nProgramming:\t\tThe Kivune contributors"
                                      u"\nImages design:\t\tThe Kivune contributors"
                                      u"\nProduct idea:\t\tThe Kivune contributors"
                                      u"\nCompany:\t\t\tTamborel"
                                      u"\n\n";

/// The titles of the panels with these, and the question before the session is disconnected.
inline constexpr char16_t creditsTitle[] = u"Kivune Project credits.";
inline constexpr char16_t informationTitle[] = u"Kivune Product information.";
inline constexpr char16_t disconnectTitle[] = u"This will disconnect the current Kivune session.";

} // namespace ProductTexts
