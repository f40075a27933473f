#include "values/text.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <cstring>
#include <span>

#include "values/code_page.h"

namespace jet {

namespace {

constexpr char16_t kReplacement = 0xFFFD;
constexpr std::byte kSwitch{0};

bool IsCompressed(Bytes stored) {
    return stored.size() >= 2 && stored[0] == std::byte{0xFF} && stored[1] == std::byte{0xFE};
}

char16_t UnitAt(Bytes stored, std::size_t at) {
    std::uint16_t unit = 0;
    std::memcpy(&unit, stored.data() + at, sizeof unit);
    if constexpr (std::endian::native != std::endian::little) unit = __builtin_bswap16(unit);
    return static_cast<char16_t>(unit);
}

// The next switch from `at` on, or the end.
std::size_t NextSwitch(Bytes stored, std::size_t at) {
    const void* found = std::memchr(stored.data() + at, 0, stored.size() - at);
    if (found == nullptr) return stored.size();
    return static_cast<std::size_t>(static_cast<const std::byte*>(found) - stored.data());
}

// Runs of narrow units, a byte each, alternate with runs of wide ones; most texts are one narrow
// run. Every unit takes at least a byte, so the text has room enough from the start.
void DecodeCompressed(Bytes stored, std::u16string& into) {
    into.resize(stored.size());
    char16_t* unit = into.data();
    std::size_t at = 2;
    while (at < stored.size()) {
        const Bytes narrow = stored.subspan(at, NextSwitch(stored, at) - at);
        for (const std::byte byte : narrow) *unit++ = static_cast<char16_t>(byte);
        at += narrow.size() + 1;
        while (at + 1 < stored.size() && stored[at] != kSwitch) {
            *unit++ = UnitAt(stored, at);
            at += 2;
        }
        ++at;
    }
    into.resize(static_cast<std::size_t>(unit - into.data()));
}

// The length of the sequence that begins with this byte, 0 for none.
int SequenceLength(unsigned lead) {
    if (lead < 0x80) return 1;
    if (lead >= 0xC2 && lead < 0xE0) return 2;
    if (lead >= 0xE0 && lead < 0xF0) return 3;
    if (lead >= 0xF0 && lead < 0xF5) return 4;
    return 0;
}

// Whether no shorter sequence stands for the same.
bool IsShortest(char32_t point, int length) {
    constexpr std::array<char32_t, 5> kFirstOfLength = {0, 0, 0x80, 0x800, 0x10000};
    return point >= kFirstOfLength[static_cast<std::size_t>(length)];
}

// Halves of surrogate pairs are for UTF-16 alone.
bool IsCharacter(char32_t point) {
    return point <= 0x10FFFF && (point < 0xD800 || point > 0xDFFF);
}

// The code point at `at`, which moves behind it; the replacement character for what is none.
char32_t NextCodePoint(std::string_view utf8, std::size_t& at) {
    const auto lead = static_cast<unsigned char>(utf8[at++]);
    const int length = SequenceLength(lead);
    if (length == 0) return kReplacement;
    if (length == 1) return lead;
    char32_t point = lead & (0xFFU >> (length + 1));
    for (int i = 1; i < length; ++i) {
        if (at >= utf8.size()) return kReplacement;
        const auto next = static_cast<unsigned char>(utf8[at]);
        if ((next & 0xC0U) != 0x80U) return kReplacement;
        point = point << 6 | (next & 0x3FU);
        ++at;
    }
    return IsShortest(point, length) && IsCharacter(point) ? point : kReplacement;
}

// Writes the bytes of a code point and gives the place behind them.
char* PutUtf8(char32_t point, char* to) {
    const auto tail = [&](int shift) {
        *to++ = static_cast<char>(0x80U | (point >> shift & 0x3FU));
    };
    if (point < 0x80) {
        *to++ = static_cast<char>(point);
    } else if (point < 0x800) {
        *to++ = static_cast<char>(0xC0U | point >> 6);
        tail(0);
    } else if (point < 0x10000) {
        *to++ = static_cast<char>(0xE0U | point >> 12);
        tail(6);
        tail(0);
    } else {
        *to++ = static_cast<char>(0xF0U | point >> 18);
        tail(12);
        tail(6);
        tail(0);
    }
    return to;
}

// The code point at `at` of `count` units, which moves behind it. `unit(i)` gives the unit i.
template <typename Unit>
char32_t NextCodePoint(const Unit& unit, std::size_t count, std::size_t& at) {
    constexpr char32_t kSurrogate = 0xD800;
    const char32_t first = unit(at++);
    if ((first & 0xF800) != kSurrogate) return first;
    if ((first & 0xFC00) == kSurrogate && at < count && (unit(at) & 0xFC00) == 0xDC00) {
        return 0x10000 + ((first & 0x3FF) << 10) + (unit(at++) & 0x3FFU);
    }
    return kReplacement;
}

// Puts the characters that UTF-16 begins with, as long as they are ASCII, where `to` points, and
// tells how many they are. Pieces of a fixed length are what a compiler makes a few instructions
// of.
std::size_t PutAscii(Bytes utf16, char* to) {
    if constexpr (std::endian::native != std::endian::little) return 0;
    constexpr std::size_t kPiece = 16;
    std::array<std::uint16_t, kPiece> units{};
    std::array<char, kPiece> narrow{};
    std::size_t at = 0;
    while (2 * (at + kPiece) <= utf16.size()) {
        std::memcpy(units.data(), utf16.data() + 2 * at, sizeof units);
        std::uint16_t all = 0;
        for (const std::uint16_t unit : units) all |= unit;
        if (all >= 0x80) break;
        for (std::size_t i = 0; i < kPiece; ++i) narrow[i] = static_cast<char>(units[i]);
        std::memcpy(to + at, narrow.data(), kPiece);
        at += kPiece;
    }
    for (; 2 * at + 1 < utf16.size() && UnitAt(utf16, 2 * at) < 0x80; ++at) {
        to[at] = static_cast<char>(UnitAt(utf16, 2 * at));
    }
    return at;
}

// Appends the units from `at` on as UTF-8.
template <typename Unit>
void AppendUnits(const Unit& unit, std::size_t at, std::size_t count, std::string& into) {
    constexpr std::size_t kMostBytes = 3;  // of one unit; a pair of them takes four
    const std::size_t before = into.size();
    into.resize(before + kMostBytes * (count - at));
    char* to = into.data() + before;
    while (at < count) to = PutUtf8(NextCodePoint(unit, count, at), to);
    into.resize(static_cast<std::size_t>(to - into.data()));
}

// Most texts are ASCII and nothing else. `unit(i)` gives the unit i of the same text.
template <typename Unit>
void AppendUtf16(Bytes utf16, const Unit& unit, std::string& into) {
    const std::size_t before = into.size();
    const std::size_t count = utf16.size() / 2;
    into.resize(before + count);
    const std::size_t ascii = PutAscii(utf16, into.data() + before);
    if (ascii == count) return;
    into.resize(before + ascii);
    AppendUnits(unit, ascii, count, into);
}

bool IsAscii(Bytes bytes) {
    constexpr std::uint64_t kHighBits = 0x8080808080808080;
    std::size_t at = 0;
    for (; at + 8 <= bytes.size(); at += 8) {
        std::uint64_t word = 0;
        std::memcpy(&word, bytes.data() + at, sizeof(word));
        if ((word & kHighBits) != 0) return false;
    }
    for (; at < bytes.size(); ++at) {
        if ((bytes[at] & std::byte{0x80}) != std::byte{0}) return false;
    }
    return true;
}

// Bytes that stand for a character each, as `characters` says.
template <typename Character>
void AppendNarrow(Bytes bytes, const Character& character, std::string& into) {
    if (IsAscii(bytes)) {
        into.append(reinterpret_cast<const char*>(bytes.data()), bytes.size());
        return;
    }
    AppendUnits([&](std::size_t at) { return character(bytes[at]); }, 0, bytes.size(), into);
}

// The units of a compressed text that are no narrow run without surrogates are rare, so these take
// the way by UTF-16.
void AppendCompressedUtf8(Bytes stored, std::string& into) {
    const Bytes narrow = stored.subspan(2);
    if (NextSwitch(narrow, 0) == narrow.size()) {
        AppendNarrow(
            narrow, [](std::byte byte) { return static_cast<char16_t>(byte); }, into);
        return;
    }
    std::u16string text;
    DecodeCompressed(stored, text);
    AppendUtf8(text, into);
}

}  // namespace

void ReadUnits(Bytes units, std::u16string& into) {
    into.resize(units.size() / 2);
    if constexpr (std::endian::native == std::endian::little) {
        if (!into.empty()) std::memcpy(into.data(), units.data(), 2 * into.size());
    } else {
        for (std::size_t i = 0; i < into.size(); ++i) into[i] = UnitAt(units, 2 * i);
    }
}

void AppendUnits(std::u16string_view text, std::vector<std::byte>& into) {
    if constexpr (std::endian::native == std::endian::little) {
        const auto* bytes = reinterpret_cast<const std::byte*>(text.data());
        into.insert(into.end(), bytes, bytes + 2 * text.size());
        return;
    }
    auto at = into.size();
    into.resize(at + 2 * text.size());
    for (const char16_t unit : text) {
        into[at++] = static_cast<std::byte>(unit & 0xFF);
        into[at++] = static_cast<std::byte>(unit >> 8);
    }
}

// A unit whose low byte is zero would be taken for a switch.
bool CanCompress(std::u16string_view text) {
    return std::all_of(text.begin(), text.end(), [](char16_t unit) { return (unit & 0xFF) != 0; });
}

void TextCompressor::Append(std::u16string_view piece, std::vector<std::byte>& into) {
    if (!begun_) {
        into.push_back(std::byte{0xFF});
        into.push_back(std::byte{0xFE});
        begun_ = true;
    }
    if (narrow_ &&
        std::all_of(piece.begin(), piece.end(), [](char16_t unit) { return unit < 0x100; })) {
        const std::size_t before = into.size();
        into.resize(before + piece.size());
        std::transform(piece.begin(), piece.end(),
                       into.begin() + static_cast<std::ptrdiff_t>(before),
                       [](char16_t unit) { return static_cast<std::byte>(unit); });
        return;
    }
    for (const char16_t unit : piece) {
        if ((unit < 0x100) != narrow_) {
            into.push_back(kSwitch);
            narrow_ = !narrow_;
        }
        into.push_back(static_cast<std::byte>(unit & 0xFF));
        if (!narrow_) into.push_back(static_cast<std::byte>(unit >> 8));
    }
}

void DecodeText(Bytes stored, Version version, std::u16string& into) {
    if (version == Version::kJet3) {
        DecodeCodePage(stored, into);
    } else if (IsCompressed(stored)) {
        DecodeCompressed(stored, into);
    } else {
        ReadUnits(stored, into);
    }
}

void DecodeText(Bytes stored, Version version, std::string& into) {
    into.clear();
    if (version == Version::kJet3) {
        AppendNarrow(
            stored, [](std::byte byte) { return CodePageCharacter(byte); }, into);
    } else if (IsCompressed(stored)) {
        AppendCompressedUtf8(stored, into);
    } else {
        AppendUtf16(
            stored, [&](std::size_t at) { return UnitAt(stored, 2 * at); }, into);
    }
}

bool IsCompressedText(Bytes stored, Version version) {
    return version == Version::kJet4 && IsCompressed(stored);
}

void EncodeText(std::u16string_view text, Version version, bool compress,
                std::vector<std::byte>& into) {
    if (version == Version::kJet3) {
        EncodeCodePage(text, into);
        return;
    }
    // Stored plainly, a text that begins with this unit would read as a compressed one.
    if (text.starts_with(kCompressionMark)) {
        if (CanCompress(text)) {
            TextCompressor().Append(text, into);
            return;
        }
        // It has no width; the text is what it was to every reader.
        text.remove_prefix(std::min(text.find_first_not_of(kCompressionMark), text.size()));
    }
    if (compress && text.size() > 2 && CanCompress(text)) {
        const std::size_t before = into.size();
        TextCompressor().Append(text, into);
        if (into.size() - before < 2 * text.size()) return;
        into.resize(before);
    }
    AppendUnits(text, into);
}

std::u16string WidenName(std::string_view utf8) {
    std::u16string name;
    std::size_t at = 0;
    while (at < utf8.size()) {
        const char32_t point = NextCodePoint(utf8, at);
        if (point < 0x10000) {
            name.push_back(static_cast<char16_t>(point));
        } else {
            name.push_back(static_cast<char16_t>(0xD7C0 + (point >> 10)));
            name.push_back(static_cast<char16_t>(0xDC00 + (point & 0x3FF)));
        }
    }
    return name;
}

std::string NarrowName(std::u16string_view name) {
    std::string utf8;
    AppendUtf8(name, utf8);
    return utf8;
}

void AppendUtf8(std::u16string_view text, std::string& into) {
    AppendUtf16(
        std::as_bytes(std::span(text)), [&](std::size_t at) { return text[at]; }, into);
}

}  // namespace jet
