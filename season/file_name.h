// What the name of a data file and a unit's name say: unit, state, year.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace season {

// A name of the form UMFOR25: a unit of three characters, a state of two letters, two digits.
struct FileName {
    std::string unit;
    std::string state;
    int year = 0;  // the two digits, 0 to 99
};

// The file's name without its folder, as UTF-8.
std::string TitleOf(const std::filesystem::path& path);
// Nothing when the name has another form.
std::optional<FileName> ParseFileName(const std::filesystem::path& path);

// The two digits behind the last apostrophe of a unit's name: 25 in "Umatilla National Forest '25".
std::optional<int> YearOfUnitName(std::string_view unitName);
// The name with this year in that place; where it has none, the year is put behind the name. A
// blank name stays as it is.
std::string WithYear(std::string_view unitName, int year);

// 70 and above are of the last century.
int FullYear(int twoDigits);
// "05"
std::string TwoDigits(int year);

}  // namespace season
