#include "values/text.h"

#include <bit>
#include <cstring>

#include "values/code_page.h"

namespace jet {

namespace {

constexpr char16_t kReplacement = 0xFFFD;
constexpr char16_t kCompressionMark = 0xFEFF;
constexpr std::byte kSwitch{0};

bool IsCompressed(Bytes stored) {
    return stored.size() >= 2 && stored[0] == std::byte{0xFF} && stored[1] == std::byte{0xFE};
}

char16_t UnitAt(Bytes stored, std::size_t at) {
    return static_cast<char16_t>(static_cast<unsigned>(stored[at]) |
                                 static_cast<unsigned>(stored[at + 1]) << 8);
}

void DecodePlain(Bytes stored, std::u16string& into) {
    into.resize(stored.size() / 2);
    if constexpr (std::endian::native == std::endian::little) {
        if (!into.empty()) std::memcpy(into.data(), stored.data(), 2 * into.size());
    } else {
        for (std::size_t i = 0; i < into.size(); ++i) into[i] = UnitAt(stored, 2 * i);
    }
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

// A unit whose low byte is zero would be taken for a switch.
bool CanCompress(std::u16string_view text) {
    for (const char16_t unit : text) {
        if ((unit & 0xFF) == 0) return false;
    }
    return true;
}

void AppendCompressed(std::u16string_view text, std::vector<std::byte>& into) {
    into.push_back(std::byte{0xFF});
    into.push_back(std::byte{0xFE});
    bool narrow = true;
    for (const char16_t unit : text) {
        if ((unit < 0x100) != narrow) {
            into.push_back(kSwitch);
            narrow = !narrow;
        }
        into.push_back(static_cast<std::byte>(unit & 0xFF));
        if (!narrow) into.push_back(static_cast<std::byte>(unit >> 8));
    }
}

void AppendPlain(std::u16string_view text, std::vector<std::byte>& into) {
    auto at = into.size();
    into.resize(at + 2 * text.size());
    for (const char16_t unit : text) {
        into[at++] = static_cast<std::byte>(unit & 0xFF);
        into[at++] = static_cast<std::byte>(unit >> 8);
    }
}

// The length of the sequence that begins with this byte, 0 for none.
int SequenceLength(unsigned lead) {
    if (lead < 0x80) return 1;
    if (lead >= 0xC2 && lead < 0xE0) return 2;
    if (lead >= 0xE0 && lead < 0xF0) return 3;
    if (lead >= 0xF0 && lead < 0xF5) return 4;
    return 0;
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
    return point;
}

void AppendUtf8(char32_t point, std::string& into) {
    const auto tail = [&](int shift) {
        into.push_back(static_cast<char>(0x80U | (point >> shift & 0x3FU)));
    };
    if (point < 0x80) {
        into.push_back(static_cast<char>(point));
    } else if (point < 0x800) {
        into.push_back(static_cast<char>(0xC0U | point >> 6));
        tail(0);
    } else if (point < 0x10000) {
        into.push_back(static_cast<char>(0xE0U | point >> 12));
        tail(6);
        tail(0);
    } else {
        into.push_back(static_cast<char>(0xF0U | point >> 18));
        tail(12);
        tail(6);
        tail(0);
    }
}

}  // namespace

void DecodeText(Bytes stored, Version version, std::u16string& into) {
    if (version == Version::kJet3) {
        DecodeCodePage(stored, into);
    } else if (IsCompressed(stored)) {
        DecodeCompressed(stored, into);
    } else {
        DecodePlain(stored, into);
    }
}

void EncodeText(std::u16string_view text, Version version, bool compress,
                std::vector<std::byte>& into) {
    if (version == Version::kJet3) {
        for (const char c : EncodeCodePage(text)) into.push_back(static_cast<std::byte>(c));
        return;
    }
    // Stored plainly, a text that begins with this unit would read as a compressed one.
    while (text.starts_with(kCompressionMark)) {
        if (CanCompress(text)) {
            AppendCompressed(text, into);
            return;
        }
        // It has no width; the text is what it was to every reader.
        text.remove_prefix(1);
    }
    if (compress && text.size() > 2 && CanCompress(text)) {
        const std::size_t before = into.size();
        AppendCompressed(text, into);
        if (into.size() - before < 2 * text.size()) return;
        into.resize(before);
    }
    AppendPlain(text, into);
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
    for (std::size_t at = 0; at < name.size(); ++at) {
        char32_t point = name[at];
        const bool high = (point & 0xFC00) == 0xD800;
        if (high && at + 1 < name.size() && (name[at + 1] & 0xFC00) == 0xDC00) {
            point = 0x10000 + ((point & 0x3FF) << 10) + (name[++at] & 0x3FFU);
        } else if ((point & 0xF800) == 0xD800) {
            point = kReplacement;
        }
        AppendUtf8(point, utf8);
    }
    return utf8;
}

}  // namespace jet
