#include "season/text.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

namespace season {

namespace {

constexpr char32_t kReplacement = 0xFFFD;

bool IsSurrogate(char32_t c) {
    return c >= 0xD800 && c <= 0xDFFF;
}

void Append(std::string& to, char32_t c) {
    const auto byte = [&to](std::uint32_t value) { to += static_cast<char>(value); };
    if (c < 0x80) {
        byte(c);
    } else if (c < 0x800) {
        byte(0xC0 | c >> 6);
        byte(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
        byte(0xE0 | c >> 12);
        byte(0x80 | (c >> 6 & 0x3F));
        byte(0x80 | (c & 0x3F));
    } else {
        byte(0xF0 | c >> 18);
        byte(0x80 | (c >> 12 & 0x3F));
        byte(0x80 | (c >> 6 & 0x3F));
        byte(0x80 | (c & 0x3F));
    }
}

// The character at `at`, which moves behind it; U+FFFD for one byte that begins none.
char32_t Next(std::string_view text, std::size_t& at) {
    const auto byte = [text](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned char first = byte(at);
    ++at;
    if (first < 0x80) {
        return first;
    }
    const std::size_t more = first >= 0xF0 ? 3 : first >= 0xE0 ? 2 : 1;
    if (first < 0xC2 || first > 0xF4 || at + more > text.size()) {
        return kReplacement;
    }
    char32_t c = first & (0x3F >> more);
    for (std::size_t i = 0; i < more; ++i) {
        if ((byte(at + i) & 0xC0) != 0x80) {
            return kReplacement;
        }
        c = c << 6 | (byte(at + i) & 0x3F);
    }
    constexpr std::array<char32_t, 4> kLeast{0, 0x80, 0x800, 0x10000};
    if (c < kLeast[more] || c > 0x10FFFF) {
        return kReplacement;
    }
    at += more;
    return c;
}

bool IsSpace(char32_t c) {
    return (c >= 0x09 && c <= 0x0D) || c == 0x20 || c == 0x85 || c == 0xA0 || c == 0x1680 ||
           (c >= 0x2000 && c <= 0x200A) || c == 0x2028 || c == 0x2029 || c == 0x202F ||
           c == 0x205F || c == 0x3000;
}

// In these ranges capital and small letters stand in turn.
char32_t FoldedPair(char32_t c) {
    const bool evenIsCapital =
        (c >= 0x100 && c <= 0x137 && c != 0x130 && c != 0x131) || (c >= 0x14A && c <= 0x177) ||
        (c >= 0x1DE && c <= 0x1EF) || (c >= 0x1F8 && c <= 0x21F) || (c >= 0x222 && c <= 0x233) ||
        (c >= 0x460 && c <= 0x481) || (c >= 0x48A && c <= 0x4BF) || (c >= 0x4D0 && c <= 0x52F) ||
        (c >= 0x1E00 && c <= 0x1E95) || (c >= 0x1EA0 && c <= 0x1EFF);
    if (evenIsCapital) {
        return c | 1;
    }
    const bool oddIsCapital = (c >= 0x139 && c <= 0x148) || (c >= 0x179 && c <= 0x17E);
    return oddIsCapital && c % 2 == 1 ? c + 1 : c;
}

char32_t FoldedLetter(char32_t c) {
    if (c < 0x80) {
        return c >= U'A' && c <= U'Z' ? c + 32 : c;
    }
    if ((c >= 0xC0 && c <= 0xDE && c != 0xD7) || (c >= 0x391 && c <= 0x3AB && c != 0x3A2) ||
        (c >= 0x410 && c <= 0x42F)) {
        return c + 32;
    }
    if (c >= 0x400 && c <= 0x40F) {
        return c + 80;
    }
    if (c == 0x178) {
        return 0xFF;
    }
    return FoldedPair(c);
}

}  // namespace

std::string ToUtf8(std::u16string_view text) {
    std::string result;
    result.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        char32_t c = text[i];
        if (c >= 0xD800 && c <= 0xDBFF && i + 1 < text.size() && text[i + 1] >= 0xDC00 &&
            text[i + 1] <= 0xDFFF) {
            ++i;
            c = 0x10000 + ((c - 0xD800) << 10) + (text[i] - 0xDC00U);
        }
        Append(result, c);
    }
    return result;
}

std::u16string ToUtf16(std::string_view text) {
    std::u16string result;
    result.reserve(text.size());
    for (std::size_t at = 0; at < text.size();) {
        const char32_t c = Next(text, at);
        if (c < 0x10000) {
            result += static_cast<char16_t>(c);
        } else {
            result += static_cast<char16_t>(0xD800 + ((c - 0x10000) >> 10));
            result += static_cast<char16_t>(0xDC00 + ((c - 0x10000) & 0x3FF));
        }
    }
    return result;
}

std::string WellFormed(std::string_view text) {
    const bool isAscii =
        std::all_of(text.begin(), text.end(), [](char c) { return (c & 0x80) == 0; });
    if (isAscii) {
        return std::string(text);
    }
    std::string result;
    result.reserve(text.size());
    for (std::size_t at = 0; at < text.size();) {
        const char32_t c = Next(text, at);
        Append(result, IsSurrogate(c) ? kReplacement : c);
    }
    return result;
}

std::string Trimmed(std::string_view text) {
    std::size_t first = text.size();
    std::size_t end = 0;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t start = at;
        if (!IsSpace(Next(text, at))) {
            first = std::min(first, start);
            end = at;
        }
    }
    return end == 0 ? std::string() : std::string(text.substr(first, end - first));
}

bool IsBlank(std::string_view text) {
    for (std::size_t at = 0; at < text.size();) {
        if (!IsSpace(Next(text, at))) {
            return false;
        }
    }
    return true;
}

std::string Folded(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    for (std::size_t at = 0; at < text.size();) {
        Append(result, FoldedLetter(Next(text, at)));
    }
    return result;
}

std::string NameKey(std::string_view name) {
    return Folded(Trimmed(name));
}

}  // namespace season
