#include "bench/BramMaker.h"

#include <string>

#include "jet/database.h"
#include "jet/recordset.h"

namespace bench {

namespace {

using jet::ColumnType;

constexpr int kLevels = 6;
constexpr std::size_t kZonesOfTable = 10;

jet::ColumnSchema Column(const char* name, ColumnType type, int length = 0) {
    jet::ColumnSchema column;
    column.name = name;
    column.type = type;
    column.length = length;
    return column;
}

std::unique_ptr<jet::Recordset> MakeTable(jet::Database& database, const char* name,
                                          std::vector<jet::ColumnSchema> columns, const char* index,
                                          std::size_t keyColumns) {
    jet::TableSchema table;
    table.name = name;
    jet::IndexSchema key;
    key.name = index;
    key.primary = true;
    for (std::size_t i = 0; i < keyColumns; ++i) key.columns.push_back({columns[i].name});
    table.columns = std::move(columns);
    table.indexes = {key};
    database.CreateTable(table);
    return database.OpenTable(name);
}

void Add(jet::Recordset& table, std::initializer_list<jet::Value> values) {
    table.AddNew();
    int field = 0;
    for (const jet::Value& value : values) table.Set(jet::FieldId{field++}, value);
    table.Update();
}

std::u16string Numbered(char16_t letter, std::size_t number) {
    const std::string digits = std::to_string(100000 + number);
    return letter + std::u16string(digits.begin() + 1, digits.end());
}

}  // namespace

void MakeBramFile(const std::filesystem::path& file, jet::Version version, std::size_t zones) {
    const auto database = jet::Database::Create(file, version);
    const auto zoneTable = MakeTable(
        *database, "FMZ",
        {Column("FMZCode", ColumnType::kText, 10), Column("Describe", ColumnType::kText, 50),
         Column("RLCount", ColumnType::kInteger)},
        "FMZCode", 1);
    const auto costs =
        MakeTable(*database, "AAC",
                  {Column("FMZCode", ColumnType::kText, 10), Column("RowNo", ColumnType::kInteger),
                   Column("UpAcres", ColumnType::kSingle), Column("Cost", ColumnType::kSingle)},
                  "FMZRow", 2);
    const auto setups =
        MakeTable(*database, "NVCSetup",
                  {Column("FMZCode", ColumnType::kText, 10), Column("RL", ColumnType::kInteger),
                   Column("TableID", ColumnType::kText, 10)},
                  "FMZRL", 2);
    const auto values = MakeTable(
        *database, "NVCTable",
        {Column("TableID", ColumnType::kText, 10), Column("Resource", ColumnType::kInteger),
         Column("FIL", ColumnType::kInteger), Column("WPANRVCBF", ColumnType::kSingle)},
        "NVCTable", 3);
    for (std::size_t zone = 0; zone < zones; ++zone) {
        const std::u16string code = Numbered(u'Z', zone);
        const std::u16string table = Numbered(u'T', zone / kZonesOfTable);
        Add(*zoneTable, {code, u"A zone of the benchmark", kLocations});
        for (int row = 1; row <= kCostRows; ++row) {
            Add(*costs, {code, row, 10.0F * static_cast<float>(row), 250.5F});
        }
        for (int location = 1; location <= kLocations; ++location) {
            Add(*setups, {code, location, table});
        }
        if (zone % kZonesOfTable != 0) continue;
        for (int resource = 1; resource <= kResources; ++resource) {
            for (int level = 1; level <= kLevels; ++level) {
                Add(*values, {table, resource, level, static_cast<float>(resource * level)});
            }
        }
    }
    database->Close();
}

}  // namespace bench
