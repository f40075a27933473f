// The way from a column of a Jet table to SQLite's values, and from SQLite's texts back.
//
// Whole numbers and yes/no become integers (yes is 1), other numbers reals, dates the text
// "YYYY-MM-DD HH:MM:SS", GUIDs the text "{xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx}", binaries and
// OLE objects blobs.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "jet/recordset.h"
#include "jet/schema.h"
#include "jetsql/Sqlite.h"

namespace jetsql {

// Hands the current record's field to SQLite. Throws jet::Error.
void GiveResult(sqlite3_context* context, const jet::Recordset& records, jet::FieldId field,
                jet::ColumnType type);

// `name` in double quotes, as SQL wants it.
std::string Quoted(std::string_view name);
// "CREATE TABLE name(...)" with columns, types and the primary key; with the other unique indexes
// for people to read, since SQLite has no use for them. `name` stands as it is.
std::string Declaration(const jet::TableSchema& table, std::string_view name, bool withUnique);

// Rounded to the second. Before 1899-12-30 the fraction of a day counts forward all the same.
std::string DateText(double days);
// Days since 1899-12-30; nothing for what is no day of the calendar.
std::optional<double> DaysOf(int year, int month, int day);
std::string LowerGuidText(const jet::Guid& guid);
// Nothing for what is no GUID in the text that LowerGuidText gives.
std::optional<jet::Guid> GuidOf(std::string_view text);

}  // namespace jetsql
