// How a database is opened: sharing, memory, when the log is checkpointed into the file, and a
// logger.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string_view>

namespace jet {

enum class LogLevel {
    kInfo,     // something was done that costs time: a recovery
    kWarning,  // something was found that a person should know: a log that belongs to another file
    kError,    // a checkpoint or the closing of the file failed
};

// Called on the thread that uses the database, with one sentence in UTF-8. It must not use the
// database; what it throws is dropped.
using Logger = std::function<void(LogLevel level, std::string_view sentence)>;

struct OpenOptions {
    // Nobody else can open the file. Openings for reading with `exclusive = false` share it.
    bool exclusive = true;
    // Never writes. What a log holds that waits to be recovered is shown from memory.
    bool readOnly = false;

    // Memory for pages that are as in the file; those that were changed are kept besides.
    std::size_t cacheBytes = std::size_t{24} << 20;
    // When this much has been changed in memory, or has been logged, since the last MakeDurable,
    // the next change begins with one. What a single change touches is not bounded by them. A
    // transaction keeps as much in memory; what it changes beyond that waits in the log, as do new
    // pages that it has left.
    std::size_t changedBytes = std::size_t{64} << 20;
    std::uint64_t logBytes = std::uint64_t{256} << 20;

    Logger logger = {};
};

}  // namespace jet
