// Counts of amounts that tell exactly where the middle of them lies, without holding them.
//
// A first look at all amounts counts them in buckets whose ends lie half a percent apart. The
// middle, and the middle of the distances from it, then lie in a few of these; a second look
// counts what lies there one by one. Memory depends on neither number.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <vector>

namespace rollup {

// What the amounts of one kind are like: of the logarithms to base 10.
struct Usual {
    std::uint64_t count = 0;
    double median = 0;
    double distance = 0;  // the median of the distances from the median
};

// The bits of a positive single, which have the order of what they stand for.
using Amount = std::uint32_t;
// Nothing for what has no amount: 0, and what is infinite or no number.
std::optional<Amount> AmountOf(double value);

class AmountCounts {
public:
    // The first look: takes each amount once.
    void Add(Amount amount);
    // Which buckets the second look has to count one by one, so that the middle is known when the
    // amounts of `without` are left out, or about as many others are.
    void Want(const std::vector<Amount>& without);
    // The second look: takes each amount once more. EndLook is false when these were not those of
    // the first look.
    void AddWanted(Amount amount);
    [[nodiscard]] bool EndLook();

    // Nothing when other buckets have to be counted for it.
    [[nodiscard]] std::optional<Usual> Find(const std::vector<Amount>& without) const;

private:
    using Bucket = std::uint32_t;
    struct Counted {
        Bucket bucket;
        std::uint64_t count;
    };
    static constexpr int kWithin = 15;  // bits within a bucket
    static constexpr std::size_t kChunk = 256;

    static Bucket BucketOf(Amount amount) { return amount >> kWithin; }
    [[nodiscard]] std::vector<Counted> Buckets(const std::vector<Amount>& without) const;
    [[nodiscard]] std::uint64_t CountIn(Bucket bucket) const;
    [[nodiscard]] std::map<Amount, std::uint64_t> Within(const std::set<Bucket>& buckets,
                                                         const std::vector<Amount>& without) const;
    [[nodiscard]] bool IsKnown(const std::set<Bucket>& buckets) const;

    struct Bounds;
    static Bounds MiddleOf(const std::vector<Counted>& buckets, std::uint64_t slack,
                           std::set<Bucket>& within);
    static std::uint64_t Near(const std::vector<Counted>& buckets, const Bounds& median,
                              std::uint64_t slack, std::set<Bucket>& within);

    // Chunks of neighboring buckets, by the first one divided by their number.
    std::map<Bucket, std::array<std::uint32_t, kChunk>> buckets_;
    std::set<Bucket> known_;
    std::set<Bucket> wanted_;
    std::map<Amount, std::uint32_t> single_;  // the amounts in known and wanted buckets
};

}  // namespace rollup
