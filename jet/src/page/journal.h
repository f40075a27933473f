// The journal: every committed operation in a log file beside the data file, so that neither the
// end of the process nor a power cut leaves half of one behind.
//
// 1. Committing. An operation or a transaction is one record in the log (log_format.h), written by
//    one write. After it the operation is done: the process may be killed, the log lies with the
//    operating system. The data file itself is not touched; changed pages stay in memory. A
//    transaction that grows large writes pages in parts before, which count when it is committed.
// 2. Checkpoint. A checkpoint record is appended and the log flushed; then the changed pages, and
// the
//    header page with a raised commit counter, are written to the data file and that is flushed;
//    then the log is emptied. Two flushes, none when the log is empty.
// 3. Opening. A log that is found is replayed in memory, and then step 2 is done.
//
// Why emptying needs no flush of its own: what a power cut can bring back is the old log, whole or
// in part. Whole, replaying it is harmless, since the data file holds its end state already. In
// part - its beginning, followed by new records or by nothing - it would undo things. So a log
// counts only if the data file's commit counter is the one that the log began with (then step 2
// never completed, and no log was ever emptied) or one of a checkpoint record that is still
// readable (then the log is whole up to that record at least, for it was flushed before the data
// file got that value). Every attempt at step 2 uses another counter value.
//
// Why a log never gets into a file that it does not belong to: the counter, the file's size and the
// bytes of every page that the log touches must all fit. Each byte must be the one that the log
// began with or one that the log itself put there, which also holds for a half-written page.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "jet/file.h"
#include "page/data_file.h"
#include "page/header.h"
#include "page/log_buffer.h"
#include "page/log_format.h"
#include "page/log_replay.h"

namespace jet {

// A place between the parts of a transaction.
struct PartsMark {
    bool any = false;            // parts before it
    std::uint64_t end = 0;       // length of the log
    std::uint64_t checksum = 0;  // of its last record
    std::size_t entries = 0;     // of pages, in parts
};

class Journal {
public:
    // A new log takes its access rights, and the state that it begins with, from the data file,
    // which must outlive it.
    explicit Journal(const DataFile& dataFile)
        : dataFile_(dataFile), path_(LogPath(dataFile.Path())) {}

    // Makes the (empty) log file. May fail; the first operation then tries again, and fails if it
    // has to.
    void Prepare() noexcept;
    // Reads pages from a log that was replayed, and leaves it as it is.
    void ReadOnly(std::unique_ptr<File> log) { file_ = std::move(log); }
    // Goes on with a log that was replayed.
    void Resume(const LogPosition& position);

    // A record is built page by page and then written. A commit is the moment of commitment. A part
    // is one of a transaction that goes on. Moved are pages as they were committed, whose memory is
    // to be used for others; only when there are no parts. A record that is not written is
    // forgotten when the next one is started.
    void Start(LogRecordKind kind, std::uint32_t pagesAfter);
    // What has changed of the page. Its former bytes may be used for others afterwards, its new
    // ones stay until the record is written.
    void Add(const PageChange& change);
    // All of the page, the same way. Gives where its bytes will lie in the log.
    std::uint64_t AddWhole(const PageChange& change);
    // When it throws, nothing of the record is in the log. kDiskFull, kIo, kRecordTooLarge.
    void Write();
    // Whether there are parts that no commit has followed.
    [[nodiscard]] bool HasParts() const { return beforeParts_.has_value(); }
    // Removes them: the transaction has been rolled back.
    void DropParts() noexcept;
    // How far the parts go by now.
    [[nodiscard]] PartsMark Parts() const {
        return {beforeParts_.has_value(), end_, checksum_, loggedByParts_.size()};
    }
    // Removes those that have been written since then; no commit has.
    void DropPartsSince(const PartsMark& mark) noexcept;
    // The bytes of a page that lie there. kIo.
    void ReadPage(std::uint64_t place, MutableBytes into);

    // Step 2. The value that the data file's commit counter takes this time.
    std::uint16_t WriteCheckpoint();
    void Flush();
    // Carries the log's place in its folder through a power cut, unless the first Flush has done
    // so. May fail; that flush then does it.
    void SecurePlace() noexcept;
    void Empty() noexcept;
    // Closes the log file and leaves it where it is.
    void Release() noexcept { file_.reset(); }
    // The same with another name for it, which no opening takes for the file's log. It stays when
    // that fails, or when another log has its name by now.
    void SetAside() noexcept;
    // Closes and removes the log file.
    void Remove() noexcept;
    // The number of operations that the data file does not hold yet.
    [[nodiscard]] std::uint64_t Operations() const { return IsEmpty() ? 0 : operation_; }
    // A value of the commit counter that stands nowhere in the log.
    [[nodiscard]] std::uint16_t NewCounter() const { return NextCommitCounter(lastCounter_); }

    [[nodiscard]] bool IsEmpty() const { return end_ == 0; }
    [[nodiscard]] std::uint64_t Size() const { return end_; }

private:
    struct Good {
        std::uint64_t end = 0;       // length of the good part
        std::uint64_t checksum = 0;  // of its last record
    };

    struct LoggedPage {
        std::uint32_t page = 0;
        LoggedAs state = LoggedAs::kNothing;
    };

    // Puts the header of a log that begins into the buffer, and gives the seed of the next record.
    std::uint64_t StartBuffer(std::uint32_t pagesAfter);
    void NoteEntry(const PageChange& change, LogBase base);
    void CutQuietly() noexcept;
    void RequireFile();
    void FlushPlace();
    std::unique_ptr<File> OpenLog();
    void WriteBuffer();
    void WriteAllAgain();
    [[nodiscard]] LoggedAs StateOf(PageNumber page) const {
        return page.value < logged_.size() ? logged_[page.value] : LoggedAs::kNothing;
    }

    const DataFile& dataFile_;
    std::filesystem::path path_;
    std::unique_ptr<File> file_;
    std::uint64_t end_ = 0;       // length of the good part
    std::uint64_t checksum_ = 0;  // of its last record
    std::uint64_t operation_ = 0;
    std::uint16_t lastCounter_ = 0;  // of the log's beginning or its last checkpoint
    bool placeFlushed_ = false;      // a power cut cannot take the file out of its folder
    bool cutFirst_ = false;          // there may be bytes past the good part
    bool flushFailed_ = false;       // what was written may never have reached the disk
    std::vector<LoggedAs> logged_;   // by page
    std::optional<Good> beforeParts_;
    std::vector<LoggedPage> loggedByParts_;  // as they were before
    LogBuffer buffer_;
    LogRecordKind kind_ = LogRecordKind::kCommit;  // of the record that is being built
    std::uint64_t seed_ = 0;
    std::optional<LogRecordWriter> record_;
    std::vector<LoggedPage> entries_;  // as they will be
    std::vector<LogRange> ranges_;
};

}  // namespace jet
