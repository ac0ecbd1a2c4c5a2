#pragma once

/// The product's own texts, for where the bundle's information dictionary says nothing else. Whoever ships the agent
/// under another name changes this file and resources/Info.plist.in.
namespace ProductTexts
{

inline constexpr char16_t product[] = u"Kivune Server for Mac OS X";
inline constexpr char16_t version[] = u"Undefined";
inline constexpr char16_t copyright[] = u"Copyright (c) 2026 The Kivune contributors";
inline constexpr char16_t homePage[] = u"https://www.kivune.example/";
inline constexpr char16_t supportPage[] = u"https://www.kivune.example/support/";

/// A line for each role; names that follow the first one stand below it.
inline constexpr char16_t credits[] = u"\nProgramming:\t\tThe Kivune contributors"
                                      u"\nImages design:\t\tThe Kivune contributors"
                                      u"\nProduct idea:\t\tThe Kivune contributors"
                                      u"\nCompany:\t\t\tTamborel"
                                      u"\n\n";

} // namespace ProductTexts
