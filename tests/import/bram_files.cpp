#include "bram_files.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "jet/database.h"
#include "tools/AssessmentSchema.h"

namespace bram_files {

namespace {

using tools::TextRow;

constexpr int kResources = 14;
constexpr int kLevels = 6;

jet::TableSchema& TableOf(Tables& tables, const std::string& name) {
    return *std::find_if(tables.begin(), tables.end(),
                         [&](const jet::TableSchema& table) { return table.name == name; });
}

void SetType(jet::TableSchema& table, const std::string& column, jet::ColumnType type) {
    std::find_if(table.columns.begin(), table.columns.end(), [&](const jet::ColumnSchema& found) {
        return found.name == column;
    })->type = type;
}

}  // namespace

void Write(const std::filesystem::path& path, const Contents& contents, const Tables& tables) {
    const auto database = jet::Database::Create(path, jet::Version::kJet4);
    const auto fill = [&](const std::string& table, const std::vector<TextRow>& rows) {
        if (database->HasTable(table)) {
            tools::AddRows(*database, table, rows);
        }
    };
    for (const jet::TableSchema& table : tables) {
        database->CreateTable(table);
    }
    fill("FMZ", contents.zones);
    fill("AAC", contents.costs);
    fill("NVCSetup", contents.setups);
    fill("NVCTable", contents.values);
    database->Close();
}

void Write(const std::filesystem::path& path, const Contents& contents) {
    Write(path, contents, tools::AssessmentTables());
}

namespace {

void MakeOtherTypes(const std::filesystem::path& path) {
    Tables tables = tools::AssessmentTables();
    for (jet::TableSchema& table : tables) {
        std::reverse(table.columns.begin(), table.columns.end());
    }
    SetType(TableOf(tables, "FMZ"), "RLCount", jet::ColumnType::kDouble);
    SetType(TableOf(tables, "AAC"), "UpAcres", jet::ColumnType::kLong);
    SetType(TableOf(tables, "AAC"), "Cost", jet::ColumnType::kInteger);
    SetType(TableOf(tables, "NVCSetup"), "RL", jet::ColumnType::kLong);
    SetType(TableOf(tables, "NVCTable"), "FIL", jet::ColumnType::kByte);
    SetType(TableOf(tables, "NVCTable"), "WPANRVCBF", jet::ColumnType::kDouble);
    Contents contents = Basic();
    AddZone(contents, "F6", 1, 12, "T1");
    Write(path, contents, tables);
}

void MakeGaps(const std::filesystem::path& path) {
    Contents contents = Basic();
    std::erase_if(contents.setups, [](const TextRow& row) {
        return row.at("FMZCode") == "A1" && row.at("RL") != "2";
    });
    contents.setups.back()["TableID"] = "T9";
    contents.costs.front()["UpAcres"].clear();
    AddZone(contents, "F6", 0, 2, "T1");
    Write(path, contents);
}

void MakeApostrophe(const std::filesystem::path& path) {
    Contents contents;
    AddTable(contents, "T1");
    for (const char* code : {"A1", "B'2", "C3"}) {
        AddZone(contents, code, 1, 2, "T1");
    }
    Write(path, contents);
}

void MakeBadValue(const std::filesystem::path& path) {
    Tables tables = tools::AssessmentTables();
    jet::TableSchema& values = TableOf(tables, "NVCTable");
    SetType(values, "WPANRVCBF", jet::ColumnType::kText);
    values.columns.back().length = 20;
    Contents contents;
    AddTable(contents, "T1");
    AddTable(contents, "T2");
    for (TextRow& row : contents.values) {
        if (row.at("TableID") == "T2" && row.at("Resource") == "5" && row.at("FIL") == "2") {
            row["WPANRVCBF"] = "none";
        }
    }
    AddZone(contents, "A1", 2, 3, "T1");
    AddZone(contents, "B2", 2, 3, "T2");
    AddZone(contents, "C3", 1, 3, "T1");
    Write(path, contents, tables);
}

void MakeLongName(const std::filesystem::path& path) {
    Contents contents;
    AddTable(contents, "T1");
    for (const char* code : {"A1", "B2", "C3"}) {
        AddZone(contents, code, 1, 2, "T1");
    }
    contents.zones[1]["Describe"] = std::string(44, 'x');
    Write(path, contents);
}

void MakeLarge(const std::filesystem::path& path) {
    constexpr int kZones = 300;
    Contents contents;
    AddTable(contents, "T1");
    for (int zone = 1; zone <= kZones; ++zone) {
        AddZone(contents, "Z" + std::to_string(1000 + zone), 1, 3, "T1");
    }
    Write(path, contents);
}

}  // namespace

void AddZone(Contents& contents, const std::string& code, int locations, int costs,
             const std::string& table) {
    contents.zones.push_back(
        {{"FMZCode", code}, {"Describe", "Zone " + code}, {"RLCount", std::to_string(locations)}});
    for (int row = 1; row <= costs; ++row) {
        contents.costs.push_back({{"FMZCode", code},
                                  {"RowNo", std::to_string(row)},
                                  {"UpAcres", std::to_string(10 * (costs - row + 1))},
                                  {"Cost", std::to_string(100 * row)}});
    }
    for (int location = 1; location <= locations; ++location) {
        contents.setups.push_back(
            {{"FMZCode", code}, {"RL", std::to_string(location)}, {"TableID", table}});
    }
}

void AddTable(Contents& contents, const std::string& table) {
    for (int resource = 1; resource <= kResources; ++resource) {
        for (int level = 1; level <= kLevels; ++level) {
            contents.values.push_back(
                {{"TableID", table},
                 {"Resource", std::to_string(resource)},
                 {"FIL", std::to_string(level)},
                 {"WPANRVCBF", std::to_string(CellOf(table, resource, level))}});
        }
    }
}

float CellOf(const std::string& table, int resource, int level) {
    return 0.25F - static_cast<float>(10 * resource + level) -
           1000.0F * static_cast<float>(table.back() - '1');
}

Contents Basic() {
    Contents contents;
    AddTable(contents, "T1");
    AddTable(contents, "T2");
    AddZone(contents, "C3", 1, 6, "T1");
    AddZone(contents, "A1", 3, 9, "T2");
    AddZone(contents, "E5", 2, 3, "T1");
    AddZone(contents, "B2", 1, 1, "T2");
    AddZone(contents, "D4", 2, 0, "T1");
    return contents;
}

void Make(const std::filesystem::path& path) {
    const std::string name = path.filename().string();
    Contents contents = Basic();
    Tables tables = tools::AssessmentTables();
    if (name == "other-types.mdb") {
        return MakeOtherTypes(path);
    }
    if (name == "gaps.mdb") {
        return MakeGaps(path);
    }
    if (name == "apostrophe.mdb") {
        return MakeApostrophe(path);
    }
    if (name == "bad-value.mdb") {
        return MakeBadValue(path);
    }
    if (name == "long-name.mdb") {
        return MakeLongName(path);
    }
    if (name == "large.mdb") {
        return MakeLarge(path);
    }
    if (name == "no-setup.mdb") {
        contents.setups.clear();
    } else if (name == "no-zones.mdb") {
        contents.zones.clear();
    } else if (name == "no-table.mdb") {
        tables.erase(tables.begin() + (&TableOf(tables, "NVCSetup") - tables.data()));
    } else if (name == "no-index.mdb") {
        TableOf(tables, "FMZ").indexes.front().name = "Others";
    } else if (name != "basic.mdb") {
        throw std::invalid_argument("no such file is made: " + name);
    }
    Write(path, contents, tables);
}

}  // namespace bram_files
