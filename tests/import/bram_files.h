// Assessment files made by code, sound and unsound.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "jet/schema.h"
#include "tools/TableText.h"

namespace bram_files {

// The rows of the four tables, by the names of their fields.
struct Contents {
    std::vector<tools::TextRow> zones;
    std::vector<tools::TextRow> costs;
    std::vector<tools::TextRow> setups;
    std::vector<tools::TextRow> values;
};

// A zone with so many rows of costs, largest size first, whose locations all have this table of
// values.
void AddZone(Contents& contents, const std::string& code, int locations, int costs,
             const std::string& table);
// A table of values with all its cells.
void AddTable(Contents& contents, const std::string& table);
// What AddTable puts into a cell; no two cells of two tables are the same.
float CellOf(const std::string& table, int resource, int level);

using Tables = std::vector<jet::TableSchema>;
// Makes a file of these rows; with other tables than the usual ones.
void Write(const std::filesystem::path& path, const Contents& contents);
void Write(const std::filesystem::path& path, const Contents& contents, const Tables& tables);

// Five zones A1 to E5 with nine locations together, entered in another order than that of their
// codes, and two tables.
Contents Basic();

// One of these files, made at `path`:
//   basic.mdb         Basic
//   other-types.mdb   fields in another order and of other numeric types; a zone with twelve costs
//   gaps.mdb          locations without set-up, a set-up without values, costs without size, a zone
//                     without locations
//   no-setup.mdb      no set-up at all
//   no-zones.mdb      no zone
//   apostrophe.mdb    an apostrophe in the code of the second zone
//   large.mdb         300 zones with a location each
//   bad-value.mdb     no number in the table of the second zone: resource 5, level 2
//   long-name.mdb     a description of the second zone that makes its name too long
//   no-table.mdb      without the table of set-ups
//   no-index.mdb      without the index of zones by code
void Make(const std::filesystem::path& path);

}  // namespace bram_files
