// Saving what is looked at: as a report, a workbook or plain figures. Each is a new file, complete
// or not there, and never the data file itself.
#pragma once

#include <QString>

#include <filesystem>
#include <string>

namespace tarnreview {
class ReviewCase;
}

namespace SaveAs {

// The date as reports show it: "2026-04-15".
std::string Today();

// The kinds that a file can be saved as, for a file dialog. The differences come last, where there
// is a file to compare with.
QStringList Filters(const tarnreview::ReviewCase& reviewed);

enum class What { kReport, kDifferences };

// Saves by the ending of the name; differences are a web page. Throws std::runtime_error with a
// sentence.
void Save(const tarnreview::ReviewCase& reviewed, What what, const std::filesystem::path& path);

}  // namespace SaveAs
