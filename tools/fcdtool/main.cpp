// fcdtool COMMAND ...: looks at data files, compares them, and makes reports and new files of them.
//
// Exit status: 0 done and nothing to say, 1 findings, differences or refused files, 2 it could not
// be done.
#include <algorithm>
#include <exception>
#include <string>
#include <vector>

#include "tools/fcdtool/command.h"
#include "tools/fcdtool/output.h"

namespace {

using fcdtool::Command;

const Command* Find(const std::string& name) {
    for (const Command* command : fcdtool::Commands()) {
        if (command->name == name) {
            return command;
        }
    }
    return nullptr;
}

void SayOverview() {
    fcdtool::Say("usage: fcdtool COMMAND ...\n");
    for (const Command* command : fcdtool::Commands()) {
        std::string name(command->name);
        name.resize(std::max<std::size_t>(name.size(), 9), ' ');
        fcdtool::Say("  " + name + std::string(command->summary));
    }
    fcdtool::Say(
        "\nfcdtool COMMAND --help tells more. Data files are only read; what is written are new\n"
        "files. Exit status: 0 done and nothing to say, 1 findings, differences or refused files,\n"
        "2 it could not be done.");
}

void SayHelp(const Command& command) {
    fcdtool::Say("usage: fcdtool " + std::string(command.name) + " " + std::string(command.usage) +
                 "\n\n" + std::string(command.summary) + "\n\n" + std::string(command.help));
}

bool AsksForHelp(const std::vector<std::string>& words) {
    const auto end = std::find(words.begin(), words.end(), "--");
    return std::find_if(words.begin(), end, [](const std::string& word) {
               return word == "--help" || word == "-h";
           }) != end;
}

int Run(const std::vector<std::string>& words) {
    if (words.empty()) {
        throw fcdtool::UsageError("A command is missing; fcdtool --help lists them.");
    }
    if (words[0] == "--version") {
        fcdtool::Say("fcdtool " TARN_VERSION);
        return fcdtool::kNothing;
    }
    if (words[0] == "--help" || words[0] == "-h" || words[0] == "help") {
        SayOverview();
        return fcdtool::kNothing;
    }
    const Command* const command = Find(words[0]);
    if (command == nullptr) {
        throw fcdtool::UsageError("There is no command " + words[0] +
                                  "; fcdtool --help lists them.");
    }
    const std::vector<std::string> rest(words.begin() + 1, words.end());
    if (AsksForHelp(rest)) {
        SayHelp(*command);
        return fcdtool::kNothing;
    }
    try {
        return command->run(fcdtool::Arguments(rest, command->options));
    } catch (const fcdtool::UsageError& error) {
        throw fcdtool::UsageError(std::string(error.what()) + "\nusage: fcdtool " +
                                  std::string(command->name) + " " + std::string(command->usage));
    }
}

}  // namespace

int main(int argc, char** argv) {
    try {
        const int status = Run(std::vector<std::string>(argv + std::min(argc, 1), argv + argc));
        fcdtool::FinishOutput();
        return status;
    } catch (const std::bad_alloc&) {
        fcdtool::Report("fcdtool: There is not enough memory.");
    } catch (const std::exception& error) {
        fcdtool::Report(std::string("fcdtool: ") + error.what());
    }
    return fcdtool::kFailed;
}
