// Text as rows hold it, to and from UTF-16.
//
// Jet 3: a byte for each character, code page 1252. Jet 4: UTF-16, or the compressed form:
//
//   FF FE | characters below U+0100, a byte each | 00 | other characters, two bytes each | 00 | ...
//
// where a zero byte switches between the two kinds. A reader must expect it in every value,
// whatever the column says.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "jet/schema.h"
#include "page/types.h"

namespace jet {

// Replaces `into`, which keeps its memory from one call to the next. An odd last byte of a value
// that should have whole characters is passed over.
void DecodeText(Bytes stored, Version version, std::u16string& into);
// The same as UTF-8, without UTF-16 in between.
void DecodeText(Bytes stored, Version version, std::string& into);
// Whether a value with this beginning has to be read whole: where a piece of a compressed one
// begins does not show in it.
[[nodiscard]] bool IsCompressedText(Bytes stored, Version version);
// Appends the stored form: compressed only where that is wanted, possible and shorter. Characters
// that a Jet 3 file cannot hold become question marks.
void EncodeText(std::u16string_view text, Version version, bool compress,
                std::vector<std::byte>& into);

// The same of a text that comes in pieces, compressed whether that is shorter or not.
class TextCompressor {
public:
    void Append(std::u16string_view piece, std::vector<std::byte>& into);

private:
    bool begun_ = false;
    bool narrow_ = true;
};
// Whether all of its units can stand in a compressed text.
[[nodiscard]] bool CanCompress(std::u16string_view text);
// A text that begins with this unit has to be compressed, or stored without it.
inline constexpr char16_t kCompressionMark = 0xFEFF;

// Units as they are, two bytes each, the lower one first.
void AppendUnits(std::u16string_view text, std::vector<std::byte>& into);
// Replaces `into`; an odd byte at the end is passed over.
void ReadUnits(Bytes units, std::u16string& into);

// Names: UTF-8 in the engine's face, plain text in the file.
std::u16string WidenName(std::string_view utf8);
std::string NarrowName(std::u16string_view name);
// Appends UTF-8.
void AppendUtf8(std::u16string_view text, std::string& into);

}  // namespace jet
