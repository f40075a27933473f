// What one action did to a list of rows: which of them it changed, moved, added and removed, so
// that it can be taken back and repeated on the same list as it stands then.
//
// A row is a plain value with a member `key`, which no two rows of a list share, and comparison for
// equality. Places count from 0.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

namespace undo {

template <typename Row>
struct ListChange {
    struct At {
        std::size_t place = 0;
        Row row;
        bool operator==(const At&) const = default;
    };
    // One row: nothing before when it was added, nothing after when it was removed.
    struct Step {
        std::optional<At> before;
        std::optional<At> after;
        [[nodiscard]] std::int32_t Key() const { return before ? before->row.key : after->row.key; }
    };
    std::vector<Step> steps;

    [[nodiscard]] bool IsEmpty() const { return steps.empty(); }

    // Where the list is not as before first.
    [[nodiscard]] std::optional<std::size_t> FirstPlace() const {
        std::optional<std::size_t> first;
        for (const Step& step : steps) {
            for (const std::optional<At>& at : {step.before, step.after}) {
                if (at && (!first || at->place < *first)) {
                    first = at->place;
                }
            }
        }
        return first;
    }

    // The same the other way round: what takes this change back.
    [[nodiscard]] ListChange Reversed() const {
        ListChange reversed = *this;
        for (Step& step : reversed.steps) {
            std::swap(step.before, step.after);
        }
        return reversed;
    }

    // Only what makes a difference, in the order of the keys' first appearance.
    static ListChange Between(const std::vector<Row>& before, const std::vector<Row>& after) {
        ListChange change;
        std::unordered_map<std::int32_t, std::size_t> steps;
        const auto stepOf = [&](std::int32_t key) -> Step& {
            const auto [known, isNew] = steps.try_emplace(key, change.steps.size());
            if (isNew) {
                change.steps.emplace_back();
            }
            return change.steps[known->second];
        };
        const std::size_t most = std::max(before.size(), after.size());
        for (std::size_t place = 0; place < most; ++place) {
            if (place < before.size() && place < after.size() && before[place] == after[place]) {
                continue;
            }
            if (place < before.size()) {
                stepOf(before[place].key).before = At{place, before[place]};
            }
            if (place < after.size()) {
                stepOf(after[place].key).after = At{place, after[place]};
            }
        }
        return change;
    }

    // The list after this change. Rows that the change does not know keep their order.
    [[nodiscard]] std::vector<Row> AppliedTo(const std::vector<Row>& rows) const {
        std::unordered_set<std::int32_t> known;
        std::vector<const At*> placed;
        for (const Step& step : steps) {
            known.insert(step.Key());
            if (step.after) {
                placed.push_back(&*step.after);
            }
        }
        std::sort(placed.begin(), placed.end(),
                  [](const At* one, const At* other) { return one->place < other->place; });
        std::vector<Row> result;
        auto next = placed.begin();
        const auto fill = [&] {
            for (; next != placed.end() && (*next)->place <= result.size(); ++next) {
                result.push_back((*next)->row);
            }
        };
        for (const Row& row : rows) {
            if (known.count(row.key) == 0) {
                fill();
                result.push_back(row);
            }
        }
        // Behind what is left of a list that has become shorter meanwhile.
        for (; next != placed.end(); ++next) {
            result.push_back((*next)->row);
        }
        return result;
    }
};

}  // namespace undo
