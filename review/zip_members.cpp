#include "review/zip_members.h"

#include <zlib.h>

#include <cstddef>
#include <cstdint>
#include <optional>

namespace review {

namespace {

constexpr std::size_t kEndSize = 22;
constexpr std::size_t kEntrySize = 46;
constexpr std::size_t kHeadSize = 30;
constexpr std::uint32_t kStored = 0;
constexpr std::uint32_t kDeflated = 8;

// A whole number of so many bytes, the lowest first; the caller has looked that they are there.
std::uint32_t NumberAt(std::string_view bytes, std::size_t at, std::size_t size) {
    std::uint32_t number = 0;
    for (std::size_t i = size; i-- > 0;) {
        number = number << 8U | static_cast<unsigned char>(bytes[at + i]);
    }
    return number;
}

std::optional<std::string> Inflated(std::string_view packed, std::size_t size) {
    std::string text(size, '\0');
    z_stream stream{};
    if (inflateInit2(&stream, -MAX_WBITS) != Z_OK) {
        return std::nullopt;
    }
    // The library takes what it reads as not constant.
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(packed.data()));
    stream.avail_in = static_cast<uInt>(packed.size());
    stream.next_out = reinterpret_cast<Bytef*>(text.data());
    stream.avail_out = static_cast<uInt>(size);
    const int result = inflate(&stream, Z_FINISH);
    const bool isWhole = result == Z_STREAM_END && stream.avail_out == 0;
    inflateEnd(&stream);
    return isWhole ? std::optional(std::move(text)) : std::nullopt;
}

struct Entry {
    std::string_view name;
    std::uint32_t method = 0;
    std::size_t packedSize = 0;
    std::size_t size = 0;
    std::size_t head = 0;  // where its local header begins
};

std::optional<std::string> ContentOf(std::string_view zip, const Entry& entry) {
    if (entry.head > zip.size() || zip.size() - entry.head < kHeadSize) {
        return std::nullopt;
    }
    const std::size_t begin = entry.head + kHeadSize + NumberAt(zip, entry.head + 26, 2) +
                              NumberAt(zip, entry.head + 28, 2);
    if (begin > zip.size() || zip.size() - begin < entry.packedSize) {
        return std::nullopt;
    }
    const std::string_view packed = zip.substr(begin, entry.packedSize);
    if (entry.method == kDeflated) {
        return Inflated(packed, entry.size);
    }
    return entry.method == kStored ? std::optional(std::string(packed)) : std::nullopt;
}

}  // namespace

bool EachZipMember(std::string_view zip,
                   const std::function<bool(std::string_view name, const std::string&)>& take) {
    const std::size_t end = zip.rfind("PK\5\6");
    if (end == std::string_view::npos || zip.size() - end < kEndSize) {
        return false;
    }
    std::size_t at = NumberAt(zip, end + 16, 4);
    for (std::uint32_t left = NumberAt(zip, end + 10, 2); left > 0; --left) {
        if (at > end || end - at < kEntrySize || zip.substr(at, 4) != "PK\1\2") {
            return false;
        }
        const std::size_t nameSize = NumberAt(zip, at + 28, 2);
        const Entry entry{zip.substr(at + kEntrySize, nameSize), NumberAt(zip, at + 10, 2),
                          NumberAt(zip, at + 20, 4), NumberAt(zip, at + 24, 4),
                          NumberAt(zip, at + 42, 4)};
        const std::optional<std::string> content = ContentOf(zip, entry);
        if (!content || !take(entry.name, *content)) {
            return false;
        }
        at += kEntrySize + nameSize + NumberAt(zip, at + 30, 2) + NumberAt(zip, at + 32, 2);
    }
    return true;
}

}  // namespace review
