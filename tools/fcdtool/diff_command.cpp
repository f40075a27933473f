// fcdtool diff: what differs between two data files.
#include <charconv>
#include <cmath>

#include "review/difference.h"
#include "review/difference_page.h"
#include "review/html.h"
#include "review/json.h"
#include "tools/fcdtool/command.h"
#include "tools/fcdtool/files.h"
#include "tools/fcdtool/output.h"

namespace fcdtool {

namespace {

double Tolerance(const Arguments& arguments) {
    if (!arguments.Has("--tolerance")) {
        return review::kUsualTolerance;
    }
    const std::string text = arguments.Value("--tolerance");
    double value = 0;
    const auto end = std::from_chars(text.data(), text.data() + text.size(), value);
    if (end.ec != std::errc() || end.ptr != text.data() + text.size() || !std::isfinite(value) ||
        value < 0) {
        throw UsageError("--tolerance takes a number of 0 or more, such as 1e-6.");
    }
    return value;
}

void SaySummary(const std::vector<review::Difference>& differences, bool asJson) {
    for (const review::DifferenceCount& count : review::CountDifferences(differences)) {
        const std::string_view kind = review::ChangeName(count.kind);
        const std::string number = std::to_string(count.number);
        if (asJson) {
            Say(review::JsonObject()
                    .Add("kind", kind)
                    .Add("what", count.what)
                    .AddRaw("number", number)
                    .Text());
            continue;
        }
        std::string line(kind);
        line.append("\t").append(count.what).append("\t").append(number);
        Say(line);
    }
}

int RunDiff(const Arguments& arguments) {
    const auto& files = arguments.Exactly(2, "two data files, the older one first");
    const double tolerance = Tolerance(arguments);
    const season::Season older = ReadFile(files[0]);
    const season::Season newer = ReadFile(files[1]);
    const auto differences = review::Compare(older, newer, tolerance);
    const bool asJson = arguments.Has("--json");
    if (arguments.Has("--html")) {
        SaveFile(arguments.Required("--html"), files,
                 review::HtmlOf(review::DifferencePage(older, newer, tolerance)));
    }
    if (arguments.Has("--summary")) {
        SaySummary(differences, asJson);
    } else {
        for (const review::Difference& difference : differences) {
            Say(asJson ? review::JsonOf(difference) : review::LineOf(difference));
        }
    }
    return differences.empty() ? kNothing : kSomething;
}

}  // namespace

const Command& DiffCommand() {
    static const Command command{
        "diff",
        "OLD NEW [--json] [--summary] [--tolerance REL] [--html OUT]",
        "Lists what differs between two data files.",
        "One line for each difference, in columns between tabs: changed, added, removed or\n"
        "renamed; what; the place; the old and the new contents. Records are paired by their\n"
        "names; keys and the order of records are no difference.\n\n"
        "  --json            one JSON object a line\n"
        "  --summary         only the number of differences of each kind\n"
        "  --tolerance REL   how much figures may differ, as a part of the larger one: 1e-6\n"
        "  --html OUT        all tables side by side in one HTML file, changed cells marked",
        {{"--json"}, {"--summary"}, {"--tolerance", true}, {"--html", true}},
        RunDiff};
    return command;
}

}  // namespace fcdtool
