// What the fuzz targets share: small sound files, and damage done to them as the input says.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "jet/file.h"
#include "jet/schema.h"

namespace tarn_fuzz {

using Contents = std::vector<std::byte>;

inline constexpr char kFile[] = "a file.mdb";
inline constexpr char kLog[] = "a file.mdb-log";

// The input, taken piece by piece; zeros after its end.
class Input {
public:
    Input(const std::uint8_t* bytes, std::size_t size) : at_(bytes), end_(bytes + size) {}

    [[nodiscard]] bool IsEmpty() const { return at_ == end_; }
    std::uint8_t Byte() { return IsEmpty() ? std::uint8_t{0} : *at_++; }
    std::uint16_t Word() {
        const unsigned low = Byte();
        return static_cast<std::uint16_t>(low | static_cast<unsigned>(Byte()) << 8);
    }
    std::u16string Text(std::size_t length);
    Contents Rest();

private:
    const std::uint8_t* at_;
    const std::uint8_t* end_;
};

// A sound file with two tables: "People" (autonumber, text, memo, single; three indexes) and
// "Rates" (two long keys, two singles). Made once for each version.
const Contents& SampleFile(jet::Version version);

// A file and the log that a killed process left beside it.
struct Interrupted {
    Contents file;
    Contents log;
};
const Interrupted& InterruptedSample(jet::Version version);

// Such a pair, either part tampered with. Half of the logs have their checksums put right, so that
// what lies behind those is reached.
Interrupted DamagedPair(Input& input);

// Overwrites bytes here and there: how often comes first, then for each place its page (or block),
// the offset within it, a length and the bytes.
void Damage(Contents& contents, std::size_t blockSize, Input& input);

// The file that an input stands for: a damaged sample, or its own bytes.
Contents FileFrom(Input& input);

void Put(jet::FileSystem& files, const std::string& name, const Contents& contents);
Contents Get(jet::FileSystem& files, const std::string& name);

}  // namespace tarn_fuzz
