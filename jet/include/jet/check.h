// The integrity check of a whole file, and the repair into a new one.
//
// The check reads only. It looks at the header, the account of every page, the usage maps both
// ways, the table definitions, every row, the long-value chains, every index against the rows, row
// counts, auto-numbers and the catalog, and goes on after each finding as far as it can.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "jet/file.h"

namespace jet {

class Database;

enum class Severity {
    kError,    // contradictory or unreadable: would lead a reader or writer astray
    kWarning,  // left behind by other writers, and passed over
    kNote,     // worth knowing, never wrong in itself
};

struct Finding {
    Severity severity = Severity::kError;
    std::string code;        // stable name, for instance "index-missing"
    std::string table;       // empty when no table is concerned
    std::int64_t page = -1;  // -1 when no page is concerned
    int row = -1;            // slot on the page, likewise
    std::string sentence;    // for a person
};

struct CheckReport {
    std::vector<Finding> findings;
    // What was looked at.
    std::uint32_t pages = 0;
    std::uint32_t tables = 0;
    std::uint64_t rows = 0;
    std::uint32_t indexes = 0;
    std::uint64_t entries = 0;

    [[nodiscard]] bool IsSound() const;      // no finding of severity kError
    [[nodiscard]] std::string Text() const;  // a line for each finding, then one that counts
};

// Checks a file that nobody holds open. Throws only when the file cannot be read as a Jet file at
// all: kFileNotFound, kFileInUse, kPermissionDenied, kNotADatabase, kUnsupportedVersion,
// kEncrypted, kIo.
CheckReport CheckFile(const std::filesystem::path& path, FileSystem& files = HostFileSystem());
// Checks an open database, changes of this run included. kClosed, kIo.
CheckReport CheckDatabase(Database& database);

struct RepairReport {
    std::uint32_t tables = 0;
    std::uint64_t rowsKept = 0;
    std::vector<std::string> losses;  // one sentence each
};

// Writes everything of `source` that can be read into the new file `target`. Errors: those of
// CheckFile for the one, those of Database::Create for the other; no target is left then.
RepairReport RepairFile(const std::filesystem::path& source, const std::filesystem::path& target,
                        FileSystem& files = HostFileSystem());

}  // namespace jet
