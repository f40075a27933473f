// The commands of fcdtool.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "tools/fcdtool/arguments.h"

namespace fcdtool {

// What a run ends with.
inline constexpr int kNothing = 0;    // done, and nothing to say
inline constexpr int kSomething = 1;  // findings, differences or refused files
inline constexpr int kFailed = 2;     // it could not be done

struct Command {
    std::string_view name;
    std::string_view usage;    // behind the name
    std::string_view summary;  // one line
    std::string_view help;     // the rest of --help
    std::vector<Option> options;
    int (*run)(const Arguments& arguments);
};

const Command& CheckCommand();
const Command& DiffCommand();
const Command& ExportCommand();
const Command& NewYearCommand();
const Command& ReportCommand();
const Command& RollupCommand();

// In the order of the help.
std::vector<const Command*> Commands();

}  // namespace fcdtool
