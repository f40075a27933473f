#include "page/found_log.h"

#include <string>

#include "jet/error.h"

namespace jet {

FoundLog LookForLog(FileSystem& files, const std::filesystem::path& log, File& dataFile,
                    const Format& format, Bytes headerPage) {
    FoundLog found;
    if (!files.Exists(log)) return found;
    try {
        found.file = files.OpenBeside(log, OpenMode::kReadOnly);
    } catch (const Error& error) {
        // A folder, a pipe or a link holds no changes.
        if (error.Kind() != ErrorKind::kNotADatabase && error.Kind() != ErrorKind::kFileNotFound) {
            throw Error(error.Kind(), std::string("The last changes of the file are in a log ") +
                                          "beside it, which cannot be read. " + error.what());
        }
        found.finding = LogReplay::Finding::kForeign;
        return found;
    }
    found.replay = std::make_unique<LogReplay>(dataFile, format, headerPage);
    found.finding = found.replay->Read(*found.file);
    return found;
}

}  // namespace jet
