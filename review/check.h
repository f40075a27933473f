// The findings of a season: a table of rules, each of which looks for one kind of fault.
//
// Only live locations count, 1 to `RLCount` and 99 at most. Numbers that are null count as 0. A
// number that is infinite or none is one finding; the other rules leave its row or class out.
#pragma once

#include <cstdint>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "review/finding.h"
#include "season/season.h"

namespace review {

// What the amounts of the same resource at the same FIL are like in other files, those of one sign.
struct Usual {
    std::uint64_t count = 0;
    double median = 0;    // of log10 of each
    double distance = 0;  // the median of their distances from it
};

class Population {
public:
    Population() = default;
    Population(const Population&) = delete;
    Population& operator=(const Population&) = delete;
    virtual ~Population() = default;
    // `negative` chooses losses or gains.
    [[nodiscard]] virtual Usual UsualOf(std::int32_t resource, int fil, bool negative) const = 0;
};

// What the rules look at; what is null is not compared with.
struct Subject {
    const season::Season& season;
    const season::Season* previous = nullptr;
    const Population* others = nullptr;
};

class Findings;

struct Rule {
    std::string_view name;
    Severity severity;
    std::string_view summary;  // what it finds, in a few words
    void (*look)(const Subject& subject, Findings& findings);
};

// Takes what a rule finds.
class Findings {
public:
    void Begin(const Rule& rule) { rule_ = &rule; }
    void Add(Place place, FoundValue value, std::string text, std::string advice);
    [[nodiscard]] std::vector<Finding> Take() { return std::move(found_); }

private:
    const Rule* rule_ = nullptr;
    std::vector<Finding> found_;
};

// In the order in which findings are reported.
std::span<const Rule> Rules();
bool IsRule(std::string_view name);

// All findings, but for the rules named.
std::vector<Finding> Check(const Subject& subject, const std::set<std::string>& ignored = {});

}  // namespace review
