// Tables as tab-separated text with a line of field names, and how their rows get into a database.
#pragma once

#include <filesystem>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "jet/database.h"
#include "jet/recordset.h"
#include "jet/schema.h"

namespace tools {

using TextRow = std::map<std::string, std::string>;

// Throws std::runtime_error when the file cannot be read or a line has the wrong number of fields.
std::vector<TextRow> ReadTable(const std::filesystem::path& path);
// The parts of a text between single blanks.
std::vector<std::string> SplitWords(const std::string& text);

// Sets a field from text as its type has it; an empty text leaves it null.
void SetFromText(jet::Recordset& records, std::string_view field, const std::string& text);
// Adds the rows of a text file to the table; the field names must be the table's.
void AddRows(jet::Database& database, std::string_view table, const std::vector<TextRow>& rows);

jet::ColumnSchema Column(std::string name, jet::ColumnType type, int length = 0);
jet::ColumnSchema AutoNumber(std::string name);
jet::IndexSchema Index(std::string name, const std::vector<std::string>& columns,
                       bool primary = false);

// Makes the database under another name and gives it its own when `fill` has ended well, so that
// a build that was broken off leaves no half-made file.
void MakeFile(const std::filesystem::path& path, const std::function<void(jet::Database&)>& fill);

// Runs a tool's work; reports an error and gives the exit status.
int RunTool(const std::function<void()>& work);

}  // namespace tools
