#include "page/log_ranges.h"

#include <algorithm>
#include <cstring>

namespace jet {

namespace {

// Fewer bytes are not worth an entry of their own kind.
constexpr std::size_t kFewestMoved = 128;
// One entry of an index at most makes room or leaves it.
constexpr std::size_t kFarthest = 64;

std::uint64_t Word(Bytes bytes, std::size_t at) {
    std::uint64_t word = 0;
    std::memcpy(&word, bytes.data() + at, sizeof word);
    return word;
}

// The end of the difference that begins at `from`: where many equal bytes lie in a row. Entries
// that moved differ in a byte here and there; one long range takes less time than many short ones,
// to write and to recover, and not much more room.
std::size_t DifferenceEnd(Bytes a, Bytes b, std::size_t from) {
    constexpr std::size_t kGap = 64;
    std::size_t end = from + 1;
    while (end + kGap <= a.size() && std::memcmp(a.data() + end, b.data() + end, kGap) != 0) {
        end += kGap;
    }
    if (end + kGap > a.size()) end = a.size();
    while (end - from > sizeof(std::uint64_t) &&
           Word(a, end - sizeof(std::uint64_t)) == Word(b, end - sizeof(std::uint64_t))) {
        end -= sizeof(std::uint64_t);
    }
    while (a[end - 1] == b[end - 1]) --end;
    return end;
}

// How many bytes are the same from here and from there on, before the ends.
std::size_t SameBytes(Bytes a, Bytes b) {
    const std::size_t size = std::min(a.size(), b.size());
    return FirstDifference(a.first(size), b.first(size), 0);
}

// How far off the bytes that `from` begins with lie in `in`, and so many that follow them; 0 when
// they do not.
std::size_t DistanceTo(Bytes from, Bytes in) {
    const std::uint64_t word = Word(from, 0);
    const std::size_t most = std::min(kFarthest, in.size() - sizeof word);
    for (std::size_t distance = 1; distance <= most; ++distance) {
        if (Word(in, distance) == word && SameBytes(from, in.subspan(distance)) >= kFewestMoved) {
            return distance;
        }
    }
    return 0;
}

// What has moved within the range.
std::optional<LogMove> MoveWithin(const PageChange& change, LogRange range) {
    const std::size_t size = range.end - range.begin;
    if (size < 2 * kFewestMoved) return std::nullopt;
    const Bytes before = change.before.subspan(range.begin, size);
    const Bytes after = change.after.subspan(range.begin, size);
    const auto at = [&](std::size_t offset) {
        return static_cast<std::uint16_t>(range.begin + offset);
    };
    const auto length = [](Bytes a, Bytes b) {
        return static_cast<std::uint16_t>(SameBytes(a, b));
    };
    if (const std::size_t down = DistanceTo(after, before)) {
        return LogMove{
            .to = at(0), .from = at(down), .length = length(after, before.subspan(down))};
    }
    if (const std::size_t up = DistanceTo(before, after)) {
        return LogMove{.to = at(up), .from = at(0), .length = length(before, after.subspan(up))};
    }
    return std::nullopt;
}

}  // namespace

std::size_t FirstDifference(Bytes a, Bytes b, std::size_t from) {
    // Most of a page is as it was: it is passed over in blocks, then in words.
    constexpr std::size_t kBlock = 256;
    const std::size_t size = a.size();
    while (from + kBlock <= size && std::memcmp(a.data() + from, b.data() + from, kBlock) == 0) {
        from += kBlock;
    }
    while (from + sizeof(std::uint64_t) <= size && Word(a, from) == Word(b, from)) {
        from += sizeof(std::uint64_t);
    }
    while (from < size && a[from] == b[from]) ++from;
    return from;
}

void FindRanges(const PageChange& change, std::vector<LogRange>& into) {
    into.clear();
    const Bytes before = change.before.first(change.end);
    const Bytes after = change.after.first(change.end);
    for (std::size_t at = change.from; at < change.end;) {
        const std::size_t end = DifferenceEnd(before, after, at);
        into.push_back({static_cast<std::uint16_t>(at), static_cast<std::uint16_t>(end)});
        at = FirstDifference(before, after, end);
    }
}

std::optional<LogMove> TakeMove(const PageChange& change, std::vector<LogRange>& ranges) {
    for (auto range = ranges.begin(); range != ranges.end(); ++range) {
        const auto move = MoveWithin(change, *range);
        if (!move) continue;
        const LogRange above{.begin = range->begin, .end = move->to};
        const LogRange below{.begin = static_cast<std::uint16_t>(move->to + move->length),
                             .end = range->end};
        auto at = ranges.erase(range);
        if (below.begin < below.end) at = ranges.insert(at, below);
        if (above.begin < above.end) ranges.insert(at, above);
        return move;
    }
    return std::nullopt;
}

}  // namespace jet
