// fcdtool newyear: the next year's file, begun from this year's.
#include <stdexcept>

#include "review/next_year.h"
#include "season/data_file.h"
#include "tools/fcdtool/command.h"
#include "tools/fcdtool/files.h"
#include "tools/fcdtool/output.h"

namespace fcdtool {

namespace {

int TwoDigitYear(const std::string& text) {
    const bool isYear =
        text.size() == 2 && text[0] >= '0' && text[0] <= '9' && text[1] >= '0' && text[1] <= '9';
    if (!isYear) {
        throw UsageError("--year takes the last two digits of the year, such as 26.");
    }
    return (text[0] - '0') * 10 + (text[1] - '0');
}

int RunNewYear(const Arguments& arguments) {
    const std::string file = arguments.Exactly(1, "one data file").front();
    const int year = TwoDigitYear(arguments.Required("--year"));
    const std::string target = arguments.Required("--to");
    const season::Season older = ReadFile(file);
    try {
        season::WriteNew(review::NextYear(older, year, arguments.Values("--drop-zone")),
                         PathOf(target));
    } catch (const review::UnknownZone& unknown) {
        throw std::runtime_error(file + ": " + unknown.what());
    } catch (const season::Refused& refused) {
        throw std::runtime_error(target + ": " + refused.what());
    }
    return kNothing;
}

}  // namespace

const Command& NewYearCommand() {
    static const Command command{
        "newyear",
        "OLD --year YY --to NEW.fcd [--drop-zone NAME]...",
        "Begins the next year's data file from an old one.",
        "The new file holds everything of the old one, with the year in the unit's name replaced,\n"
        "without rows of dropped locations, and in the current format. It must not exist; it is\n"
        "complete or it is not there.\n\n"
        "  --year YY         the last two digits of the year\n"
        "  --to NEW.fcd      the new file\n"
        "  --drop-zone NAME  leaves out all zones of this name; can be given several times",
        {{"--year", true}, {"--to", true}, {"--drop-zone", true, true}},
        RunNewYear};
    return command;
}

}  // namespace fcdtool
