// fcdtool check: what seems wrong in data files.
#include <optional>
#include <set>

#include "review/check.h"
#include "review/rules.h"
#include "season/data_file.h"
#include "tools/fcdtool/against.h"
#include "tools/fcdtool/command.h"
#include "tools/fcdtool/files.h"
#include "tools/fcdtool/output.h"

namespace fcdtool {

namespace {

std::set<std::string> IgnoredRules(const std::string& list) {
    std::set<std::string> ignored;
    for (std::size_t begin = 0; begin < list.size();) {
        const std::size_t comma = std::min(list.find(',', begin), list.size());
        const std::string name = list.substr(begin, comma - begin);
        if (!review::IsRule(name)) {
            throw UsageError("There is no rule " + name + ".");
        }
        ignored.insert(name);
        begin = comma + 1;
    }
    return ignored;
}

// Says what was found; whether there was anything.
bool SayFindings(const std::string& file, const std::vector<review::Finding>& findings,
                 bool asJson) {
    for (const review::Finding& finding : findings) {
        Say(asJson ? review::JsonOf(finding, file) : file + ": " + review::LineOf(finding));
    }
    return !findings.empty();
}

std::string Help() {
    std::string help =
        "One line for each finding: FILE: severity: RULE: sentence. A file that cannot be read is\n"
        "named with the reason, and the others go on.\n\n"
        "  --json            one JSON object a line\n"
        "  --previous OLD    also names zones whose figures are those of last year's file\n"
        "  --against ROLLUP  also names values that are far from those of other files; ROLLUP is\n"
        "                    what rollup --to takes\n"
        "  --ignore RULE,... leaves these rules out\n\n"
        "Rules:\n";
    constexpr std::size_t kWidth = 24;
    for (const review::Rule& rule : review::Rules()) {
        std::string name(rule.name);
        name.resize(kWidth, ' ');
        help += "  " + name + std::string(rule.summary) + "\n";
    }
    help.pop_back();
    return help;
}

int RunCheck(const Arguments& arguments) {
    if (arguments.Rest().empty()) {
        throw UsageError("This command takes one data file or several.");
    }
    const std::set<std::string> ignored = IgnoredRules(arguments.Value("--ignore"));
    std::optional<season::Season> previous;
    if (arguments.Has("--previous")) {
        previous = ReadFile(arguments.Required("--previous"));
    }
    const auto elsewhere = ReadAgainst(arguments);
    bool anything = false;
    std::size_t read = 0;
    Progress progress(arguments.Rest().size(), "files");
    for (const std::string& file : arguments.Rest()) {
        try {
            const season::Season season = season::Read(PathOf(file));
            const auto others = elsewhere ? std::make_unique<Others>(*elsewhere, file) : nullptr;
            const review::Subject subject{season, previous ? &*previous : nullptr, others.get()};
            anything |= SayFindings(file, review::Check(subject, ignored), arguments.Has("--json"));
            progress.Step(season::CountRows(season));
            ++read;
        } catch (const season::Refused& refused) {
            Report(file + ": " + refused.what());
            anything = true;
        }
    }
    if (read == 0) {
        return kFailed;
    }
    return anything ? kSomething : kNothing;
}

}  // namespace

const Command& CheckCommand() {
    static const std::string help = Help();
    static const Command command{
        "check",
        "FILE... [--json] [--previous OLD] [--against ROLLUP] [--ignore RULE,...]",
        "Finds what seems wrong or missing in data files.",
        help,
        {{"--json"}, {"--previous", true}, {"--against", true}, {"--ignore", true}},
        RunCheck};
    return command;
}

}  // namespace fcdtool
