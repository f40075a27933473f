// fcdtool rollup: the figures of many data files in one place.
#include <charconv>
#include <optional>

#include "rollup/run.h"
#include "tools/fcdtool/command.h"
#include "tools/fcdtool/files.h"
#include "tools/fcdtool/output.h"
#include "tools/fcdtool/terminal.h"

namespace fcdtool {

namespace {

unsigned Jobs(const Arguments& arguments) {
    if (!arguments.Has("--jobs")) {
        return 0;
    }
    constexpr unsigned kMost = 256;
    const std::string text = arguments.Value("--jobs");
    unsigned jobs = 0;
    const auto end = std::from_chars(text.data(), text.data() + text.size(), jobs);
    if (end.ec != std::errc() || end.ptr != text.data() + text.size() || jobs < 1 || jobs > kMost) {
        throw UsageError("--jobs takes a number from 1 to 256.");
    }
    return jobs;
}

std::string Counted(std::size_t number, const char* what) {
    return number == 0 ? std::string() : ", " + std::to_string(number) + " " + what;
}

void SaySummary(const rollup::Summary& summary) {
    Say(std::to_string(summary.files) + (summary.files == 1 ? " file: " : " files: ") +
        std::to_string(summary.read) + " read (" + std::to_string(summary.rows) + " rows)" +
        Counted(summary.unchanged, "unchanged") +
        Counted(summary.duplicates, summary.duplicates == 1 ? "duplicate" : "duplicates") +
        Counted(summary.refused, "refused") + Counted(summary.pruned, "removed"));
}

int StatusOf(const rollup::Summary& summary) {
    if (summary.isStopped) {
        Report("fcdtool: Stopped. What was read is in the destination; the same command goes on.");
        return kFailed;
    }
    if (summary.files == 0 && summary.unsearchable > 0) {
        return kFailed;
    }
    return summary.refused + summary.unsearchable > 0 ? kSomething : kNothing;
}

int RunRollup(const Arguments& arguments) {
    if (arguments.Rest().empty()) {
        throw UsageError("This command takes data files and folders.");
    }
    const rollup::Options options{Jobs(arguments), arguments.Has("--prune")};
    const std::string target = arguments.Required("--to");
    std::vector<std::filesystem::path> where;
    for (const std::string& word : arguments.Rest()) {
        where.push_back(PathOf(word));
    }
    const EndRequests requests;
    const auto destination = rollup::OpenDestination(
        target, {[] { Report("Another run is writing to the destination; waiting for its end."); },
                 [] { return !EndRequests::Came(); }});
    std::optional<Progress> progress;
    rollup::Events events;
    events.begins = [&progress](std::size_t files) { progress.emplace(files, "files"); };
    events.fileDone = [&progress](std::size_t rows) { progress->Step(rows); };
    events.refused = [&progress](const std::string& path, const std::string& reason) {
        if (progress) {
            progress->Hide();
        }
        Report(path + ": " + reason);
    };
    events.isStopped = EndRequests::Came;
    const rollup::Summary summary = rollup::Run(where, *destination, options, events);
    progress.reset();
    SaySummary(summary);
    return StatusOf(summary);
}

}  // namespace

const Command& RollupCommand() {
    static const Command command{
        "rollup",
        "PATH... --to DEST [--jobs N] [--prune]",
        "Gathers the figures of many data files in one place.",
        "PATH is a data file or a folder, which is searched through for files named *.fcd. Run\n"
        "again, it reads only what is new or has changed; files that cannot be read are named and\n"
        "tried again the next time.\n\n"
        "  --to DEST         where the figures go:\n"
        "                    sqlite:FILE            a file of SQLite\n"
        "                    postgresql:CONNECTION  a database of PostgreSQL, as libpq names it\n"
        "                    csv:DIR                a folder of compressed CSV files by year\n"
        "  --jobs N          so many files are read at once; else as many as there are cores\n"
        "  --prune           also removes what came from files that are gone",
        {{"--to", true}, {"--jobs", true}, {"--prune"}},
        RunRollup};
    return command;
}

}  // namespace fcdtool
