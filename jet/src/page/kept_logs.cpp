#include "page/kept_logs.h"

#include <string>

#include "jet/error.h"
#include "page/log_reader.h"

namespace jet {

namespace {

constexpr int kMostKept = 99;

std::filesystem::path NameOf(const std::filesystem::path& log, int number) {
    std::filesystem::path aside = log;
    aside += "-old";
    if (number > 1) aside += std::to_string(number);
    return aside;
}

}  // namespace

void SetAside(FileSystem& files, const std::filesystem::path& log) {
    for (int number = 1; number <= kMostKept; ++number) {
        const std::filesystem::path aside = NameOf(log, number);
        if (files.Exists(aside)) continue;
        files.Rename(log, aside);
        return;
    }
    for (int number = 1; number <= kMostKept; ++number) {
        const std::filesystem::path aside = NameOf(log, number);
        if (HoldsOperations(files, aside)) continue;
        files.Rename(log, aside);
        return;
    }
    throw Error(ErrorKind::kAlreadyExists,
                "Too many logs that do not belong to the file are kept beside it.");
}

bool HoldsOperations(FileSystem& files, const std::filesystem::path& log) {
    try {
        const auto file = files.OpenBeside(log, OpenMode::kReadOnly);
        LogReader reader(*file);
        if (reader.IsLater()) return true;
        // With a beginning that says nothing, the rest may be operations all the same.
        if (reader.IsUnknown()) return file->Size() > kLogHeaderSize;
        while (reader.Next()) {
            if (reader.Kind() == LogRecordKind::kCommit) return true;
        }
        return false;
    } catch (const Error& error) {
        // A folder, a pipe or a link is no log.
        return error.Kind() != ErrorKind::kNotADatabase && error.Kind() != ErrorKind::kFileNotFound;
    }
}

std::vector<std::filesystem::path> KeptLogs(FileSystem& files, const std::filesystem::path& log) {
    std::vector<std::filesystem::path> kept;
    // Some of them may have been removed; looking for all names would make each opening longer.
    constexpr int kLongestGap = 4;
    for (int number = 1, absent = 0; number <= kMostKept && absent < kLongestGap; ++number) {
        const std::filesystem::path aside = NameOf(log, number);
        absent = files.Exists(aside) ? 0 : absent + 1;
        if (absent == 0 && HoldsOperations(files, aside)) kept.push_back(aside);
    }
    return kept;
}

}  // namespace jet
