// Looks for the log beside a data file, for those who open it and those who only look at it.
#pragma once

#include <filesystem>
#include <memory>

#include "jet/file.h"
#include "page/log_replay.h"

namespace jet {

struct FoundLog {
    LogReplay::Finding finding = LogReplay::Finding::kNothing;
    std::unique_ptr<File> file;  // which the replay reads from
    std::unique_ptr<LogReplay> replay;
};

// `headerPage` is page 0 of the data file. Throws when there is a log that cannot be read.
FoundLog LookForLog(FileSystem& files, const std::filesystem::path& log, File& dataFile,
                    const Format& format, Bytes headerPage);

}  // namespace jet
