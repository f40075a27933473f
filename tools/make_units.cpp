// Makes the table of unit names: make_units UNITS.TSV fcdname.dat
#include <filesystem>
#include <iostream>
#include <string>
#include <utility>

#include "tools/TableText.h"

namespace {

using Type = jet::ColumnType;

void CreateTables(jet::Database& database) {
    database.CreateTable(
        {"Properties",
         {tools::Column("Property", Type::kText, 50), tools::Column("Value", Type::kText, 255)},
         {tools::Index("PrimaryKey", {"Property"}, true)}});
    database.CreateTable(
        {"Units",
         {tools::Column("UnitID", Type::kText, 3), tools::Column("UnitName", Type::kText, 100),
          tools::Column("State", Type::kText, 2)},
         {tools::Index("PrimaryKey", {"UnitID", "State"}, true), tools::Index("UnitID", {"UnitID"}),
          tools::Index("UnitName", {"UnitName"})}});
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::cerr << "usage: make_units UNITS.TSV FILE\n";
        return 2;
    }
    const std::filesystem::path source = argv[1];
    const std::filesystem::path target = argv[2];
    return tools::RunTool([&] {
        std::vector<tools::TextRow> units;
        for (tools::TextRow& row : tools::ReadTable(source)) {
            units.push_back({{"UnitID", std::move(row["id3"])},
                             {"UnitName", std::move(row["name"])},
                             {"State", std::move(row["state"])}});
        }
        tools::MakeFile(target, [&](jet::Database& database) {
            CreateTables(database);
            tools::AddRows(database, "Properties",
                           {{{"Property", "Source"},
                             {"Value", "Interagency unit identifiers of federal units, 2017"}},
                            {{"Property", "Units"}, {"Value", std::to_string(units.size())}}});
            tools::AddRows(database, "Units", units);
        });
    });
}
