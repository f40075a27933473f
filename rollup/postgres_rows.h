// Rows as COPY takes them: binary where the types of a table's columns are known, else as text.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "rollup/tables.h"

namespace rollup {

// The types of a table's columns, by their numbers in the server's catalog.
class PostgresFormat {
public:
    PostgresFormat() = default;
    PostgresFormat(const Table& table, std::vector<std::uint32_t> types);

    [[nodiscard]] bool IsBinary() const { return isBinary_; }
    // What stands before and behind all rows.
    [[nodiscard]] std::string_view Heading() const;
    [[nodiscard]] std::string_view Ending() const;
    // Throws FileNotTaken for a number that its column cannot hold.
    void Append(std::string& to, std::span<const Cell> row) const;

private:
    void AppendBinary(std::string& to, std::span<const Cell> row) const;
    void AppendText(std::string& to, std::span<const Cell> row) const;

    std::vector<std::uint32_t> types_;
    bool isBinary_ = false;
};

}  // namespace rollup
