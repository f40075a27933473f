// jetdoctor FILE [--repair NEW]
//
// Checks a database file and says what is wrong with it; with --repair, writes everything that can
// be read into the new file NEW. FILE is never changed.
//
// Exit status: 0 clean (or repaired without losses), 1 findings (or losses), 2 unreadable.
#include <cstdio>
#include <exception>
#include <string>

#include "jet/check.h"
#include "jet/error.h"
#include "jet/path.h"
#include "parts/help.h"

namespace {

constexpr int kClean = 0;
constexpr int kFindings = 1;
constexpr int kUnreadable = 2;

constexpr const char* kUsage =
    "usage: jetdoctor FILE [--repair NEW]\n"
    "Checks a database file. With --repair, writes all that can be read into the new file NEW.\n";

int Check(const std::string& path) {
    const jet::CheckReport report = jet::CheckFile(jet::PathOf(path));
    std::fputs(report.Text().c_str(), stdout);
    return report.IsSound() ? kClean : kFindings;
}

int Repair(const std::string& path, const std::string& target) {
    const jet::RepairReport report = jet::RepairFile(jet::PathOf(path), jet::PathOf(target));
    for (const std::string& loss : report.losses) {
        std::printf("%s\n", loss.c_str());
    }
    std::printf("%s: %u tables and %llu rows written, %zu remarks on losses\n", target.c_str(),
                report.tables, static_cast<unsigned long long>(report.rowsKept),
                report.losses.size());
    const bool sound = jet::CheckFile(jet::PathOf(target)).IsSound();
    if (!sound) {
        std::printf("%s is not sound\n", target.c_str());
    }
    return sound && report.losses.empty() ? kClean : kFindings;
}

}  // namespace

int main(int argc, char** argv) {
    if (AsksForHelp(argc, argv)) {
        std::fputs(kUsage, stdout);
        return kClean;
    }
    if (argc != 2 && (argc != 4 || std::string(argv[2]) != "--repair")) {
        std::fputs(kUsage, stderr);
        return kUnreadable;
    }
    try {
        return argc == 4 ? Repair(argv[1], argv[3]) : Check(argv[1]);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s: %s\n", argv[1], error.what());
        return kUnreadable;
    }
}
