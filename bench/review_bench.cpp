// How long do the commands of fcdtool take, from start to exit?
//
//   review_bench [ZONES LOCATIONS]     default: 300 zones with 9 locations each
//
// The floor in the same run is the command that only says its version. Medians; what is aimed at
// stands beside them.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <string>
#include <vector>

#include "bench/Folder.h"
#include "season/data_file.h"
#include "support/made_season.h"

namespace {

constexpr int kTimes = 15;

std::string Quoted(const std::filesystem::path& path) {
    return "'" + path.string() + "'";
}

double MedianMilliseconds(const std::string& words) {
    const std::string line =
        "exec '" TARN_BUILD "/bin/fcdtool' " + words + " > /dev/null 2> /dev/null";
    std::vector<double> times;
    for (int i = 0; i < kTimes; ++i) {
        const auto start = std::chrono::steady_clock::now();
        const int status = std::system(line.c_str());
        const std::chrono::duration<double, std::milli> spent =
            std::chrono::steady_clock::now() - start;
        times.push_back(spent.count());
        // 1 says that there are findings or differences.
        if (status != 0 && status != 256) throw std::runtime_error("fcdtool " + words);
    }
    std::nth_element(times.begin(), times.begin() + kTimes / 2, times.end());
    return times[kTimes / 2];
}

void Measure(const char* name, const std::string& words, int aim) {
    std::printf("%-24s %7.1f ms", name, MedianMilliseconds(words));
    std::printf(aim > 0 ? "   aim: %d ms\n" : "\n", aim);
    std::fflush(stdout);
}

}  // namespace

int main(int argc, char** argv) {
    const int zones = argc == 3 ? std::atoi(argv[1]) : 300;
    const int locations = argc == 3 ? std::atoi(argv[2]) : 9;
    const bench::Folder folder;
    const auto older = folder.Path() / "UMFOR25.fcd";
    const auto newer = folder.Path() / "UMFOR26.fcd";
    season::Season season = tarn_test::SoundSeason(zones, locations);
    season::WriteNew(season, older);
    for (season::Zone& zone : season.zones) {
        for (season::Location& location : zone.locations) {
            location.rows[0].values[0] = 1.0F;
        }
    }
    season::WriteNew(season, newer);
    const std::string one = Quoted(newer);
    const std::string two = Quoted(older) + " " + one;
    const auto to = [&folder](const char* name) { return " --to " + Quoted(folder.Path() / name); };
    std::printf("%d zones x %d locations\n", zones, locations);
    Measure("the program alone", "--version", 0);
    Measure("check", "check " + one, 150);
    Measure("check --previous", "check " + one + " --previous " + Quoted(older), 0);
    Measure("diff", "diff " + two, 300);
    Measure("diff --html", "diff " + two + " --html " + Quoted(folder.Path() / "d.html"), 0);
    Measure("report, HTML", "report " + one + to("r.html"), 1000);
    Measure("report, PDF", "report " + one + to("r.pdf"), 3000);
    Measure("export, JSON", "export " + one + to("e.json"), 0);
    Measure("export, XLSX", "export " + one + to("e.xlsx"), 0);
}
