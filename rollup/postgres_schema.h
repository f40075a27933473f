// The tables of a roll-up in PostgreSQL: those that are there as they are, the others made.
#pragma once

#include <array>
#include <optional>
#include <set>
#include <string>
#include <utility>

#include "rollup/postgres.h"
#include "rollup/postgres_rows.h"
#include "rollup/tables.h"

namespace rollup {

class PostgresSchema {
public:
    // Throws DestinationError when a table lacks a column, or has one that the roll-up cannot fill.
    explicit PostgresSchema(PostgresConnection& connection);

    [[nodiscard]] const PostgresFormat& FormatOf(TableId table) const {
        return formats_[static_cast<std::size_t>(table)];
    }
    // "file_id, year, ..." as they stand in a statement.
    [[nodiscard]] std::string Columns(TableId table) const;
    // The partitions of a year, in the tables that a roll-up made. To be called in a transaction.
    void MakeRoomFor(std::optional<std::int64_t> year);
    void Committed();
    void RolledBack();
    // Views are made where there is nothing of their names yet.
    void MakeViews();

private:
    void Make(const Table& table);
    void LookAt(const Table& table);
    [[nodiscard]] bool IsThere(std::string_view relation);

    PostgresConnection& connection_;
    std::array<PostgresFormat, kTables> formats_;
    std::array<bool, kTables> isOwn_{};
    std::set<std::optional<std::int64_t>> years_;
    std::set<std::optional<std::int64_t>> newYears_;  // of the open transaction
};

}  // namespace rollup
