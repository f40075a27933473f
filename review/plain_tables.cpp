#include "review/plain_tables.h"

#include <algorithm>
#include <utility>

#include "review/figures.h"
#include "review/json.h"
#include "season/text.h"

namespace review {

namespace {

using season::Season;

template <typename Type>
PlainValue Plain(const std::optional<Type>& value) {
    return value ? PlainValue(*value) : PlainValue();
}

PlainTable Properties(const Season& season) {
    PlainTable table{"Properties", {{"Property"}, {"Value"}}, {}};
    for (const season::Property& property : season.properties) {
        table.records.push_back({property.name, Plain(property.value)});
    }
    return table;
}

PlainTable ManagementGoals(const Season& season) {
    PlainTable table{
        "ManagementGoals", {{"Key", PlainType::kWhole}, {"ManagementArea"}, {"Explanation"}}, {}};
    for (const season::Goal& goal : season.goals) {
        table.records.push_back({goal.key, Plain(goal.area), Plain(goal.explanation)});
    }
    return table;
}

PlainTable SRMasterList(const Season& season) {
    PlainTable table{"SRMasterList",
                     {{"Key", PlainType::kWhole},
                      {"Sequence", PlainType::kWhole},
                      {"LongName"},
                      {"ShortName"},
                      {"Units"},
                      {"UnitType"},
                      {"Cost", PlainType::kDollars}},
                     {}};
    for (const season::Resource& resource : season.resources) {
        table.records.push_back({resource.key, Plain(resource.sequence), Plain(resource.longName),
                                 Plain(resource.shortName), Plain(resource.units),
                                 Plain(resource.unitType), Plain(resource.cost)});
    }
    return table;
}

PlainTable FMZList(const Season& season) {
    PlainTable table{
        "FMZList", {{"Key", PlainType::kWhole}, {"Name"}, {"RLCount", PlainType::kWhole}}, {}};
    for (const season::Zone& zone : season.zones) {
        table.records.push_back({zone.key, Plain(zone.name), Plain(zone.rlCount)});
    }
    return table;
}

PlainTable NVCResources(const Season& season) {
    PlainTable table{
        "NVCResources", {{season.nvcKeyField, PlainType::kWhole}, {"ResourceName"}}, {}};
    for (const season::NvcResource& resource : season.nvcResources) {
        table.records.push_back({resource.number, Plain(resource.name)});
    }
    return table;
}

// By the two whole numbers that each record begins with.
void Sort(PlainTable& table) {
    const auto key = [](const std::vector<PlainValue>& record) {
        return std::pair(std::get<std::int32_t>(record[0]), std::get<std::int32_t>(record[1]));
    };
    std::stable_sort(table.records.begin(), table.records.end(),
                     [&key](const auto& a, const auto& b) { return key(a) < key(b); });
}

PlainTable SuppressionPerAcreCost(const Season& season) {
    PlainTable table{"SuppressionPerAcreCost",
                     {{"FMZKey", PlainType::kWhole},
                      {"Sequence", PlainType::kWhole},
                      {"TopSize", PlainType::kAcres},
                      {"Cost", PlainType::kDollars}},
                     {}};
    const auto add = [&table](std::int32_t key, const season::CostClass& row) {
        table.records.push_back({key, row.number, Plain(row.topSize), Plain(row.cost)});
    };
    for (const season::Zone& zone : season.zones) {
        for (const season::CostClass& row : zone.classes) {
            add(zone.key, row);
        }
    }
    for (const season::StrayCost& stray : season.strayCosts) {
        add(stray.zoneKey, stray.row);
    }
    Sort(table);
    return table;
}

PlainTable NVCPerAcre(const Season& season) {
    PlainTable table{
        "NVCPerAcre", {{"FMZRLKey", PlainType::kWhole}, {"ResourceNumber", PlainType::kWhole}}, {}};
    for (int level = 1; level <= season::kFilLevels; ++level) {
        table.fields.push_back({"FIL" + std::to_string(level), PlainType::kDollars});
    }
    const auto add = [&table](std::int64_t key, const season::NvcRow& row) {
        std::vector<PlainValue>& record = table.records.emplace_back();
        record = {static_cast<std::int32_t>(key), row.resource};
        for (const season::Single& value : row.values) {
            record.push_back(Plain(value));
        }
    };
    for (const season::Zone& zone : season.zones) {
        for (const season::Location& location : zone.locations) {
            for (const season::NvcRow& row : location.rows) {
                add(season::JoinKey(zone.key, location.number), row);
            }
        }
    }
    for (const season::StrayNvc& stray : season.strayNvc) {
        add(stray.locationKey, stray.row);
    }
    Sort(table);
    return table;
}

std::string JsonValue(const PlainValue& value) {
    if (const auto* whole = std::get_if<std::int32_t>(&value)) {
        return std::to_string(*whole);
    }
    if (const auto* number = std::get_if<float>(&value)) {
        return JsonNumber(season::Single(*number));
    }
    const auto* const text = std::get_if<std::string>(&value);
    return text != nullptr ? JsonText(*text) : "null";
}

std::string CsvText(std::string_view text) {
    const std::string sound = season::WellFormed(text);
    if (!sound.empty() && sound.find_first_of(",\"\r\n") == std::string::npos &&
        sound.front() != ' ' && sound.back() != ' ') {
        return sound;
    }
    std::string quoted = "\"";
    for (const char c : sound) {
        quoted += c == '"' ? "\"\"" : std::string(1, c);
    }
    return quoted + '"';
}

std::string CsvValue(const PlainValue& value) {
    if (const auto* text = std::get_if<std::string>(&value)) {
        return CsvText(*text);
    }
    if (std::holds_alternative<std::monostate>(value)) {
        return {};
    }
    std::string number = JsonValue(value);
    std::erase(number, '"');  // infinite numbers are words
    return number;
}

}  // namespace

std::vector<PlainTable> PlainTables(const Season& season) {
    return {Properties(season), ManagementGoals(season),        SRMasterList(season),
            FMZList(season),    SuppressionPerAcreCost(season), NVCResources(season),
            NVCPerAcre(season)};
}

std::string JsonOfTables(const std::vector<PlainTable>& tables) {
    std::string json = "{";
    for (const PlainTable& table : tables) {
        json += (json.size() > 1 ? ",\n" : "\n") + JsonText(table.name) + ": [";
        bool isFirst = true;
        for (const auto& record : table.records) {
            JsonObject object;
            for (std::size_t i = 0; i < record.size(); ++i) {
                object.AddRaw(table.fields[i].name, JsonValue(record[i]));
            }
            json += (isFirst ? "\n" : ",\n") + object.Text();
            isFirst = false;
        }
        json += "]";
    }
    return json + "\n}\n";
}

std::string CsvOf(const PlainTable& table) {
    std::string csv;
    const auto endLine = [&csv] { csv.back() = '\n'; };
    for (const PlainField& field : table.fields) {
        csv += CsvText(field.name) + ',';
    }
    endLine();
    for (const auto& record : table.records) {
        for (const PlainValue& value : record) {
            csv += CsvValue(value) + ',';
        }
        endLine();
    }
    return csv;
}

}  // namespace review
