// A file with planted faults, and what is found in it.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "review/check.h"
#include "season/data_file.h"
#include "support/made_season.h"
#include "support/temp_folder.h"

namespace tarn_test {

using Plant = std::function<void(season::Season&)>;

// Writes the sound season with the fault, and reads it again as anybody would.
inline season::Season PlantedFile(const std::filesystem::path& path, const Plant& plant) {
    season::Season made = SoundSeason(3, 2);
    plant(made);
    season::WriteNew(made, path);
    return season::Read(path);
}

inline void Append(std::string& words, const char* name, const std::optional<std::string>& part) {
    if (part) words += std::string(" ") + name + "=" + *part;
}
inline void Append(std::string& words, const char* name, const std::optional<std::int32_t>& part) {
    if (part) words += std::string(" ") + name + "=" + std::to_string(*part);
}

// "nvc-slip zone=Zone 1 location=2 resource=Value 3 fil=4"
inline std::string Summary(const review::Finding& finding) {
    std::string words(finding.rule);
    Append(words, "zone", finding.place.zone);
    Append(words, "location", finding.place.location);
    Append(words, "resource", finding.place.resource);
    Append(words, "fil", finding.place.fil);
    Append(words, "class", finding.place.sizeClass);
    Append(words, "goal", finding.place.goal);
    return words;
}

inline std::vector<std::string> Summaries(const std::vector<review::Finding>& findings) {
    std::vector<std::string> words;
    for (const review::Finding& finding : findings) {
        EXPECT_FALSE(finding.text.empty()) << finding.rule;
        EXPECT_FALSE(finding.advice.empty()) << finding.rule;
        words.push_back(Summary(finding));
    }
    return words;
}

}  // namespace tarn_test
