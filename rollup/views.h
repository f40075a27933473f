// Views that answer the usual questions, the same in every destination.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace rollup {

enum class Dialect { kSqlite, kPostgres, kDuckDb };

struct View {
    std::string_view name;
    std::string_view query;
};

std::span<const View> Views();
// One statement for each; views that are there already stay as they are, except in DuckDB.
std::vector<std::string> ViewStatements(Dialect dialect);

}  // namespace rollup
