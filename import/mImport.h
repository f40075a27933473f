// Copies zones, their costs per acre and their tables of net value change from an assessment file
// into the open data file.
#pragma once

#include <QString>

#include <cstdint>

class QWidget;

// What a long import tells of its progress. It is called between zones, so whoever shows something
// must not let the user change anything meanwhile.
class ImportProgress {
public:
    virtual ~ImportProgress() = default;
    virtual void ZoneStarted(int zone, int zones) = 0;  // numbered from 1
};

namespace mImport {

enum Result : std::int16_t {
    kCopied = 1,
    kCancelled = 2,
    kNotABramFile = 3,
    kNoZones = 12,
};

// The whole import, from the file dialog (shown over `frame`) on. Gives the import result code and
// keeps it in ImportResult. An error part-way leaves the rows written so far, restores the pointer,
// closes the assessment file, and is thrown on.
std::int16_t BRAM_CopyFMZs(QWidget* frame, ImportProgress* progress = nullptr);
// The same for a file that has been chosen already; an empty path counts as cancelled.
std::int16_t CopyFMZsFrom(const QString& path, ImportProgress* progress = nullptr);

[[nodiscard]] std::int16_t ImportResult();

QString OpenFileDialog(QWidget* frame);
QString GetBRAMPath();

}  // namespace mImport
