#include "tarnreview/ReviewCase.h"

#include <QStringList>

#include <algorithm>
#include <array>

#include "platform/system/Files.h"
#include "platform/system/NativePath.h"
#include "review/check.h"
#include "review/figures.h"
#include "review/report.h"
#include "season/data_file.h"
#include "season/file_name.h"

namespace tarnreview {

namespace fs = std::filesystem;

std::optional<FileStamp> StampOf(const fs::path& path) {
    std::error_code failed;
    FileStamp stamp;
    stamp.bytes = fs::file_size(path, failed);
    if (failed) {
        return std::nullopt;
    }
    stamp.time = fs::last_write_time(path, failed);
    fs::path log = path;
    log += "-log";
    const std::uintmax_t logBytes = fs::file_size(log, failed);
    stamp.logBytes = failed ? 0 : logBytes;
    return stamp;
}

std::optional<fs::path> LastYearsFile(const fs::path& path) {
    const std::optional<season::FileName> name = season::ParseFileName(path);
    if (!name) {
        return std::nullopt;
    }
    const std::string title = name->unit + name->state + season::TwoDigits((name->year + 99) % 100);
    const fs::path folder = path.has_parent_path() ? path.parent_path() : fs::path(".");
    const QString found = platform::FindFile(platform::FromNativePath(folder),
                                             QString::fromStdString(title + ".fcd"));
    const fs::path other = platform::ToNativePath(found);
    std::error_code failed;
    return fs::is_regular_file(other, failed) ? std::optional(other) : std::nullopt;
}

void ReviewCase::Open(const fs::path& path) {
    const std::optional<FileStamp> stamp = StampOf(path);
    season_ = std::make_unique<season::Season>(season::Read(path));
    stamp_ = stamp;
    previous_.reset();
    Look();
}

void ReviewCase::OpenAgain() {
    const fs::path path = season_->path;
    const std::optional<FileStamp> stamp = StampOf(path);
    season_ = std::make_unique<season::Season>(season::Read(path));
    stamp_ = stamp;
    Look();
}

void ReviewCase::OpenPrevious(const fs::path& path) {
    previous_ = std::make_unique<season::Season>(season::Read(path));
    Look();
}

void ReviewCase::Look() {
    findings_ = review::Check({*season_, previous_.get(), nullptr});
    differences_.clear();
    if (previous_ != nullptr) {
        differences_ = review::Compare(*previous_, *season_);
    }
}

bool ReviewCase::HasChanged() const {
    return season_ != nullptr && StampOf(season_->path) != stamp_;
}

review::Document ReviewCase::Report(const std::string& date) const {
    return review::ReportOf(
        {.season = *season_, .previous = previous_.get(), .findings = findings_, .date = date});
}

QString ReviewCase::Summary() const {
    if (findings_.empty()) {
        return QStringLiteral("Nothing was found that looks wrong.");
    }
    QStringList parts;
    for (const auto severity :
         {review::Severity::kError, review::Severity::kWarning, review::Severity::kNote}) {
        const auto count = static_cast<std::size_t>(std::count_if(
            findings_.begin(), findings_.end(),
            [severity](const auto& finding) { return finding.severity == severity; }));
        if (count > 0) {
            parts += QString::fromStdString(review::Counted(count, review::SeverityName(severity)));
        }
    }
    return parts.join(QStringLiteral(", "));
}

}  // namespace tarnreview
