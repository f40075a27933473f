// Makes the files that a new user can look around in: make_samples DATA-FOLDER COSTS-FOLDER
//
// A data file and an assessment file, from the same text tables of invented figures, and the next
// year's data file, with some faults to be found.
#include <filesystem>
#include <iostream>
#include <stdexcept>
#include <string>
#include <vector>

#include "review/next_year.h"
#include "season/data_file.h"
#include "season/schema.h"
#include "tools/AssessmentSchema.h"
#include "tools/TableText.h"

namespace {

using tools::TextRow;

constexpr int kLevels = 6;
constexpr int kCostClasses = 9;

struct Sample {
    std::vector<TextRow> zones;
    std::vector<TextRow> costs;
    std::vector<TextRow> values;
};

std::string Level(int level) {
    return "FIL" + std::to_string(level);
}

// The rows with this text in this field, in their order.
std::vector<TextRow> Where(const std::vector<TextRow>& rows, const std::string& field,
                           const std::string& text) {
    std::vector<TextRow> found;
    for (const TextRow& row : rows) {
        if (row.at(field) == text) {
            found.push_back(row);
        }
    }
    return found;
}

void AddZone(jet::Database& database, const Sample& sample, const TextRow& zone, int key) {
    const std::vector<std::string> locations = tools::SplitWords(zone.at("Tables"));
    tools::AddRows(database, "FMZList",
                   {{{"Name", zone.at("Code") + "-" + zone.at("Describe")},
                     {"RLCount", std::to_string(locations.size())}}});

    std::vector<TextRow> costs;
    const std::vector<TextRow> classes = Where(sample.costs, "Code", zone.at("Code"));
    for (int sequence = 1; sequence <= kCostClasses; ++sequence) {
        TextRow row{{"FMZKey", std::to_string(key)}, {"Sequence", std::to_string(sequence)}};
        if (sequence <= static_cast<int>(classes.size())) {
            const TextRow& sizeClass = classes[static_cast<std::size_t>(sequence - 1)];
            row["TopSize"] = sizeClass.at("UpAcres");
            row["Cost"] = sizeClass.at("Cost");
        }
        costs.push_back(row);
    }
    tools::AddRows(database, "SuppressionPerAcreCost", costs);

    std::vector<TextRow> values;
    for (std::size_t location = 1; location <= locations.size(); ++location) {
        for (TextRow row : Where(sample.values, "TableID", locations[location - 1])) {
            row["FMZRLKey"] = std::to_string(static_cast<std::size_t>(key) * 100 + location);
            row["ResourceNumber"] = row.at("Resource");
            row.erase("TableID");
            row.erase("Resource");
            values.push_back(row);
        }
    }
    tools::AddRows(database, "NVCPerAcre", values);
}

void FillDataFile(jet::Database& database, const Sample& sample,
                  const std::filesystem::path& data) {
    for (const jet::TableSchema& table : season::Tables()) {
        database.CreateTable(table);
    }
    tools::AddRows(database, "Properties", tools::ReadTable(data / "template_properties.tsv"));
    tools::AddRows(database, "Properties", tools::ReadTable(data / "sample" / "properties.tsv"));
    tools::AddRows(database, "NVCResources", tools::ReadTable(data / "nvc_resources.tsv"));
    tools::AddRows(database, "ManagementGoals", tools::ReadTable(data / "sample" / "goals.tsv"));
    std::vector<TextRow> resources = tools::ReadTable(data / "sample" / "resources.tsv");
    for (std::size_t at = 0; at < resources.size(); ++at) {
        resources[at]["Sequence"] = std::to_string(at + 1);
    }
    tools::AddRows(database, "SRMasterList", resources);
    int key = 0;
    for (const TextRow& zone : Where(sample.zones, "File", "data")) {
        AddZone(database, sample, zone, ++key);
    }
}

void FillAssessmentFile(jet::Database& database, const Sample& sample) {
    for (const jet::TableSchema& table : tools::AssessmentTables()) {
        database.CreateTable(table);
    }
    for (const TextRow& zone : Where(sample.zones, "File", "assessment")) {
        const std::string& code = zone.at("Code");
        const std::vector<std::string> locations = tools::SplitWords(zone.at("Tables"));
        tools::AddRows(database, "FMZ",
                       {{{"FMZCode", code},
                         {"Describe", zone.at("Describe")},
                         {"RLCount", std::to_string(locations.size())}}});
        std::vector<TextRow> setups;
        for (std::size_t at = 0; at < locations.size(); ++at) {
            setups.push_back(
                {{"FMZCode", code}, {"RL", std::to_string(at + 1)}, {"TableID", locations[at]}});
        }
        tools::AddRows(database, "NVCSetup", setups);
        std::vector<TextRow> costs = Where(sample.costs, "Code", code);
        for (std::size_t at = 0; at < costs.size(); ++at) {
            costs[at].erase("Code");
            costs[at]["FMZCode"] = code;
            costs[at]["RowNo"] = std::to_string(at + 1);
        }
        tools::AddRows(database, "AAC", costs);
    }
    std::vector<TextRow> values;
    for (const TextRow& row : sample.values) {
        for (int level = 1; level <= kLevels; ++level) {
            values.push_back({{"TableID", row.at("TableID")},
                              {"Resource", row.at("Resource")},
                              {"FIL", std::to_string(level)},
                              {"WPANRVCBF", row.at(Level(level))}});
        }
    }
    tools::AddRows(database, "NVCTable", values);
}

// The record of that number; the tables of changes name what is there.
template <typename Record>
Record& Numbered(std::vector<Record>& records, const std::string& number) {
    return records.at(static_cast<std::size_t>(std::stoi(number) - 1));
}

void Change(season::Season& season, const TextRow& change) {
    const std::string& field = change.at("Field");
    if (change.at("Zone").empty()) {
        for (season::Property& property : season.properties) {
            if (property.name == field) {
                property.value = change.at("Value");
            }
        }
        return;
    }
    season::Zone& zone = Numbered(season.zones, change.at("Zone"));
    const float value = std::stof(change.at("Value"));
    if (field == "Cost") {
        Numbered(zone.classes, change.at("Class")).cost = value;
    } else if (field.starts_with("FIL")) {
        season::Location& location = Numbered(zone.locations, change.at("Location"));
        season::NvcRow& row = Numbered(location.rows, change.at("Resource"));
        row.values.at(static_cast<std::size_t>(std::stoi(field.substr(3)) - 1)) = value;
    } else {
        throw std::runtime_error("A change names the unknown field " + field + ".");
    }
}

void MakeNextYear(const std::filesystem::path& data, const std::filesystem::path& costs) {
    constexpr int kYear = 26;
    season::Season next = review::NextYear(season::Read(costs / "UMFOR25.FCD"), kYear, {});
    for (const TextRow& change : tools::ReadTable(data / "sample" / "next_year.tsv")) {
        Change(next, change);
    }
    std::filesystem::remove(costs / "UMFOR26.FCD");
    season::WriteNew(next, costs / "UMFOR26.FCD");
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::cerr << "usage: make_samples DATA-FOLDER COSTS-FOLDER\n";
        return 2;
    }
    const std::filesystem::path data = argv[1];
    const std::filesystem::path costs = argv[2];
    return tools::RunTool([&] {
        const Sample sample{tools::ReadTable(data / "sample" / "zones.tsv"),
                            tools::ReadTable(data / "sample" / "costs.tsv"),
                            tools::ReadTable(data / "sample" / "nvc.tsv")};
        tools::MakeFile(costs / "UMFOR25.FCD",
                        [&](jet::Database& database) { FillDataFile(database, sample, data); });
        tools::MakeFile(costs / "BRAM0000.mdb",
                        [&](jet::Database& database) { FillAssessmentFile(database, sample); });
        MakeNextYear(data, costs);
    });
}
