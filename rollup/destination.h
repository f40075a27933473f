// Where the figures go: one face for every engine.
//
// A destination is written by one thread, file by file, each file in a transaction of its own:
// Begin, any changes, Commit. Rows belong to contents, of which `file_id` is the name; rows of
// `files` belong to paths. Only Pack may be called by several threads, beside all else.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "rollup/tables.h"

namespace rollup {

// The destination as a whole cannot be used; the sentence says why.
class DestinationError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// The destination takes everything but this one file; the sentence says why.
class FileNotTaken : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// Says, once, that another run is writing to the destination; then asks again and again whether to
// go on waiting for its end.
struct Waiting {
    std::function<void()> begun;
    std::function<bool()> goesOn;
};

// A data file as a destination takes it.
class Packed {
public:
    Packed() = default;
    Packed(const Packed&) = delete;
    Packed& operator=(const Packed&) = delete;
    virtual ~Packed() = default;
};

class Destination {
public:
    Destination() = default;
    Destination(const Destination&) = delete;
    Destination& operator=(const Destination&) = delete;
    virtual ~Destination() = default;  // an open transaction is rolled back

    // The row of a path; the rows of all paths with these contents, in the order of the paths; all
    // paths.
    [[nodiscard]] virtual std::optional<FileRow> Find(const std::string& path) = 0;
    [[nodiscard]] virtual std::vector<FileRow> WithContents(const std::string& sha256) = 0;
    virtual void EachPath(const std::function<void(const std::string&)>& take) = 0;

    // Takes from the season what will be added.
    [[nodiscard]] virtual std::unique_ptr<Packed> Pack(season::Season season,
                                                       const FileRow& file) const = 0;

    // Each throws DestinationError, and FileNotTaken where only this file is concerned; everything
    // since Begin has to be rolled back then.
    virtual void Begin() = 0;
    virtual void Put(const FileRow& file) = 0;  // replaces the row of its path
    virtual void Remove(const FileRow& file) = 0;
    virtual void AddContents(const FileRow& file, Packed& packed) = 0;
    virtual void RemoveContents(const FileRow& file) = 0;
    // The rows of contents come under another year.
    virtual void MoveContents(const FileRow& file, std::optional<std::int64_t> year) = 0;
    virtual void Commit() = 0;
    virtual void Rollback() noexcept = 0;

    // Once after all files: what makes the figures easier to use.
    virtual void Finish() = 0;
};

// Opens a destination for a run, alone; see ParseDestination for its name. What it lacks is made.
// Throws DestinationError.
std::unique_ptr<Destination> OpenDestination(const std::string& name, const Waiting& waiting);

}  // namespace rollup
