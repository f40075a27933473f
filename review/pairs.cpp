#include "review/pairs.h"

#include <algorithm>
#include <cmath>
#include <deque>
#include <string>
#include <unordered_map>

#include "season/text.h"

namespace review {

namespace {

using season::Season;
using season::Zone;

template <typename Record, typename NameOf>
std::vector<Pair<Record>> PairByName(const std::vector<Record>& older,
                                     const std::vector<Record>& newer, const NameOf& nameOf) {
    std::unordered_map<std::string, std::deque<const Record*>> waiting;
    for (const Record& record : older) {
        waiting[season::NameKey(season::Words(nameOf(record)))].push_back(&record);
    }
    std::vector<Pair<Record>> pairs;
    for (const Record& record : newer) {
        Pair<Record> pair{nullptr, &record};
        auto& alike = waiting[season::NameKey(season::Words(nameOf(record)))];
        if (!alike.empty()) {
            pair.older = alike.front();
            alike.pop_front();
        }
        pairs.push_back(pair);
    }
    for (const Record& record : older) {
        const auto& alike = waiting[season::NameKey(season::Words(nameOf(record)))];
        if (std::find(alike.begin(), alike.end(), &record) != alike.end()) {
            pairs.push_back({&record, nullptr});
        }
    }
    return pairs;
}

// Counts the figures of two zones, those that only one of them has included.
class FigureCount {
public:
    FigureCount(const Zone& a, const Zone& b, double tolerance) : tolerance_(tolerance) {
        for (int number = 1; number <= season::kCostClasses; ++number) {
            Count(season::FindClass(a, number), season::FindClass(b, number));
        }
        const int locations = std::max(season::LiveCount(a), season::LiveCount(b));
        for (int number = 1; number <= locations; ++number) {
            Count(number <= season::LiveCount(a) ? season::FindLocation(a, number) : nullptr,
                  number <= season::LiveCount(b) ? season::FindLocation(b, number) : nullptr);
        }
    }
    [[nodiscard]] bool AllEqual() const { return equal_ == total_; }
    [[nodiscard]] bool NineTenths() const { return total_ > 0 && equal_ * 10 >= total_ * 9; }
    [[nodiscard]] double Part() const {
        return total_ == 0 ? 0 : static_cast<double>(equal_) / static_cast<double>(total_);
    }

private:
    void Count(const season::CostClass* a, const season::CostClass* b) {
        total_ += 2;
        if (a != nullptr && b != nullptr) {
            equal_ += SameFigure(a->topSize, b->topSize, tolerance_) ? 1 : 0;
            equal_ += SameFigure(a->cost, b->cost, tolerance_) ? 1 : 0;
        } else if (a == nullptr && b == nullptr) {
            total_ -= 2;
        }
    }
    void Count(const season::Location* a, const season::Location* b) {
        for (int resource = 1; resource <= season::kNvcResources; ++resource) {
            const season::NvcRow* const one =
                a != nullptr ? season::FindRow(*a, resource) : nullptr;
            const season::NvcRow* const other =
                b != nullptr ? season::FindRow(*b, resource) : nullptr;
            if (one == nullptr && other == nullptr) {
                continue;
            }
            total_ += season::kFilLevels;
            for (std::size_t i = 0; one != nullptr && other != nullptr && i < one->values.size();
                 ++i) {
                equal_ += SameFigure(one->values[i], other->values[i], tolerance_) ? 1 : 0;
            }
        }
    }

    double tolerance_;
    std::size_t total_ = 0;
    std::size_t equal_ = 0;
};

// Joins what was removed with what was added where the figures tell that it is one zone.
void PairRenamed(std::vector<Pair<Zone>>& pairs, double tolerance) {
    for (Pair<Zone>& removed : pairs) {
        if (removed.newer != nullptr) {
            continue;
        }
        Pair<Zone>* best = nullptr;
        double most = 0;
        for (Pair<Zone>& added : pairs) {
            if (added.older != nullptr || added.newer == nullptr) {
                continue;
            }
            const FigureCount count(*removed.older, *added.newer, tolerance);
            if (count.NineTenths() && count.Part() > most) {
                best = &added;
                most = count.Part();
            }
        }
        if (best != nullptr) {
            best->older = removed.older;
            removed.older = nullptr;
        }
    }
    std::erase_if(pairs, [](const Pair<Zone>& pair) {
        return pair.older == nullptr && pair.newer == nullptr;
    });
}

}  // namespace

bool SameFigure(const season::Single& a, const season::Single& b, double tolerance) {
    const double x = season::Amount(a);
    const double y = season::Amount(b);
    if (x == y || (std::isnan(x) && std::isnan(y))) {
        return true;
    }
    return std::isfinite(x) && std::isfinite(y) &&
           std::abs(x - y) <= tolerance * std::max(std::abs(x), std::abs(y));
}

std::vector<Pair<season::Goal>> PairGoals(const Season& older, const Season& newer) {
    return PairByName(older.goals, newer.goals,
                      [](const season::Goal& goal) -> const season::Text& { return goal.area; });
}

std::vector<Pair<season::Resource>> PairResources(const Season& older, const Season& newer) {
    return PairByName(
        older.resources, newer.resources,
        [](const season::Resource& resource) -> const season::Text& { return resource.longName; });
}

std::vector<Pair<Zone>> PairZones(const Season& older, const Season& newer, double tolerance) {
    auto pairs = PairByName(older.zones, newer.zones,
                            [](const Zone& zone) -> const season::Text& { return zone.name; });
    PairRenamed(pairs, tolerance);
    return pairs;
}

bool SameFigures(const Zone& a, const Zone& b, double tolerance) {
    return FigureCount(a, b, tolerance).AllEqual();
}

}  // namespace review
