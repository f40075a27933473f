// Replays a log in memory: what the data file's pages are after it, and whether it belongs to the
// data file at all. Pages that lie whole in the log stay there, so that a large transaction takes
// little memory.
#pragma once

#include <cstdint>
#include <map>
#include <vector>

#include "jet/file.h"
#include "page/format.h"
#include "page/log_format.h"
#include "page/log_reader.h"

namespace jet {

// Where a replayed log can be gone on with.
struct LogPosition {
    std::uint64_t end = 0;
    std::uint64_t checksum = 0;
    std::uint64_t operations = 0;
    std::uint16_t lastCounter = 0;  // of the log's beginning or its last checkpoint
    std::vector<LoggedAs> logged;   // by page
};

class LogReplay {
public:
    struct LoggedPage {
        std::uint64_t place = 0;          // in the log, where all of it lies there; else 0
        std::vector<std::byte> image;     // after the last commit, otherwise; empty: all zeros
        std::vector<std::byte> inFile;    // as much of the page as the data file has, and
        std::vector<std::uint8_t> known;  // which bytes of it the log explains; empty once all are
        // Of a page that is in the log by changes, and in the file no longer as the log began with
        // it: that page, as far as it is known yet, and its checksum.
        std::vector<std::byte> base;
        std::uint64_t sum = 0;
        // Of a page that is logged by pieces: from here on it is as the log began with it.
        std::size_t formerFrom = 0;
    };

    enum class Finding {
        kNothing,  // no whole operation in it
        kForeign,  // no log, or not one of this file in its present state
        kPending,  // belongs to the file
    };

    // `headerPage` is page 0 of the data file.
    LogReplay(File& dataFile, const Format& format, Bytes headerPage);

    // kUnsupportedVersion for a log of a later version; kIo when either file cannot be read. The
    // log is read again by IsInFile.
    Finding Read(File& log);

    [[nodiscard]] std::uint32_t PageCount() const { return pageCount_; }
    [[nodiscard]] const LogPosition& Position() const { return position_; }
    [[nodiscard]] const std::map<std::uint32_t, LoggedPage>& Pages() const { return pages_; }
    // True when the data file holds all of it already.
    [[nodiscard]] bool IsInFile() const;
    void CopyPage(const LoggedPage& page, MutableBytes into) const;
    // Bytes at the log's end that belong to nothing that was committed.
    [[nodiscard]] std::uint64_t DiscardedBytes() const { return discardedBytes_; }

private:
    void FindCommittedEnd(LogReader reader);
    bool Apply(const LogReader& reader);
    void NoteCheckpoint(std::uint16_t counter);
    bool ApplyPages(const LogReader& reader);
    LoggedPage* FindPage(PageNumber page, LogBase base, Bytes brought);
    LoggedPage* StartPage(PageNumber page, LogBase base, Bytes brought);
    void ReadFromFile(PageNumber page, LoggedPage& logged);
    static void StartFromSum(LoggedPage& page, std::uint64_t sum);
    static void ExplainPieces(LoggedPage& page, Bytes sums);
    static bool CompleteBase(LoggedPage& page, Bytes image);
    static bool ApplyFormer(LoggedPage& page, std::size_t offset, Bytes bytes);
    void TakeToMemory(LoggedPage& page);
    bool ApplyMove(LoggedPage& page, Bytes brought);
    void ApplyRange(LoggedPage& page, std::size_t offset, Bytes bytes, std::uint64_t place);
    static void Explain(LoggedPage& page, std::size_t offset, Bytes bytes);
    static void ForgetWhenExplained(LoggedPage& page);
    [[nodiscard]] static bool IsExplained(const LoggedPage& page);
    [[nodiscard]] static bool IsCutWrite(const LoggedPage& page);
    [[nodiscard]] bool Belongs() const;

    File& dataFile_;
    File* log_ = nullptr;
    const Format& format_;
    std::uint16_t commitCounter_;
    std::uint64_t otherCounters_;
    std::uint64_t dataSize_;
    LogHeader header_;
    bool counterFits_ = false;
    bool isInCheckpoint_ = false;  // the file has the counter of one
    std::uint32_t pageCount_ = 0;
    std::uint64_t committedEnd_ = 0;
    std::uint64_t discardedBytes_ = 0;
    LogPosition position_;
    std::map<std::uint32_t, LoggedPage> pages_;
};

}  // namespace jet
