// Copies zones, their costs per acre and their tables of net value change from an assessment file
// into the open data file.
//
// An import only adds: every zone of the assessment file becomes a new zone beside those that are
// there. Rows are read and written one by one, so an error leaves those before it; each zone is one
// transaction for a kill or a power cut.
#pragma once

#include <QString>

#include <cstdint>
#include <vector>

class QWidget;

namespace mImport {

// What a long import reports of its progress. It is called before each zone, so whoever shows
// something must not let the user change anything meanwhile.
class ImportProgress {
public:
    virtual ~ImportProgress() = default;
    virtual void ZoneStarted(int zone, int zones) = 0;  // numbered from 1
};

enum class Result : std::int16_t {
    kFailed = 0,  // an error part-way, which was rethrown
    kCopied = 1,
    kCancelled = 2,
    kNotABramFile = 3,
    kNoZones = 12,
};
using enum Result;

// The whole import, from the file dialog (shown over `frame`, may be null) on. What it gives,
// ImportResult keeps. An error part-way leaves the rows written so far, restores
// the pointer, closes the assessment file, and is rethrown.
Result BRAM_CopyFMZs(QWidget* frame, ImportProgress* progress = nullptr);
[[nodiscard]] Result ImportResult();

// What the last import has copied.
struct Imported {
    // A location that was filled with zeros, because the assessment file names no table for it.
    struct Blank {
        QString zone;
        std::int32_t location = 0;
    };
    int zones = 0;
    int locations = 0;
    std::vector<Blank> blanks;
};
[[nodiscard]] const Imported& LastImport();

// The chosen path, or an empty text when the user cancelled or the dialog failed.
QString OpenFileDialog(QWidget* frame);
// The folder in which the dialog starts.
QString GetBRAMPath();

// The steps after the dialog, for a path that is known.
Result CopyFMZsFrom(const QString& path, ImportProgress* progress = nullptr);

}  // namespace mImport
