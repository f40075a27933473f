// A season as a workbook for spreadsheet programs (XLSX).
//
// A sheet for each table, numbers as numbers and headings that stay in view; a sheet `Totals` with
// formulas over the values of each live location; and where a text is longer than a cell holds, a
// sheet `Notes` that names it.
#pragma once

#include <filesystem>

#include "season/season.h"

namespace review {

// Throws std::system_error when the file cannot be written; none is left then.
void WriteWorkbook(const season::Season& season, const std::filesystem::path& path);

}  // namespace review
