// fcdtool report: a data file as a page to read, print and hand in.
#include <chrono>
#include <cstdlib>
#include <optional>
#include <string>

#include "review/check.h"
#include "review/html.h"
#include "review/report.h"
#include "season/text.h"
#include "tools/fcdtool/command.h"
#include "tools/fcdtool/files.h"
#include "tools/fcdtool/output.h"

namespace fcdtool {

namespace {

// "2026-04-15"; builds that must come out the same each time set the clock.
std::string Today() {
    using std::chrono::system_clock;
    system_clock::time_point now = system_clock::now();
    if (const char* const fixed = std::getenv("SOURCE_DATE_EPOCH")) {
        now = system_clock::time_point(std::chrono::seconds(std::atoll(fixed)));
    }
    const std::chrono::year_month_day day(std::chrono::floor<std::chrono::days>(now));
    const auto two = [](unsigned number) {
        return (number < 10 ? "0" : "") + std::to_string(number);
    };
    return std::to_string(static_cast<int>(day.year())) + "-" +
           two(static_cast<unsigned>(day.month())) + "-" + two(static_cast<unsigned>(day.day()));
}

int RunReport(const Arguments& arguments) {
    const std::string file = arguments.Exactly(1, "one data file").front();
    const std::string target = arguments.Required("--to");
    const std::string folded = season::Folded(target);
    if (!folded.ends_with(".html") && !folded.ends_with(".htm")) {
        throw UsageError("--to takes a name that ends in .html.");
    }
    const season::Season season = ReadFile(file);
    std::vector<std::string> sources{file};
    std::optional<season::Season> previous;
    if (arguments.Has("--previous")) {
        sources.push_back(arguments.Required("--previous"));
        previous = ReadFile(sources.back());
    }
    const season::Season* const older = previous ? &*previous : nullptr;
    const review::Document report =
        review::ReportOf({.season = season,
                          .previous = older,
                          .findings = review::Check({season, older, nullptr}),
                          .date = Today()});
    SaveFile(target, sources, review::HtmlOf(report));
    return kNothing;
}

}  // namespace

const Command& ReportCommand() {
    static const Command command{
        "report",
        "FILE --to OUT.html [--previous OLD]",
        "Writes a report to read, print and hand in.",
        "Goals, resources, and a page for each zone with its tables and charts, and the findings\n"
        "of check. One file that needs nothing else; a file that is there is replaced.\n\n"
        "  --to OUT.html     the report\n"
        "  --previous OLD    adds the differences from last year's file",
        {{"--to", true}, {"--previous", true}},
        RunReport};
    return command;
}

}  // namespace fcdtool
