// Rows as comma-separated text: a heading, null as nothing, an empty text as "".
#pragma once

#include <optional>
#include <span>
#include <string>
#include <vector>

#include "rollup/gzip.h"
#include "rollup/tables.h"

namespace rollup {

// A number's shortest text that gives it again when read as a double.
void AppendNumber(std::string& to, double number);

// One line for each; the year, which stands in the folder's name, is left out.
void AppendHeading(std::string& to, const Table& table);
void AppendRow(std::string& to, const Table& table, std::span<const Cell> row);

// The next record of a file; nothing at its end. Fields are texts; nothing was null.
using CsvRecord = std::vector<std::optional<std::string>>;
bool ReadRecord(GzipReader& file, CsvRecord& into);

}  // namespace rollup
