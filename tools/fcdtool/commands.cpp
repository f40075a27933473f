#include "tools/fcdtool/command.h"

namespace fcdtool {

std::vector<const Command*> Commands() {
    return {&CheckCommand(),  &DiffCommand(),    &ReportCommand(),
            &ExportCommand(), &NewYearCommand(), &RollupCommand()};
}

}  // namespace fcdtool
