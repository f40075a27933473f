// A data file as the virtual tables of one connection share it: opened once, read-only, beside
// other readers, and watched, because a file that changes during a query would give an answer that
// mixes two states.
#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <system_error>

#include "jet/database.h"

namespace jetsql {

class OpenedFile {
public:
    // Throws jet::Error as Database::Open does.
    explicit OpenedFile(const std::filesystem::path& path);

    [[nodiscard]] jet::Database& Data() { return *database_; }
    // False once the file has another size, time or content of its first page than when it was
    // opened, or is gone.
    [[nodiscard]] bool IsUnchanged() const;

private:
    struct Stamp {
        std::uintmax_t size = 0;
        std::filesystem::file_time_type written;
        std::string firstPage;
        bool operator==(const Stamp&) const = default;
    };
    [[nodiscard]] Stamp Look() const;

    std::filesystem::path path_;
    Stamp stamp_;
    std::unique_ptr<jet::Database> database_;
};

// The files that one connection has open, by path. A file that has changed is opened anew for the
// next query.
class OpenedFiles {
public:
    // `path` is UTF-8. Throws jet::Error.
    std::shared_ptr<OpenedFile> Open(const std::string& path);

private:
    std::map<std::filesystem::path, std::weak_ptr<OpenedFile>> files_;
};

}  // namespace jetsql
