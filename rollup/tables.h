// The tables of a roll-up, and the rows that a data file becomes in them.
//
// All destinations have the same tables. A row is a list of cells in the order of its table's
// columns; singles are given as doubles, which hold them exactly.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>

#include "season/season.h"

namespace rollup {

enum class ColumnType { kText, kWhole, kNumber, kTruth };

struct Column {
    std::string_view name;
    ColumnType type;
};

enum class TableId {
    kFiles,
    kProperties,
    kGoals,
    kResources,
    kZones,
    kCosts,
    kNvcResources,
    kNvc,
};
inline constexpr std::size_t kTables = 8;

struct Table {
    TableId id;
    std::string_view name;
    std::span<const Column> columns;

    // Where the year stands among the columns.
    [[nodiscard]] std::size_t YearColumn() const;
};

inline constexpr std::size_t kYearOfFiles = 8;
inline constexpr std::size_t kYearOfRows = 1;  // in all other tables
inline std::size_t Table::YearColumn() const {
    return id == TableId::kFiles ? kYearOfFiles : kYearOfRows;
}

// In the order of TableId.
std::span<const Table> Tables();
inline const Table& TableOf(TableId id) {
    return Tables()[static_cast<std::size_t>(id)];
}

enum class Status { kRead, kRefused, kDuplicate };
std::string_view StatusName(Status status);
// kRefused for a name that is none.
Status StatusOf(std::string_view name);

// A row of `files`: what is known of a data file.
struct FileRow {
    std::string path;  // absolute, as UTF-8
    std::optional<std::string> fileId;
    std::optional<std::string> sha256;
    std::optional<std::int64_t> bytes;
    std::optional<std::string> format;
    std::optional<std::int64_t> jet;  // 3 or 4
    std::optional<std::string> unit;
    std::optional<std::string> state;
    std::optional<std::int64_t> year;
    std::optional<std::string> unitName;
    Status status = Status::kRead;
    std::optional<std::string> reason;
};

// Null, a text in UTF-8, a whole number, a number, a truth.
using Cell = std::variant<std::monostate, std::string_view, std::int64_t, double, bool>;
using TakeRow = std::function<void(TableId table, std::span<const Cell> row)>;

// The cells are valid until `take` returns.
void FileCells(const FileRow& file, const TakeRow& take);
// All rows of a data file but that of `files`. Texts are well-formed UTF-8.
void EachRow(const season::Season& season, const FileRow& file, const TakeRow& take);

}  // namespace rollup
