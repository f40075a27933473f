// Files of the engine in tests: the corpus, and the judges of what a test has made.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "jet/check.h"

namespace tarn_test {

inline std::filesystem::path SharedFolder() {
    return std::filesystem::path(TARN_SOURCE) / ".." / "shared";
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

// Expects a closed file to be sound: by the engine's own check and, where it lies beside the source
// tree, by an independent one. `before` is the file that it was made from, if any: what was wrong
// with that does not count.
inline void ExpectSound(const std::filesystem::path& file,
                        const std::filesystem::path& before = {}) {
    if (before.empty()) {
        const jet::CheckReport report = jet::CheckFile(file);
        EXPECT_TRUE(report.IsSound()) << report.Text();
    }
    const std::filesystem::path judge = SharedFolder() / "tools" / "jetcheck.py";
    if (!std::filesystem::exists(judge)) return;
    std::string command = "python3 '" + judge.string() + "' check --strict -q ";
    if (!before.empty()) command += "--baseline '" + before.string() + "' ";
    const std::string report = file.string() + ".findings";
    command += "'" + file.string() + "' > '" + report + "'";
    EXPECT_EQ(std::system(command.c_str()), 0)
        << file << ": see " << report << "\n"
        << [&] {
               std::string text;
               if (std::FILE* from = std::fopen(report.c_str(), "r")) {
                   char line[512];
                   for (int i = 0; i < 20 && std::fgets(line, sizeof line, from); ++i) text += line;
                   std::fclose(from);
               }
               return text;
           }();
}

}  // namespace tarn_test
