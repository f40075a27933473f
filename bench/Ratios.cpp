#include "bench/Ratios.h"

#include <cmath>
#include <cstdio>
#include <sstream>

namespace bench {

void Ratios::ReportRuns(const std::vector<Run>& runs) {
    ConsoleReporter::ReportRuns(runs);
    for (const Run& run : runs) {
        // "question/peer/rows", and what the library appends.
        std::istringstream name(run.benchmark_name());
        std::string question;
        std::string peer;
        std::string rows;
        std::getline(name, question, '/');
        std::getline(name, peer, '/');
        std::getline(name, rows, '/');
        const auto speed = run.counters.find("items_per_second");
        if (run.error_occurred || rows.empty() || speed == run.counters.end()) continue;
        double& best = speeds_[question][std::stoul(rows)][peer];
        best = std::max(best, speed->second.value);
    }
}

void Ratios::Finalize() {
    std::printf("\n%-20s %8s %11s %12s %10s %12s %10s   %s\n", "question", "rows", "jet4 per s",
                "jet4/sqlite", "jet4/mdb", "jet3/sqlite", "jet3/mdb", "time of one row");
    for (const auto& [question, sizes] : speeds_) {
        double formerTime = 0;
        std::size_t formerRows = 0;
        for (const auto& [rows, peers] : sizes) {
            const auto speed = [&peers = peers](const char* peer) {
                const auto found = peers.find(peer);
                return found == peers.end() ? std::nan("") : found->second;
            };
            const double own = speed("jet4");
            const double older = speed("jet3");
            std::printf("%-20s %8zu %11.0f %12.2f %10.2f %12.2f %10.2f", question.c_str(), rows,
                        own, own / speed("sqlite"), own / speed("mdb"), older / speed("sqlite"),
                        older / speed("mdb"));
            const double time = 1 / own;
            if (formerRows > 0) {
                std::printf("   rows^%.2f", std::log(time / formerTime) /
                                                std::log(static_cast<double>(rows) /
                                                         static_cast<double>(formerRows)));
            }
            std::printf("\n");
            formerTime = time;
            formerRows = rows;
        }
    }
}

}  // namespace bench
