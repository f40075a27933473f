#include "rollup/amount_counts.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <iterator>
#include <utility>

namespace rollup {

namespace {

// Ranks that the middle may shift by without another look: other files are left out then.
constexpr std::uint64_t kSlack = 2000;
// Logarithms of neighbors may lie the wrong way round by as little.
constexpr double kRounding = 1e-12;

double LogOf(Amount amount) {
    return std::log10(double{std::bit_cast<float>(amount)});
}

// The ranks of the middle, from 0 on; two for an even number.
std::pair<std::uint64_t, std::uint64_t> MiddleRanks(std::uint64_t count) {
    return {(count - 1) / 2, count / 2};
}

struct Span {
    double least;
    double most;
    std::uint64_t count;
};

// The number at a rank when each has the end of its span that `end` chooses.
double AtRank(std::vector<Span> spans, double Span::*end, std::uint64_t rank) {
    std::sort(spans.begin(), spans.end(),
              [end](const Span& a, const Span& b) { return a.*end < b.*end; });
    for (const Span& span : spans) {
        if (rank < span.count) {
            return span.*end;
        }
        rank -= span.count;
    }
    return spans.back().*end;
}

std::uint64_t Lowered(std::uint64_t rank, std::uint64_t by) {
    return rank - std::min(rank, by);
}

// The middle of numbers with their counts, when `below` others are less than all of these.
double MiddleOfCounted(const std::vector<std::pair<double, std::uint64_t>>& numbers,
                       std::uint64_t below, std::uint64_t count) {
    const auto at = [&numbers](std::uint64_t rank) {
        for (const auto& [number, times] : numbers) {
            if (rank < times) {
                return number;
            }
            rank -= times;
        }
        return numbers.back().first;
    };
    const auto [first, second] = MiddleRanks(count);
    return (at(first - below) + at(second - below)) / 2;
}

}  // namespace

// Between which numbers one lies.
struct AmountCounts::Bounds {
    double least = 0;
    double most = 0;
    std::uint64_t below = 0;  // amounts in buckets before
};

std::optional<Amount> AmountOf(double value) {
    const auto amount = static_cast<float>(std::abs(value));
    return amount > 0 && std::isfinite(amount) ? std::optional(std::bit_cast<Amount>(amount))
                                               : std::nullopt;
}

void AmountCounts::Add(Amount amount) {
    const Bucket bucket = BucketOf(amount);
    ++buckets_[bucket / kChunk][bucket % kChunk];
}

std::uint64_t AmountCounts::CountIn(Bucket bucket) const {
    const auto chunk = buckets_.find(bucket / kChunk);
    return chunk == buckets_.end() ? 0 : chunk->second[bucket % kChunk];
}

std::vector<AmountCounts::Counted> AmountCounts::Buckets(const std::vector<Amount>& without) const {
    std::map<Bucket, std::uint64_t> leftOut;
    for (const Amount amount : without) {
        ++leftOut[BucketOf(amount)];
    }
    std::vector<Counted> buckets;
    for (const auto& [chunk, counts] : buckets_) {
        for (std::size_t i = 0; i < kChunk; ++i) {
            const auto bucket = static_cast<Bucket>(chunk * kChunk + i);
            const auto less = leftOut.find(bucket);
            const std::uint64_t count =
                Lowered(counts[i], less == leftOut.end() ? 0 : less->second);
            if (count > 0) {
                buckets.push_back({bucket, count});
            }
        }
    }
    return buckets;
}

// Where the median lies, and the buckets from the one of its lower rank to that of its upper one.
AmountCounts::Bounds AmountCounts::MiddleOf(const std::vector<Counted>& buckets,
                                            std::uint64_t slack, std::set<Bucket>& within) {
    std::uint64_t count = 0;
    for (const Counted& each : buckets) {
        count += each.count;
    }
    const auto [first, second] = MiddleRanks(count);
    Bounds bounds;
    std::uint64_t before = 0;
    for (const auto& [bucket, here] : buckets) {
        if (before + here > Lowered(first, slack) && before <= second + slack) {
            if (within.empty()) {
                bounds.least = LogOf(bucket << kWithin);
                bounds.below = before;
            }
            bounds.most = LogOf(((bucket + 1) << kWithin) - 1);
            within.insert(bucket);
        }
        before += here;
    }
    return bounds;
}

// The buckets in which the median of the distances from the median may lie; gives how many amounts
// are nearer than all of these.
std::uint64_t AmountCounts::Near(const std::vector<Counted>& buckets, const Bounds& median,
                                 std::uint64_t slack, std::set<Bucket>& within) {
    std::vector<Span> spans;
    std::uint64_t count = 0;
    for (const auto& [bucket, here] : buckets) {
        const double least = LogOf(bucket << kWithin);
        const double most = LogOf(((bucket + 1) << kWithin) - 1);
        spans.push_back({std::max({0.0, least - median.most, median.least - most}) - kRounding,
                         std::max({0.0, most - median.least, median.most - least}) + kRounding,
                         here});
        count += here;
    }
    const auto [first, second] = MiddleRanks(count);
    const double nearest = AtRank(spans, &Span::least, Lowered(first, slack));
    const double farthest = AtRank(spans, &Span::most, std::min(second + slack, count - 1));
    std::uint64_t nearer = 0;
    for (std::size_t i = 0; i < buckets.size(); ++i) {
        if (spans[i].most < nearest) {
            nearer += spans[i].count;
        } else if (spans[i].least <= farthest) {
            within.insert(buckets[i].bucket);
        }
    }
    return nearer;
}

void AmountCounts::Want(const std::vector<Amount>& without) {
    const std::vector<Counted> buckets = Buckets(without);
    if (buckets.empty()) {
        return;
    }
    std::set<Bucket> within;
    const Bounds median = MiddleOf(buckets, kSlack, within);
    Near(buckets, median, kSlack, within);
    std::set_difference(within.begin(), within.end(), known_.begin(), known_.end(),
                        std::inserter(wanted_, wanted_.end()));
}

void AmountCounts::AddWanted(Amount amount) {
    if (wanted_.contains(BucketOf(amount))) {
        ++single_[amount];
    }
}

bool AmountCounts::EndLook() {
    std::map<Bucket, std::uint64_t> counts;
    for (const auto& [amount, count] : single_) {
        counts[BucketOf(amount)] += count;
    }
    const bool areSame = std::all_of(wanted_.begin(), wanted_.end(), [&](Bucket bucket) {
        return counts[bucket] == CountIn(bucket);
    });
    known_.merge(wanted_);
    wanted_.clear();
    return areSame;
}

bool AmountCounts::IsKnown(const std::set<Bucket>& buckets) const {
    return std::includes(known_.begin(), known_.end(), buckets.begin(), buckets.end());
}

std::map<Amount, std::uint64_t> AmountCounts::Within(const std::set<Bucket>& buckets,
                                                     const std::vector<Amount>& without) const {
    std::map<Amount, std::uint64_t> amounts;
    for (const Bucket bucket : buckets) {
        const auto end = single_.lower_bound((bucket + 1) << kWithin);
        for (auto at = single_.lower_bound(bucket << kWithin); at != end; ++at) {
            amounts.emplace(*at);
        }
    }
    for (const Amount amount : without) {
        const auto found = amounts.find(amount);
        if (found != amounts.end()) {
            found->second = Lowered(found->second, 1);
        }
    }
    return amounts;
}

std::optional<Usual> AmountCounts::Find(const std::vector<Amount>& without) const {
    const std::vector<Counted> buckets = Buckets(without);
    Usual usual;
    for (const Counted& each : buckets) {
        usual.count += each.count;
    }
    if (usual.count == 0) {
        return usual;
    }
    std::set<Bucket> within;
    const Bounds about = MiddleOf(buckets, 0, within);
    if (!IsKnown(within)) {
        return std::nullopt;
    }
    std::vector<std::pair<double, std::uint64_t>> numbers;
    for (const auto& [amount, count] : Within(within, without)) {
        numbers.emplace_back(LogOf(amount), count);
    }
    usual.median = MiddleOfCounted(numbers, about.below, usual.count);

    within.clear();
    const std::uint64_t nearer = Near(buckets, {usual.median, usual.median}, 0, within);
    if (!IsKnown(within)) {
        return std::nullopt;
    }
    numbers.clear();
    for (const auto& [amount, count] : Within(within, without)) {
        numbers.emplace_back(std::abs(LogOf(amount) - usual.median), count);
    }
    std::sort(numbers.begin(), numbers.end());
    usual.distance = MiddleOfCounted(numbers, nearer, usual.count);
    return usual;
}

}  // namespace rollup
