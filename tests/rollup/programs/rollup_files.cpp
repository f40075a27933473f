// Makes a nation's data files: units of several years, both versions of the engine's files, all
// formats, some with waiting mistakes.
//
// Usage: rollup_files FOLDER COUNT [--small]
//
// Of every hundred files two are refused and two are copies of others; the rest has nulls, dropped
// locations and rows of zones that are not there in places. Each file of usual size has about 5,600
// rows of values, a small one a hundredth of that.
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "jet/database.h"
#include "jet/recordset.h"
#include "season/data_file.h"
#include "season/file_name.h"
#include "support/made_season.h"

namespace {

namespace fs = std::filesystem;

constexpr int kYears = 10;
constexpr int kFirstYear = 17;
constexpr int kPatterns = 8;

season::Season PatternSeason(int pattern, bool isSmall) {
    season::Season made = isSmall ? tarn_test::SoundSeason(2, 2) : tarn_test::SoundSeason(40, 10);
    for (season::Zone& zone : made.zones) {
        for (season::Location& location : zone.locations) {
            for (season::NvcRow& row : location.rows) {
                for (season::Single& value : row.values) {
                    *value *= 1.0F + 0.1F * static_cast<float>(pattern);
                }
            }
        }
    }
    constexpr const char* kFormats[] = {"4.01.01", "4.01.01", "4.00.00", "3.92.00"};
    made.properties[0].value = kFormats[pattern % 4];
    made.zones[1].rlCount = 1;
    made.zones[1].locations[0].rows[3].values[2] = std::nullopt;
    made.zones[0].name = pattern % 2 == 0 ? "Front; \"the\" valley, s\xC3\xBC"
                                            "d"
                                          : " Ridge\t";
    made.strayNvc.push_back({9901, {1, {1.5F}}});
    return made;
}

// "A07OR19.fcd"
std::string NameOf(int number) {
    constexpr const char* kStates[] = {"OR", "WA", "ID", "MT", "CA"};
    const int unit = number / kYears;
    std::string name(1, static_cast<char>('A' + unit / 100 % 26));
    name += season::TwoDigits(unit % 100) + kStates[unit % 5] +
            season::TwoDigits(kFirstYear + number % kYears);
    return name + (unit >= 2600 ? " " + std::to_string(unit) : "") +
           (number % 3 == 0 ? ".FCD" : ".fcd");
}

// One value tells a file from its pattern.
void MakeUnique(const fs::path& file, int number) {
    const auto database = jet::Database::Open(file);
    const auto values = database->OpenTable("NVCPerAcre");
    values->Edit();
    values->Set("FIL1", static_cast<float>(-number) - 0.1F);
    values->Update();
    database->Close();
}

void MakeFiles(const fs::path& folder, int count, bool isSmall) {
    const fs::path patterns = folder / ".patterns";
    fs::create_directories(patterns);
    std::vector<fs::path> pattern;
    for (int i = 0; i < kPatterns; ++i) {
        pattern.push_back(patterns / std::to_string(i));
        season::WriteNew(PatternSeason(i, isSmall), pattern.back(),
                         i % 2 == 0 ? jet::Version::kJet4 : jet::Version::kJet3);
    }
    for (int number = 0; number < count; ++number) {
        const fs::path region = folder / ("Region " + std::to_string(number / kYears % 9 + 1));
        fs::create_directories(region);
        const fs::path file = region / NameOf(number);
        const int place = number % 100;
        fs::copy_file(pattern[static_cast<std::size_t>(number % kPatterns)], file);
        // The first of two in a hundred is cut off, the copies keep what their patterns hold.
        if (place == 13 || place == 55) {
            fs::resize_file(file, fs::file_size(file) / 2);
        } else if (place != 21 && place != 29) {
            MakeUnique(file, number);
        }
    }
    fs::remove_all(patterns);
}

}  // namespace

int main(int argc, char** argv) {
    const bool isSmall = argc == 4 && std::string_view(argv[3]) == "--small";
    if (argc != 3 && !isSmall) {
        std::fputs("usage: rollup_files FOLDER COUNT [--small]\n", stderr);
        return 2;
    }
    try {
        MakeFiles(argv[1], std::atoi(argv[2]), isSmall);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "rollup_files: %s\n", error.what());
        return 2;
    }
    return 0;
}
