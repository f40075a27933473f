// Keeps a destination right, path by path: which contents are there, under which path, and which
// paths are duplicates.
//
// Contents that several paths have are read from one of them, whose status is kRead; the others are
// its duplicates. When it is gone or has other contents, one of them takes its place.
#pragma once

#include <string>

#include "rollup/destination.h"
#include "rollup/reader.h"

namespace rollup {

class Ledger {
public:
    explicit Ledger(Destination& destination) : destination_(destination) {}

    // The hash of what is known of a path; empty where its file has to be read.
    [[nodiscard]] std::string KnownHash(const std::string& path);
    // Enters what was found at a path, in one transaction. Gives the row that stands now, whose
    // status and reason are the destination's verdict too.
    FileRow Enter(FileRead file);
    // Removes what is known of a path.
    void Forget(const std::string& path);

private:
    FileRow Placed(FileRead& file);
    FileRow EnterRefused(FileRow row, const std::string& reason);
    void Release(const FileRow& old);
    template <typename Change>
    void Whole(const Change& change);

    Destination& destination_;
};

}  // namespace rollup
