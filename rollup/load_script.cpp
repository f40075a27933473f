#include "rollup/load_script.h"

#include "rollup/tables.h"
#include "rollup/views.h"

namespace rollup {

namespace {

std::string_view TypeName(ColumnType type) {
    switch (type) {
        case ColumnType::kText:
            return "VARCHAR";
        case ColumnType::kWhole:
            return "BIGINT";
        case ColumnType::kNumber:
            return "DOUBLE";
        case ColumnType::kTruth:
            break;
    }
    return "BOOLEAN";
}

// A path as a pattern that means only itself, within quotes.
std::string Pattern(const std::string& path) {
    std::string pattern;
    for (const char c : path) {
        if (c == '*' || c == '?' || c == '[') {
            pattern += std::string("[") + c + "]";
        } else {
            pattern += c == '\'' ? "''" : std::string(1, c);
        }
    }
    return pattern;
}

std::string TableView(const std::filesystem::path& folder, const Table& table) {
    std::string selected;
    std::string types;
    for (const Column& column : table.columns) {
        const std::string name(column.name);
        selected += selected.empty() ? "" : ", ";
        if (name == "year") {
            selected += "TRY_CAST(year AS INTEGER) AS year";
            continue;
        }
        selected += name;
        types += (types.empty() ? "'" : ", '") + name + "': '" +
                 std::string(TypeName(column.type)) + "'";
    }
    return "CREATE OR REPLACE VIEW " + std::string(table.name) + " AS\nSELECT " + selected +
           "\nFROM read_csv('" + Pattern((folder / table.name).string()) +
           "/*/*.csv.gz',\n  columns = {" + types +
           "},\n  auto_detect = false, header = true, delim = ',', quote = '\"', escape = '\"',\n"
           "  nullstr = '', allow_quoted_nulls = false, max_line_size = 16777216,\n"
           "  hive_partitioning = true, hive_types_autocast = false);\n";
}

}  // namespace

std::string LoadScript(const std::filesystem::path& folder) {
    std::string script =
        "-- The figures in this folder as tables of DuckDB. As Parquet, for instance:\n"
        "--   COPY (SELECT * FROM nvc) TO 'nvc' (FORMAT parquet, PARTITION_BY (year));\n\n";
    for (const Table& table : Tables()) {
        script += TableView(folder, table) + "\n";
    }
    for (const std::string& view : ViewStatements(Dialect::kDuckDb)) {
        script += view + ";\n\n";
    }
    return script;
}

}  // namespace rollup
