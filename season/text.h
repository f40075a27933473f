// Texts as a data file keeps them and as people compare them.
//
// Everywhere above the engine a text is UTF-8. An unpaired surrogate of the stored UTF-16 keeps its
// three bytes, so that a copy of a file is true to it; WellFormed replaces these for readers that
// insist.
#pragma once

#include <string>
#include <string_view>

namespace season {

std::string ToUtf8(std::u16string_view text);
std::u16string ToUtf16(std::string_view text);
// The text with U+FFFD for whatever is no UTF-8.
std::string WellFormed(std::string_view text);

// Without blanks of any kind at its ends.
std::string Trimmed(std::string_view text);
bool IsBlank(std::string_view text);
// The same text for all that differ in letter case only: Latin, Greek and Cyrillic letters.
std::string Folded(std::string_view text);
// What names are paired by: trimmed, without regard to case.
std::string NameKey(std::string_view name);

}  // namespace season
