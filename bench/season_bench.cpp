// How long does it take to read a data file of 300 zones with 9 locations each as plain values?
//
//   season_bench [ZONES LOCATIONS]
//
// The floor in the same run is a walk over the largest table that reads its eight numbers. Medians;
// the check of the whole file's structure is a part of reading and is shown for itself as well.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <vector>

#include "bench/Folder.h"
#include "jet/check.h"
#include "jet/database.h"
#include "jet/recordset.h"
#include "season/data_file.h"
#include "support/made_season.h"

namespace {

constexpr int kTimes = 21;

double MedianMilliseconds(const std::function<void()>& work) {
    std::vector<double> times;
    for (int i = 0; i < kTimes; ++i) {
        const auto start = std::chrono::steady_clock::now();
        work();
        times.push_back(
            std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start)
                .count());
    }
    std::nth_element(times.begin(), times.begin() + kTimes / 2, times.end());
    return times[kTimes / 2];
}

std::unique_ptr<jet::Database> Open(const std::filesystem::path& path) {
    return jet::Database::Open(path, {.exclusive = false, .readOnly = true});
}

void Walk(const std::filesystem::path& path) {
    const auto database = Open(path);
    const auto rows = database->OpenTable("NVCPerAcre");
    for (; !rows->IsEof(); rows->MoveNext()) {
        std::int32_t key = 0;
        rows->ReadLong({0}, key);
        rows->ReadLong({1}, key);
        for (int field = 2; field < 8; ++field) {
            float value = 0;
            rows->ReadSingle({field}, value);
        }
    }
}

void Measure(const char* name, jet::Version version, int zones, int locations) {
    const bench::Folder folder;
    season::WriteNew(tarn_test::SoundSeason(zones, locations), folder.File(), version);
    const double walk = MedianMilliseconds([&] { Walk(folder.File()); });
    const double check = MedianMilliseconds([&] { jet::CheckDatabase(*Open(folder.File())); });
    const double read = MedianMilliseconds([&] { season::Read(folder.File()); });
    std::printf(
        "%s: %d zones x %d locations: walk %.1f ms, check of the structure %.1f ms, "
        "read %.1f ms (%.1f of a walk)\n",
        name, zones, locations, walk, check, read, read / walk);
}

}  // namespace

int main(int argc, char** argv) {
    const int zones = argc == 3 ? std::atoi(argv[1]) : 300;
    const int locations = argc == 3 ? std::atoi(argv[2]) : 9;
    Measure("Jet 4", jet::Version::kJet4, zones, locations);
    Measure("Jet 3", jet::Version::kJet3, zones, locations);
}
