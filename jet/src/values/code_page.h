// Code page 1252, the encoding of text in Jet 3 files, to and from UTF-16.
//
// The five bytes that the code page leaves undefined stand for the characters of the same numbers,
// as they do in Windows.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "page/types.h"

namespace jet {

char16_t CodePageCharacter(std::byte byte);
std::u16string DecodeCodePage(std::string_view bytes);
// The same into memory that is used again.
void DecodeCodePage(Bytes bytes, std::u16string& into);
// Characters outside the code page become question marks; `complete`, when given, then turns false.
std::string EncodeCodePage(std::u16string_view text, bool* complete = nullptr);
// The same behind what is there.
void EncodeCodePage(std::u16string_view text, std::vector<std::byte>& into);

}  // namespace jet
