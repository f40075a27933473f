// The figures of other files, for the rule that compares with them.
#pragma once

#include <memory>
#include <set>
#include <string>
#include <vector>

#include "review/check.h"
#include "rollup/amounts.h"
#include "tools/fcdtool/arguments.h"
#include "tools/fcdtool/files.h"

namespace fcdtool {

// What a roll-up holds besides one file, under whatever name and of whatever day.
class Others : public review::Population {
public:
    Others(const rollup::Amounts& amounts, const std::string& file)
        : amounts_(amounts), own_(amounts.ContentsOf(PathOf(file))) {}
    [[nodiscard]] std::vector<double> Logarithms(std::int32_t resource, int fil,
                                                 bool negative) const override {
        return amounts_.Logarithms(resource, fil, negative, own_);
    }

private:
    const rollup::Amounts& amounts_;
    std::set<std::string> own_;
};

// What the option --against names; nothing without it.
inline std::unique_ptr<rollup::Amounts> ReadAgainst(const Arguments& arguments) {
    return arguments.Has("--against")
               ? std::make_unique<rollup::Amounts>(arguments.Required("--against"))
               : nullptr;
}

}  // namespace fcdtool
