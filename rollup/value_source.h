// The live values of a roll-up, of whatever kind its destination is.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "season/season.h"

namespace rollup {

// A row of values; 0 for a null.
struct ValueRow {
    std::int64_t resource = 0;
    std::array<double, season::kFilLevels> values{};
};

// It stays as it is. Everything throws DestinationError.
class ValueSource {
public:
    ValueSource() = default;
    ValueSource(const ValueSource&) = delete;
    ValueSource& operator=(const ValueSource&) = delete;
    virtual ~ValueSource() = default;

    using Take = std::function<void(const ValueRow& row)>;
    virtual void EachRow(const Take& take) = 0;
    virtual void EachRowOf(const std::string& fileId, const Take& take) = 0;
    // What the roll-up has of a path.
    [[nodiscard]] virtual std::optional<std::string> ContentsOf(const std::string& path) = 0;
};

std::unique_ptr<ValueSource> OpenValues(const std::string& destination);

}  // namespace rollup
