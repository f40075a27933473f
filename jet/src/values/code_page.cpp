#include "values/code_page.h"

#include <algorithm>
#include <array>
#include <optional>

namespace jet {

namespace {

// The characters of the bytes 0x80 to 0x9F; all others are the characters of the same numbers.
constexpr unsigned kFirst = 0x80;
constexpr std::array<char16_t, 32> kUpper = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

constexpr std::array<char16_t, 256> kCharacters = [] {
    std::array<char16_t, 256> characters{};
    for (unsigned byte = 0; byte < characters.size(); ++byte) {
        const unsigned place = byte - kFirst;
        characters[byte] = place < kUpper.size() ? kUpper[place] : static_cast<char16_t>(byte);
    }
    return characters;
}();

std::optional<std::byte> CodePageByte(char16_t unit) {
    if (unit < kFirst || (unit > 0x9F && unit <= 0xFF)) return static_cast<std::byte>(unit);
    const auto* const found = std::find(kUpper.begin(), kUpper.end(), unit);
    if (found == kUpper.end()) return std::nullopt;
    return static_cast<std::byte>(kFirst + (found - kUpper.begin()));
}

}  // namespace

char16_t CodePageCharacter(std::byte byte) {
    return kCharacters[static_cast<unsigned char>(byte)];
}

void DecodeCodePage(Bytes bytes, std::u16string& into) {
    into.resize(bytes.size());
    std::transform(bytes.begin(), bytes.end(), into.begin(),
                   [](std::byte byte) { return kCharacters[static_cast<unsigned char>(byte)]; });
}

std::u16string DecodeCodePage(std::string_view bytes) {
    std::u16string text(bytes.size(), u'\0');
    std::transform(bytes.begin(), bytes.end(), text.begin(),
                   [](char c) { return kCharacters[static_cast<unsigned char>(c)]; });
    return text;
}

std::string EncodeCodePage(std::u16string_view text, bool* complete) {
    std::string bytes(text.size(), '\0');
    std::transform(text.begin(), text.end(), bytes.begin(), [&](char16_t unit) {
        const auto byte = CodePageByte(unit);
        if (!byte && complete != nullptr) *complete = false;
        return byte ? static_cast<char>(*byte) : '?';
    });
    return bytes;
}

void EncodeCodePage(std::u16string_view text, std::vector<std::byte>& into) {
    const std::size_t before = into.size();
    into.resize(before + text.size());
    std::byte* const bytes = into.data() + before;
    // Nearly every text is plain, and taking it over at once is many times faster.
    char16_t all = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        all |= text[i];
        bytes[i] = static_cast<std::byte>(text[i]);
    }
    if (all < kFirst) return;
    std::transform(text.begin(), text.end(), bytes,
                   [](char16_t unit) { return CodePageByte(unit).value_or(std::byte{'?'}); });
}

}  // namespace jet
