// What is looked at: a data file, last year's where there is one, and what is said of them.
//
// It has no window. Files are only read. Reading one that is refused leaves everything as it was.
#pragma once

#include <QString>

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <vector>

#include "review/difference.h"
#include "review/document.h"
#include "review/finding.h"
#include "season/season.h"

namespace tarnreview {

// By which a change of a file, or of the log beside it, is noticed.
struct FileStamp {
    std::uintmax_t bytes = 0;
    std::filesystem::file_time_type time;
    std::uintmax_t logBytes = 0;
    bool operator==(const FileStamp&) const = default;
};
// Nothing when the file is not there.
std::optional<FileStamp> StampOf(const std::filesystem::path& path);

// Last year's file of the same unit in the same folder, known by its name: UMFOR25 beside UMFOR26.
std::optional<std::filesystem::path> LastYearsFile(const std::filesystem::path& path);

class ReviewCase {
public:
    // Throws season::Refused; the sentence does not name the file. Last year's file is let go.
    void Open(const std::filesystem::path& path);
    // The same file once more, as it is now; last year's stays.
    void OpenAgain();
    void OpenPrevious(const std::filesystem::path& path);

    [[nodiscard]] const season::Season* Season() const { return season_.get(); }
    [[nodiscard]] const season::Season* Previous() const { return previous_.get(); }
    [[nodiscard]] const std::vector<review::Finding>& Findings() const { return findings_; }
    [[nodiscard]] const std::vector<review::Difference>& Differences() const {
        return differences_;
    }
    // Whether the file is another one than what was read.
    [[nodiscard]] bool HasChanged() const;
    // Until the next change nothing is said any more.
    void AcceptChange() { stamp_ = StampOf(season_->path); }

    // `date` as it is to be shown.
    [[nodiscard]] review::Document Report(const std::string& date) const;
    // "2 errors, 1 warning", or that nothing was found.
    [[nodiscard]] QString Summary() const;

private:
    void Look();

    std::unique_ptr<season::Season> season_;
    std::unique_ptr<season::Season> previous_;
    std::optional<FileStamp> stamp_;
    std::vector<review::Finding> findings_;
    std::vector<review::Difference> differences_;
};

}  // namespace tarnreview
