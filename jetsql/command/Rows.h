// The ways in which a query's rows are printed.
#pragma once

#include <sqlite3.h>

#include <cstdint>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

namespace jetsql {

enum class Style { kTable, kCsv, kJson };

// Takes the rows of one statement, one by one. Memory does not grow with their number: a table's
// columns are as wide as its first thousand rows need.
class RowPrinter {
public:
    RowPrinter() = default;
    RowPrinter(const RowPrinter&) = delete;
    RowPrinter& operator=(const RowPrinter&) = delete;
    virtual ~RowPrinter() = default;

    virtual void Begin(const std::vector<std::string>& headings) = 0;
    virtual void Row(sqlite3_stmt* statement) = 0;
    virtual void End() = 0;
};

std::unique_ptr<RowPrinter> MakePrinter(Style style, std::ostream& out);

}  // namespace jetsql
