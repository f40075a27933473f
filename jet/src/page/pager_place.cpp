// What other programs may do to the file while it is open here, locks being mere advice on many
// systems: write over it, rename it, replace it, remove it.
#include <algorithm>
#include <string>
#include <vector>

#include "jet/error.h"
#include "page/pager_impl.h"

namespace jet {

namespace {

std::string Quoted(const std::filesystem::path& path) {
    const std::u8string name = path.filename().u8string();
    return '"' + std::string(name.begin(), name.end()) + '"';
}

std::filesystem::path KeptPath(const std::filesystem::path& path) {
    std::filesystem::path kept = path.parent_path() / path.stem();
    kept += "-kept";
    kept += path.extension();
    return kept;
}

}  // namespace

// Pages of two states of a file make no file. The counters on the header page tell one from the
// next; after an attempt that failed the first may be any that was tried.
void Pager::Impl::RequireUntouched() {
    if (filePageCount == 0) return;
    if (file->Size() >= std::uint64_t{filePageCount} * format.pageSize) {
        std::vector<std::byte> first(format.pageSize);
        file->Read(0, first);
        if ((writeFailed_ || ReadCommitCounter(first, format) == fileCounter) &&
            OtherCounters(first, format) == otherCounters) {
            return;
        }
    }
    throw Error(ErrorKind::kFileInUse,
                "The file " + Quoted(path) +
                    " has been overwritten by another program while it was open. So that the two "
                    "do not mix, nothing more is stored in it.");
}

bool Pager::Impl::PutBackIfRemoved() {
    const Whereabouts where = file->WhereIs(path);
    // What is written is found in the file wherever it is now.
    movedAway = where == Whereabouts::kElsewhere;
    if (where != Whereabouts::kRemoved) return false;
    // It has lost its last name: all that is in it would go when it is closed.
    if (files.Exists(path)) KeepBeside();
    PutBack();
    return true;
}

void Pager::Impl::PutBack() {
    const std::uint16_t counter = journal_.NewCounter();
    try {
        file = WriteAnew(path, counter);
    } catch (const Error& error) {
        throw Error(error.Kind() == ErrorKind::kDiskFull ? error.Kind() : ErrorKind::kFileNotFound,
                    "The file " + Quoted(path) +
                        " has been deleted by another program while it was open, and could not be "
                        "put back. Nothing is lost as long as this program stays open.");
    }
    WriteCommitCounter({Fetch(PageNumber{0}).bytes.get(), format.pageSize}, format, counter);
    cache_.ForEach([](Frame& frame) { frame.dirty = false; });
    dirtyCount_ = 0;
    inLog_.Clear();
    filePageCount = pageCount;
    fileCounter = counter;
    writeFailed_ = false;
    putBack = true;
    journal_.Empty();
    journal_.Release();  // the log may have been removed as well
}

// Another file has the name. It is left alone, and so nothing is lost on either side.
void Pager::Impl::KeepBeside() {
    const std::filesystem::path kept = KeptPath(path);
    if (keptOperations_ != journal_.Operations()) {
        if (keptOperations_ == 0 && files.Exists(kept)) {
            throw Error(ErrorKind::kFileInUse,
                        "The file " + Quoted(path) +
                            " has been replaced by another program while it was open. Rename " +
                            Quoted(kept) +
                            ", so that what was entered here can be kept under that name.");
        }
        WriteAnew(kept, journal_.NewCounter());
        keptOperations_ = journal_.Operations();
    }
    throw Error(ErrorKind::kFileInUse, "The file " + Quoted(path) +
                                           " has been replaced by another program while it was "
                                           "open. What was entered here is kept in " +
                                           Quoted(kept) + " beside it.");
}

// Writes all that was committed to a new file, which gets its name when it is complete.
std::unique_ptr<File> Pager::Impl::WriteAnew(const std::filesystem::path& to,
                                             std::uint16_t counter) {
    std::filesystem::path unfinished = LogPath(path);
    unfinished += "-new";
    // One that a process left which ended over it.
    if (files.Exists(unfinished)) files.Remove(unfinished);
    auto copy = files.CreateLike(unfinished, *file);
    try {
        if (!copy->TryLock(true)) throw Error(ErrorKind::kFileInUse, "The file is in use.");
        std::vector<std::byte> page(format.pageSize);
        for (std::uint32_t number = 0; number < pageCount; ++number) {
            CopyPage(PageNumber{number}, page);
            if (number == 0) WriteCommitCounter(page, format, counter);
            copy->Write(std::uint64_t{number} * format.pageSize, page);
        }
        copy->Flush();
        files.Rename(unfinished, to);
    } catch (...) {
        copy.reset();
        RemoveQuietly(files, unfinished);
        throw;
    }
    files.FlushFolder(to.parent_path());
    return copy;
}

}  // namespace jet
