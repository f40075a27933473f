// Text keys: bytes whose order is the order of the General collation.
//
//   Jet 3, "General 97"       one weight for each byte of code page 1252, then the accents of the
//                             letters as hexadecimal digits
//   Jet 4, "General Legacy"   weights for each UTF-16 code unit, then accents, kana, and the places
//                             of hyphens, apostrophes and control characters
//
// Neither knows case. Both take 255 characters at most and no blanks at the end.
#pragma once

#include <string_view>

#include "page/types.h"
#include "values/key_bytes.h"

namespace jet {

// How letters that stand for two (sharp s, ligatures) are counted where a key records the places of
// accents and of special characters: as the engines do it, or as another writer does. Keys are made
// in the first way; files can hold the second.
enum class LetterCount { kWeights, kCharacters };

// Appends the encoding of a text, without a flag byte. `text` is in code page 1252.
void AppendGeneral97(Key& key, std::string_view text, bool ascending);
void AppendGeneralLegacy(Key& key, std::u16string_view text, bool ascending,
                         LetterCount letters = LetterCount::kWeights);
// The part of a General Legacy key that does not depend on how letters are counted: all texts that
// count as equal have it in common, whoever made their keys, and no key goes on within it.
void AppendGeneralLegacyStart(Key& key, std::u16string_view text, bool ascending);

}  // namespace jet
