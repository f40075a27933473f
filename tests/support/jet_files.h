// Files of the engine in tests: the corpus, and the judges of what a test has made.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "jet/check.h"
#include "support/command.h"
#include "support/paths.h"
#include "support/reasons.h"

namespace tarn_test {

inline std::filesystem::path SharedFolder() {
    return support::SourceFolder() / ".." / "shared";
}

// All database files of other origin, those that no engine made included; empty without a corpus.
inline std::vector<std::filesystem::path> CorpusFiles() {
    std::vector<std::filesystem::path> files;
    for (const auto& folder : {SharedFolder() / "corpus", SharedFolder() / "corpus" / "made"}) {
        if (!std::filesystem::exists(folder)) continue;
        for (const auto& entry : std::filesystem::directory_iterator(folder)) {
            const std::string extension = entry.path().extension().string();
            if (extension == ".mdb" || extension == ".fcd" || extension == ".dat") {
                files.push_back(entry.path());
            }
        }
    }
    std::sort(files.begin(), files.end());
    return files;
}

// A command line that begins with the independent judge of files; empty where it is not beside the
// source tree or cannot run.
inline std::string Judge() {
    const std::filesystem::path judge = SharedFolder() / "tools" / "jetcheck.py";
    static const bool runs =
        std::filesystem::exists(judge) && RunCommand("python3 --version").status == 0;
    return runs ? "python3 " + Quoted(judge) : std::string();
}

// Expects a closed file to be sound: by the engine's own check and, where there is one, by an
// independent judge. `before` is the file that it was made from, if any: what was wrong with that
// does not count.
inline void ExpectSound(const std::filesystem::path& file,
                        const std::filesystem::path& before = {}) {
    if (before.empty()) {
        const jet::CheckReport report = jet::CheckFile(file);
        EXPECT_TRUE(report.IsSound()) << report.Text();
    }
    if (Judge().empty()) return;
    std::string line = Judge() + " check --strict -q ";
    if (!before.empty()) line += "--baseline " + Quoted(before) + " ";
    const CommandResult judged = RunCommand(line + Quoted(file));
    EXPECT_EQ(judged.status, 0) << file << ":\n" << judged.output.substr(0, 4000);
}

}  // namespace tarn_test
