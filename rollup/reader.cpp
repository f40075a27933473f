#include "rollup/reader.h"

#include <algorithm>
#include <new>

#include "rollup/sha256.h"
#include "season/file_name.h"
#include "season/held_file.h"
#include "season/text.h"

namespace rollup {

namespace {

constexpr char kHexDigits[] = "0123456789ABCDEF";
constexpr std::size_t kFileIdDigits = 16;

std::optional<int> HexDigit(char c) {
    const std::string_view digits(kHexDigits);
    const std::size_t found = digits.find(c);
    return found == std::string_view::npos ? std::nullopt : std::optional(static_cast<int>(found));
}

// How many bytes at `at` are one character; 0 when they are none.
std::size_t CharacterSize(const std::string& text, std::size_t at) {
    constexpr std::size_t kLongest = 4;
    for (std::size_t size = 1; size <= kLongest && at + size <= text.size(); ++size) {
        const std::string part = text.substr(at, size);
        if (season::WellFormed(part) == part) {
            return size;
        }
    }
    return 0;
}

std::string HashOf(season::HeldFile& file) {
    Sha256 sha;
    file.EachPart([&sha](std::span<const std::byte> part) { sha.Add(part); });
    return sha.Finish();
}

void NameFromPath(const std::filesystem::path& path, FileRow& row) {
    if (const auto name = season::ParseFileName(path)) {
        row.unit = season::WellFormed(name->unit);
        row.state = name->state;
        row.year = season::FullYear(name->year);
    }
}

void DescribeSeason(const season::Season& season, FileRow& row) {
    row.format = season::WellFormed(season.format);
    row.jet = season.version == jet::Version::kJet3 ? 3 : 4;
    for (const season::Property& property : season.properties) {
        if (season::Folded(property.name) == "unitname" && property.value && !row.unitName) {
            row.unitName = season::WellFormed(*property.value);
        }
    }
    if (!row.year && row.unitName) {
        if (const auto year = season::YearOfUnitName(*row.unitName)) {
            row.year = season::FullYear(*year);
        }
    }
}

void ReadInto(FileRead& file, const std::filesystem::path& path, const std::string& known,
              const Destination& destination) {
    season::HeldFile held(path);
    file.row.bytes = static_cast<std::int64_t>(held.Bytes());
    file.row.sha256 = HashOf(held);
    file.row.fileId = file.row.sha256->substr(0, kFileIdDigits);
    file.isKnown = *file.row.sha256 == known;
    if (!file.isKnown) {
        season::Season season = held.Read();
        DescribeSeason(season, file.row);
        file.rows = season::CountRows(season);
        file.packed = destination.Pack(std::move(season), file.row);
    }
}

}  // namespace

std::string FileIdOf(const std::filesystem::path& path) {
    season::HeldFile held(path);
    return HashOf(held).substr(0, kFileIdDigits);
}

std::string PathText(const std::filesystem::path& path) {
    const std::u8string stored = path.u8string();
    const std::string bytes(stored.begin(), stored.end());
    std::string text = season::WellFormed(bytes);
    if (text == bytes) {
        return text;
    }
    text.clear();
    for (std::size_t at = 0; at < bytes.size();) {
        const std::size_t size = CharacterSize(bytes, at);
        if (size == 0) {
            const auto byte = static_cast<unsigned char>(bytes[at]);
            text += std::string("\\x") + kHexDigits[byte >> 4] + kHexDigits[byte & 15];
        }
        text.append(bytes, at, size);
        at += std::max<std::size_t>(size, 1);
    }
    return text;
}

std::filesystem::path PathOfText(const std::string& text) {
    const std::filesystem::path asItStands(std::u8string(text.begin(), text.end()));
    std::error_code unknown;
    if (text.find("\\x") == std::string::npos || std::filesystem::exists(asItStands, unknown)) {
        return asItStands;
    }
    std::string bytes;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const bool isByte = at + 3 < text.size() && text[at] == '\\' && text[at + 1] == 'x' &&
                            HexDigit(text[at + 2]) && HexDigit(text[at + 3]);
        bytes += isByte ? static_cast<char>(*HexDigit(text[at + 2]) * 16 + *HexDigit(text[at + 3]))
                        : text[at];
        at += isByte ? 3 : 0;
    }
    return {std::u8string(bytes.begin(), bytes.end())};
}

FileRead ReadForRollup(const std::filesystem::path& path, const std::string& known,
                       const Destination& destination) {
    FileRead file;
    file.row.path = PathText(path);
    NameFromPath(path, file.row);
    try {
        ReadInto(file, path, known, destination);
    } catch (const std::bad_alloc&) {
        file.row.status = Status::kRefused;
        file.row.reason = "There is not enough memory to read the file.";
    } catch (const std::exception& error) {
        file.row.status = Status::kRefused;
        file.row.reason = season::WellFormed(error.what());
    }
    return file;
}

}  // namespace rollup
