#include "page/rescue.h"

#include <utility>
#include <vector>

#include "jet/error.h"
#include "page/header.h"
#include "page/path_words.h"

namespace jet {

namespace {

std::filesystem::path KeptPath(const std::filesystem::path& path) {
    std::filesystem::path kept = path.parent_path() / path.stem();
    kept += "-kept";
    kept += path.extension();
    return kept;
}

}  // namespace

bool Rescue::PutBackIfRemoved() {
    if (file_.Locate() != Whereabouts::kRemoved) return false;
    // All that is in the file would be lost when it is closed.
    if (file_.Files().Exists(file_.Path()) && !IsUnplaced(file_.Path())) KeepBeside();
    PutBack();
    return true;
}

bool Rescue::IsUnplaced(const std::filesystem::path& path) const {
    return unplaced_ && unplaced_->WhereIs(path) == Whereabouts::kInPlace;
}

void Rescue::PutBack() {
    const std::uint16_t counter = journal_.NewCounter();
    // Before there is a new file: what comes after it cannot fail.
    Frame& headerPage = pages_.Fetch(PageNumber{0});
    std::unique_ptr<File> anew;
    try {
        anew = WriteAnew(file_.Path(), counter);
        unplaced_ = std::move(anew);
        file_.Files().FlushFolder(file_.Path().parent_path());
        anew = std::move(unplaced_);
    } catch (const Error& error) {
        throw Error(error.Kind() == ErrorKind::kDiskFull ? error.Kind() : ErrorKind::kFileNotFound,
                    "The file " + Quoted(file_.Path()) +
                        " has been deleted by another program while it was open, and could not be "
                        "put back. Nothing is lost as long as this program stays open.");
    }
    WriteCommitCounter(pages_.BytesOf(headerPage), file_.PageFormat(), counter);
    file_.Replace(std::move(anew), pages_.PageCount(), counter);
    pages_.MarkAllClean();
    journal_.Empty();
    journal_.Release();  // the log may have been removed as well
}

// Another file has the name. It is left alone, and so nothing is lost on either side.
void Rescue::KeepBeside() {
    const std::filesystem::path& path = file_.Path();
    const std::filesystem::path kept = KeptPath(path);
    if (keptOperations_ != journal_.Operations()) {
        if (keptOperations_ == 0 && file_.Files().Exists(kept)) {
            throw Error(ErrorKind::kFileInUse,
                        "The file " + Quoted(path) +
                            " has been replaced by another program while it was open. Rename " +
                            Quoted(kept) +
                            ", so that what was entered here can be kept under that name.");
        }
        WriteAnew(kept, journal_.NewCounter());
        file_.Files().FlushFolder(kept.parent_path());
        keptOperations_ = journal_.Operations();
    }
    throw Error(ErrorKind::kFileInUse, "The file " + Quoted(path) +
                                           " has been replaced by another program while it was "
                                           "open. What was entered here is kept in " +
                                           Quoted(kept) + " beside it.");
}

// Writes all that was committed to a new file, which gets its name when it is complete. The folder
// is left to be flushed.
std::unique_ptr<File> Rescue::WriteAnew(const std::filesystem::path& to, std::uint16_t counter) {
    FileSystem& files = file_.Files();
    std::filesystem::path unfinished = LogPath(file_.Path());
    unfinished += "-new";
    // One that a process left which ended over it.
    if (files.Exists(unfinished)) files.Remove(unfinished);
    auto copy = files.CreateLike(unfinished, file_.Model());
    try {
        if (!copy->TryLock(true)) throw Error(ErrorKind::kFileInUse, "The file is in use.");
        std::vector<std::byte> page(pages_.PageSize());
        for (std::uint32_t number = 0; number < pages_.PageCount(); ++number) {
            pages_.Copy(PageNumber{number}, page);
            if (number == 0) WriteCommitCounter(page, file_.PageFormat(), counter);
            copy->Write(std::uint64_t{number} * page.size(), page);
        }
        copy->Flush();
        files.Rename(unfinished, to);
    } catch (...) {
        copy.reset();
        RemoveQuietly(files, unfinished);
        throw;
    }
    return copy;
}

}  // namespace jet
