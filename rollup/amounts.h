// The amounts of a roll-up: what values of the same kind are like elsewhere.
#pragma once

#include <array>
#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "rollup/amount_counts.h"
#include "rollup/value_source.h"

namespace rollup {

class Amounts {
public:
    // Looks at all live values of a roll-up, of whatever kind its destination is; it stays as it
    // is. Throws DestinationError, as UsualWithout does.
    explicit Amounts(const std::string& destination);

    // The values that a data file has or had in the roll-up: those of its path there, and of its
    // own contents. Throws season::Refused when it cannot be read.
    class Own;
    [[nodiscard]] std::unique_ptr<Own> OwnOf(const std::filesystem::path& file);

    // What the amounts of one resource, FIL (1 to 6) and sign are like, but for a file's own.
    // Values of 0 and infinite ones have no amount.
    [[nodiscard]] Usual UsualWithout(const Own& own, std::int32_t resource, int fil, bool negative);

private:
    static constexpr std::size_t kKinds = std::size_t{2} * season::kFilLevels;  // FIL and sign
    template <typename Kept>
    using ByKind = std::map<std::int64_t, std::array<Kept, kKinds>>;  // by resource

    static std::size_t KindOf(int fil, bool negative) {
        return static_cast<std::size_t>(fil - 1) * 2 + (negative ? 1 : 0);
    }
    template <typename Take>
    static void EachAmount(const ValueRow& row, const Take& take);
    void LookAgain(const Own& own);

    std::unique_ptr<ValueSource> source_;
    ByKind<AmountCounts> counts_;
};

class Amounts::Own {
private:
    friend class Amounts;
    [[nodiscard]] const std::vector<Amount>& Of(std::int64_t resource, std::size_t kind) const;

    ByKind<std::vector<Amount>> amounts_;
};

}  // namespace rollup
