#include "rollup/ledger.h"

#include <algorithm>

namespace rollup {

namespace {

std::string DuplicateOf(const FileRow& first) {
    return "The contents are those of " + first.path + ".";
}

const FileRow* FindRead(const std::vector<FileRow>& files) {
    const auto found = std::find_if(files.begin(), files.end(), [](const FileRow& file) {
        return file.status == Status::kRead;
    });
    return found == files.end() ? nullptr : &*found;
}

}  // namespace

// All of a change, or nothing of it.
template <typename Change>
void Ledger::Whole(const Change& change) {
    destination_.Begin();
    try {
        change();
        destination_.Commit();
    } catch (...) {
        destination_.Rollback();
        throw;
    }
}

std::string Ledger::KnownHash(const std::string& path) {
    const std::optional<FileRow> row = destination_.Find(path);
    const bool stands = row && row->status != Status::kRefused && row->sha256;
    return stands ? *row->sha256 : std::string();
}

// The path of these contents no longer has them.
void Ledger::Release(const FileRow& old) {
    if (old.status != Status::kRead || !old.sha256) {
        return;
    }
    std::vector<FileRow> heirs = destination_.WithContents(*old.sha256);
    std::erase_if(heirs, [&old](const FileRow& file) {
        return file.path == old.path || file.status == Status::kRefused;
    });
    if (FindRead(heirs) != nullptr) {
        return;  // a run was killed after it had entered the heir
    }
    if (heirs.empty()) {
        destination_.RemoveContents(old);
        return;
    }
    const FileRow heir = heirs.front();
    if (heir.year != old.year) {
        destination_.MoveContents(old, heir.year);
    }
    for (FileRow& file : heirs) {
        const bool isHeir = file.path == heir.path;
        file.status = isHeir ? Status::kRead : Status::kDuplicate;
        file.reason = isHeir ? std::nullopt : std::optional(DuplicateOf(heir));
        destination_.Put(file);
    }
}

FileRow Ledger::Placed(FileRead& file) {
    FileRow row = file.row;
    if (const auto old = destination_.Find(row.path)) {
        Release(*old);
        destination_.Remove(*old);
    }
    if (row.status == Status::kRead) {
        const std::vector<FileRow> same = destination_.WithContents(*row.sha256);
        if (const FileRow* const first = FindRead(same)) {
            row.status = Status::kDuplicate;
            row.reason = DuplicateOf(*first);
        } else {
            destination_.AddContents(row, *file.packed);
        }
    }
    destination_.Put(row);
    return row;
}

FileRow Ledger::EnterRefused(FileRow row, const std::string& reason) {
    FileRead refused;
    refused.row = std::move(row);
    refused.row.status = Status::kRefused;
    refused.row.reason = reason;
    FileRow entered = refused.row;
    try {
        Whole([&] { entered = Placed(refused); });
    } catch (const FileNotTaken&) {
        // There may be no place for its year in `files` either.
        refused.row.year = std::nullopt;
        try {
            Whole([&] { entered = Placed(refused); });
        } catch (const FileNotTaken&) {
            return refused.row;  // it is named, and tried again by the next run
        }
    }
    return entered;
}

FileRow Ledger::Enter(FileRead file) {
    try {
        FileRow entered;
        Whole([&] { entered = Placed(file); });
        return entered;
    } catch (const FileNotTaken& why) {
        return EnterRefused(file.row, why.what());
    }
}

void Ledger::Forget(const std::string& path) {
    const std::optional<FileRow> row = destination_.Find(path);
    if (row) {
        Whole([&] {
            Release(*row);
            destination_.Remove(*row);
        });
    }
}

}  // namespace rollup
