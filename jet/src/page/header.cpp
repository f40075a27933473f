#include "page/header.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstring>
#include <numeric>
#include <vector>

#include "jet/error.h"
#include "page/bytes.h"
#include "page/checksum.h"

namespace jet {

namespace {

constexpr std::size_t kMaskedFrom = 0x18;
constexpr char kSignature[16] = "Standard Jet DB";
// Files of the original engine carry a mask over their security ids that goes with the creation
// date in a way nobody has found out. This date, build and mask are a set that is known to fit.
constexpr std::uint64_t kCreationDateBits = 0x40E4AB3E3BD3853E;
constexpr std::uint32_t kJet4Build = 0x261C;
constexpr std::uint32_t kJet3Build = 0x0D64;
constexpr std::uint16_t kUnusedCounter = 0x0100;

std::size_t MaskedSize(Version version) {
    return version == Version::kJet3 ? 126 : 128;
}

// The mask is the beginning of the RC4 key stream for this key.
std::array<std::byte, 128> MakeMask() {
    constexpr std::array<unsigned, 4> kKey = {0xC7, 0xDA, 0x39, 0x6B};
    std::array<unsigned, 256> state{};
    std::iota(state.begin(), state.end(), 0U);
    unsigned j = 0;
    for (unsigned i = 0; i < 256; ++i) {
        j = (j + state[i] + kKey[i % 4]) & 0xFF;
        std::swap(state[i], state[j]);
    }
    std::array<std::byte, 128> mask{};
    j = 0;
    for (unsigned i = 1; i <= mask.size(); ++i) {
        j = (j + state[i]) & 0xFF;
        std::swap(state[i], state[j]);
        mask[i - 1] = static_cast<std::byte>(state[(state[i] + state[j]) & 0xFF]);
    }
    return mask;
}

void ApplyMask(MutableBytes page, Version version) {
    static const std::array<std::byte, 128> mask = MakeMask();
    for (std::size_t i = 0; i < MaskedSize(version); ++i) page[kMaskedFrom + i] ^= mask[i];
}

std::array<std::byte, 4> PasswordMask(double creationDate) {
    std::array<std::byte, 4> mask{};
    // A date outside the range of a day number comes from no engine; it masks nothing.
    if (std::isfinite(creationDate) && std::abs(creationDate) < 2147483647.0) {
        WriteU32(mask, 0,
                 static_cast<std::uint32_t>(static_cast<std::int32_t>(std::trunc(creationDate))));
    }
    return mask;
}

bool HasPassword(Bytes plain, Version version, double creationDate) {
    const std::size_t size = version == Version::kJet3 ? 20 : 40;
    const Bytes stored = Slice(plain, 0x42, size);
    const auto isZero = [](std::byte b) { return b == std::byte{0}; };
    if (std::all_of(stored.begin(), stored.end(), isZero)) return false;
    if (version == Version::kJet3) return true;
    const auto mask = PasswordMask(creationDate);
    for (std::size_t i = 0; i < size; ++i) {
        if (stored[i] != mask[i % 4]) return true;
    }
    return false;
}

Version VersionOf(Bytes page) {
    if (page.size() < kHeaderPrefix || page[0] != std::byte{0} ||
        std::memcmp(page.data() + 4, kSignature, sizeof kSignature) != 0) {
        // The successor's files differ in the signature too.
        if (page.size() >= 20 && std::memcmp(page.data() + 4, "Standard ACE DB", 15) == 0) {
            throw Error(ErrorKind::kUnsupportedVersion,
                        "The file is of a newer format than this program understands.");
        }
        throw Error(ErrorKind::kNotADatabase, "The file is not a database.");
    }
    switch (ReadU8(page, 0x14)) {
        case 0:
            return Version::kJet3;
        case 1:
            return Version::kJet4;
        default:
            throw Error(ErrorKind::kUnsupportedVersion,
                        "The file is of a newer format than this program understands.");
    }
}

}  // namespace

const Format& FormatOf(Version version) {
    return version == Version::kJet3 ? kJet3Format : kJet4Format;
}

std::uint32_t LargestPageCount(const Format& format) {
    const std::uint32_t gibibytes = format.version == Version::kJet3 ? 1 : 2;
    return gibibytes * ((1U << 30) / format.pageSize);
}

FileHeader ReadFileHeader(Bytes page) {
    const Version version = VersionOf(page);
    std::vector<std::byte> plain(page.begin(), page.begin() + kHeaderPrefix);
    ApplyMask(plain, version);
    FileHeader header;
    header.version = version;
    header.freePages = RowId::FromPacked(ReadU32(plain, 0x18));
    header.secondMap = RowId::FromPacked(ReadU32(plain, 0x1C));
    header.objects = PageNumber{ReadU32(plain, 0x20)};
    header.accessControl = PageNumber{ReadU32(plain, 0x24)};
    header.queries = PageNumber{ReadU32(plain, 0x28)};
    header.relationships = PageNumber{ReadU32(plain, 0x2C)};
    header.codePage = ReadU16(plain, 0x3C);
    if (version == Version::kJet3) {
        header.sortVersion = ReadU16(plain, 0x38);
        header.language = ReadU16(plain, 0x3A);
    } else {
        header.language = ReadU16(plain, 0x6E);
        header.sortVersion = ReadU8(plain, 0x71);
        header.creationDate = std::bit_cast<double>(ReadU64(plain, 0x72));
    }
    if (ReadU32(plain, 0x3E) != 0 || HasPassword(plain, version, header.creationDate)) {
        throw Error(ErrorKind::kEncrypted, "The file is encrypted or protected by a password.");
    }
    return header;
}

void WriteFileHeader(MutableBytes page, Version version) {
    WriteU32(page, 0, 0x100);
    std::memcpy(page.data() + 4, kSignature, sizeof kSignature);
    WriteU8(page, 0x14, version == Version::kJet3 ? 0 : 1);
    WriteU32(page, 0x18, 0x100);
    WriteU32(page, 0x1C, 0x101);
    for (std::uint32_t i = 0; i < 4; ++i) WriteU32(page, 0x20 + 4 * i, 2 + i);
    WriteU16(page, 0x3C, 1252);
    if (version == Version::kJet3) {
        WriteU16(page, 0x3A, 0x0409);
        WriteU32(page, 0x56, kJet3Build);
    } else {
        const auto mask = PasswordMask(std::bit_cast<double>(kCreationDateBits));
        for (std::size_t i = 0; i < 40; ++i) page[0x42 + i] = mask[i % 4];
        WriteU32(page, 0x6A, kJet4Build);
        WriteU32(page, 0x6E, 0x0409);
        WriteU64(page, 0x72, kCreationDateBits);
        WriteU32(page, 0x98, 0x0654);
        WriteU32(page, 0x9C, 0x00302E34);
    }
    ApplyMask(page, version);
    for (std::size_t at = CommitCounterOffset(FormatOf(version)); at < page.size(); at += 2) {
        WriteU16(page, at, kUnusedCounter);
    }
}

void WriteGlobalMapsPage(MutableBytes page, const Format& format) {
    const std::uint32_t first = format.pageSize - format.initialMapRow;
    const std::uint32_t second = first - format.initialMapRow;
    WriteU16(page, 0, kDataPageType);
    WriteU32(page, 4, 1);
    WriteU16(page, format.rowCountAt, 2);
    WriteU16(page, format.rowDirectoryAt, static_cast<std::uint16_t>(first));
    WriteU16(page, format.rowDirectoryAt + 2, static_cast<std::uint16_t>(second));
    WriteU16(page, 2, static_cast<std::uint16_t>(second - format.rowDirectoryAt - 4));
    std::fill(page.begin() + first + 5, page.end(), std::byte{0xFF});
    WriteU8(page, first + 5, 0xFC);
}

std::uint32_t CommitCounterOffset(const Format& format) {
    return format.pageSize - 512;
}

std::uint16_t ReadCommitCounter(Bytes page, const Format& format) {
    return ReadU16(page, CommitCounterOffset(format));
}

void WriteCommitCounter(MutableBytes page, const Format& format, std::uint16_t value) {
    WriteU16(page, CommitCounterOffset(format), value);
}

std::uint64_t OtherCounters(Bytes page, const Format& format) {
    return Checksum(page.subspan(CommitCounterOffset(format) + 2), 0);
}

std::uint16_t NextCommitCounter(std::uint16_t value) {
    // Zero is the mark of a file whose writer was interrupted.
    return value == 0xFFFF ? kUnusedCounter + 1 : static_cast<std::uint16_t>(value + 1);
}

}  // namespace jet
