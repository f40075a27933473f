// fcdtool report: a data file as a page to read, print and hand in.
#include <chrono>
#include <cstdlib>
#include <optional>
#include <stdexcept>
#include <string>

#include "reportpdf/library.h"
#include "review/check.h"
#include "review/html.h"
#include "review/report.h"
#include "season/text.h"
#include "tools/fcdtool/against.h"
#include "tools/fcdtool/command.h"
#include "tools/fcdtool/files.h"
#include "tools/fcdtool/late_library.h"
#include "tools/fcdtool/output.h"
#include "tools/fcdtool/terminal.h"

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

// "A4" or "Letter"; where it is not asked for, Letter in the countries that print on it.
bool IsLetter(const Arguments& arguments) {
    const std::string paper = season::Folded(arguments.Value("--paper"));
    if (!arguments.Has("--paper")) {
        return UsesLetter();
    }
    if (paper != "a4" && paper != "letter") {
        throw UsageError("--paper takes A4 or Letter.");
    }
    return paper == "letter";
}

std::string PdfOf(const review::Document& report, bool isLetter) {
    const auto make =
        reinterpret_cast<reportpdf::MakePdf>(LateSymbol(reportpdf::kLibrary, reportpdf::kMakePdf));
    std::string result;
    if (!make(report, isLetter, result)) {
        throw std::runtime_error(result);
    }
    return result;
}

int RunReport(const Arguments& arguments) {
    const std::string file = arguments.Exactly(1, "one data file").front();
    const std::string target = arguments.Required("--to");
    const std::string folded = season::Folded(target);
    const bool toPdf = folded.ends_with(".pdf");
    if (!toPdf && !folded.ends_with(".html") && !folded.ends_with(".htm")) {
        throw UsageError("--to takes a name that ends in .pdf or .html.");
    }
    const bool isLetter = IsLetter(arguments);
    const season::Season season = ReadFile(file);
    std::vector<std::string> sources{file};
    std::optional<season::Season> previous;
    if (arguments.Has("--previous")) {
        sources.push_back(arguments.Required("--previous"));
        previous = ReadFile(sources.back());
    }
    const season::Season* const older = previous ? &*previous : nullptr;
    const auto elsewhere = ReadAgainst(arguments);
    const auto others = elsewhere ? std::make_unique<Others>(*elsewhere, file) : nullptr;
    const review::Document report =
        review::ReportOf({.season = season,
                          .previous = older,
                          .findings = review::Check({season, older, others.get()}),
                          .date = Today()});
    SaveFile(target, sources, toPdf ? PdfOf(report, isLetter) : review::HtmlOf(report));
    return kNothing;
}

}  // namespace

const Command& ReportCommand() {
    static const Command command{
        "report",
        "FILE --to OUT.pdf|OUT.html [--previous OLD] [--against ROLLUP] [--paper A4|Letter]",
        "Writes a report to read, print and hand in.",
        "Goals, resources, and a page for each zone with its tables and charts, and the findings\n"
        "of check. One file that needs nothing else; a file that is there is replaced.\n\n"
        "  --to OUT.pdf      the report as PDF, with bookmarks\n"
        "  --to OUT.html     the report as a page for browsers\n"
        "  --previous OLD    adds the differences from last year's file\n"
        "  --against ROLLUP  adds values that are far from those of other files; ROLLUP is what\n"
        "                    rollup --to takes\n"
        "  --paper A4|Letter the paper of the PDF; the one that is usual in your country",
        {{"--to", true}, {"--previous", true}, {"--against", true}, {"--paper", true}},
        RunReport};
    return command;
}

}  // namespace fcdtool
