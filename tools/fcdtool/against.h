// The figures of other files, for the rule that compares with them.
#pragma once

#include <memory>
#include <string>

#include "review/check.h"
#include "rollup/amounts.h"
#include "tools/fcdtool/arguments.h"
#include "tools/fcdtool/files.h"

namespace fcdtool {

// What a roll-up holds besides one file, under whatever name and of whatever day.
class Others : public review::Population {
public:
    Others(rollup::Amounts& amounts, const std::string& file)
        : amounts_(amounts), own_(amounts.OwnOf(PathOf(file))) {}
    [[nodiscard]] review::Usual UsualOf(std::int32_t resource, int fil,
                                        bool negative) const override {
        const auto [count, median, distance] =
            amounts_.UsualWithout(*own_, resource, fil, negative);
        return {count, median, distance};
    }

private:
    rollup::Amounts& amounts_;
    std::unique_ptr<rollup::Amounts::Own> own_;
};

// What the option --against names; nothing without it.
inline std::unique_ptr<rollup::Amounts> ReadAgainst(const Arguments& arguments) {
    return arguments.Has("--against")
               ? std::make_unique<rollup::Amounts>(arguments.Required("--against"))
               : nullptr;
}

}  // namespace fcdtool
