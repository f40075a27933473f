#include <algorithm>
#include <limits>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>

#include "jet/check.h"
#include "jet/database.h"
#include "jet/recordset.h"
#include "season/data_file.h"
#include "season/schema.h"
#include "season/text.h"

namespace season {

namespace {

constexpr const char* kPrimaryKey = "PrimaryKey";

// A table in the order of its primary key.
class Rows {
public:
    Rows(jet::Database& database, const char* table) {
        records_ = database.OpenTable(table);
        records_->SetIndex(kPrimaryKey);
    }

    // A field that the table lacks reads as null.
    [[nodiscard]] int Field(std::string_view name) const {
        try {
            return records_->Field(name).position;
        } catch (const jet::Error& error) {
            if (error.Kind() != jet::ErrorKind::kNoSuchField) {
                throw;
            }
            return -1;
        }
    }

    template <typename Take>
    void Each(const Take& take) {
        for (; !records_->IsEof(); records_->MoveNext()) {
            take();
        }
    }
    void InStoredOrder() { records_->SetIndex(""); }

    [[nodiscard]] Whole Long(int field) const {
        std::int32_t value = 0;
        return field >= 0 && records_->ReadLong({field}, value) ? Whole(value) : std::nullopt;
    }
    [[nodiscard]] std::int32_t Key(int field) const { return Long(field).value_or(0); }
    [[nodiscard]] Single Number(int field) const {
        float value = 0;
        try {
            return field >= 0 && records_->ReadSingle({field}, value) ? Single(value)
                                                                      : std::nullopt;
        } catch (const jet::Error& error) {
            if (error.Kind() != jet::ErrorKind::kOverflow) {
                throw;
            }
            return Beyond(field);
        }
    }
    [[nodiscard]] Text Words(int field) {
        if (field < 0) {
            return std::nullopt;
        }
        return records_->ReadText({field}, text_) ? Text(ToUtf8(text_)) : std::nullopt;
    }

private:
    // A field of another type may hold a number that no single can.
    [[nodiscard]] Single Beyond(int field) const {
        double value = 0;
        records_->ReadDouble({field}, value);
        constexpr float kInfinite = std::numeric_limits<float>::infinity();
        return value < 0 ? -kInfinite : kInfinite;
    }

    std::unique_ptr<jet::Recordset> records_;
    std::u16string text_;
};

void ReadProperties(jet::Database& database, Season& season) {
    Rows rows(database, "Properties");
    const int name = rows.Field("Property");
    const int value = rows.Field("Value");
    rows.Each([&] {
        season.properties.push_back({rows.Words(name).value_or(""), rows.Words(value)});
    });
}

void ReadGoals(jet::Database& database, Season& season) {
    Rows rows(database, "ManagementGoals");
    const int key = rows.Field("Key");
    const int area = rows.Field("ManagementArea");
    const int explanation = rows.Field("Explanation");
    rows.Each([&] {
        season.goals.push_back({rows.Key(key), rows.Words(area), rows.Words(explanation)});
    });
}

void ReadResources(jet::Database& database, Season& season) {
    Rows rows(database, "SRMasterList");
    const int key = rows.Field("Key");
    const int sequence = rows.Field("Sequence");
    const int longName = rows.Field("LongName");
    const int shortName = rows.Field("ShortName");
    const int units = rows.Field("Units");
    const int unitType = rows.Field("UnitType");
    const int cost = rows.Field("Cost");
    rows.Each([&] {
        season.resources.push_back({.key = rows.Key(key),
                                    .sequence = rows.Long(sequence),
                                    .longName = rows.Words(longName),
                                    .shortName = rows.Words(shortName),
                                    .units = rows.Words(units),
                                    .unitType = rows.Words(unitType),
                                    .cost = rows.Number(cost)});
    });
    // A resource that was just added has no place yet; an index begins with those.
    std::stable_sort(season.resources.begin(), season.resources.end(),
                     [](const Resource& a, const Resource& b) { return a.sequence < b.sequence; });
}

void ReadZones(jet::Database& database, Season& season) {
    Rows rows(database, "FMZList");
    const int key = rows.Field("Key");
    const int name = rows.Field("Name");
    const int rlCount = rows.Field("RLCount");
    rows.Each([&] {
        Zone zone;
        zone.key = rows.Key(key);
        zone.name = rows.Words(name);
        zone.rlCount = rows.Long(rlCount);
        season.zones.push_back(std::move(zone));
    });
}

void ReadNvcResources(jet::Database& database, Season& season) {
    const char* const table = "NVCResources";
    Rows rows(database, table);
    // The key has this name or that; its index decides.
    int number = -1;
    for (const jet::IndexSchema& index : database.Describe(table).indexes) {
        if (Folded(index.name) == Folded(kPrimaryKey) && !index.columns.empty()) {
            season.nvcKeyField = index.columns.front().name;
            number = rows.Field(season.nvcKeyField);
        }
    }
    const int name = rows.Field("ResourceName");
    rows.Each([&] { season.nvcResources.push_back({rows.Key(number), rows.Words(name)}); });
}

// The zones by key.
class ZonesByKey {
public:
    explicit ZonesByKey(Season& season) {
        for (Zone& zone : season.zones) {
            zones_.try_emplace(zone.key, &zone);
        }
    }
    [[nodiscard]] Zone* Find(std::int64_t key) {
        // Rows of one zone follow one another as a rule.
        if (last_ == nullptr || last_->key != key) {
            const auto found = zones_.find(key);
            last_ = found == zones_.end() ? nullptr : found->second;
        }
        return last_;
    }

private:
    std::unordered_map<std::int64_t, Zone*> zones_;
    Zone* last_ = nullptr;
};

void ReadCosts(jet::Database& database, Season& season) {
    Rows rows(database, "SuppressionPerAcreCost");
    const int zoneKey = rows.Field("FMZKey");
    const int number = rows.Field("Sequence");
    const int topSize = rows.Field("TopSize");
    const int cost = rows.Field("Cost");
    ZonesByKey zones(season);
    rows.InStoredOrder();
    rows.Each([&] {
        const CostClass row{rows.Key(number), rows.Number(topSize), rows.Number(cost)};
        const std::int32_t key = rows.Key(zoneKey);
        if (Zone* zone = zones.Find(key)) {
            zone->classes.push_back(row);
        } else {
            season.strayCosts.push_back({key, row});
        }
    });
}

Location& LocationOf(Zone& zone, std::int32_t number) {
    if (!zone.locations.empty() && zone.locations.back().number == number) {
        return zone.locations.back();
    }
    for (Location& location : zone.locations) {
        if (location.number == number) {
            return location;
        }
    }
    Location& added = zone.locations.emplace_back();
    added.number = number;
    added.rows.reserve(kNvcResources);
    return added;
}

void ReadNvc(jet::Database& database, Season& season) {
    Rows rows(database, "NVCPerAcre");
    const int locationKey = rows.Field("FMZRLKey");
    const int resource = rows.Field("ResourceNumber");
    std::array<int, kFilLevels> levels{};
    for (int level = 1; level <= kFilLevels; ++level) {
        levels[static_cast<std::size_t>(level - 1)] = rows.Field("FIL" + std::to_string(level));
    }
    ZonesByKey zones(season);
    rows.InStoredOrder();
    rows.Each([&] {
        NvcRow row;
        row.resource = rows.Key(resource);
        for (std::size_t i = 0; i < levels.size(); ++i) {
            row.values[i] = rows.Number(levels[i]);
        }
        const std::int32_t key = rows.Key(locationKey);
        const LocationKey place = SplitKey(key);
        if (Zone* zone = zones.Find(place.zone)) {
            LocationOf(*zone, place.location).rows.push_back(row);
        } else {
            season.strayNvc.push_back({key, row});
        }
    });
}

// Rows lie in the order in which they were stored; here they are wanted by their numbers.
void Order(Season& season) {
    const auto sort = [](auto& items, auto member) {
        const auto before = [member](const auto& a, const auto& b) {
            return a.*member < b.*member;
        };
        if (!std::is_sorted(items.begin(), items.end(), before)) {
            std::stable_sort(items.begin(), items.end(), before);
        }
    };
    for (Zone& zone : season.zones) {
        sort(zone.classes, &CostClass::number);
        sort(zone.locations, &Location::number);
        for (Location& location : zone.locations) {
            sort(location.rows, &NvcRow::resource);
        }
    }
    sort(season.strayCosts, &StrayCost::zoneKey);
    sort(season.strayNvc, &StrayNvc::locationKey);
}

// What opens in TARN Prep: the formats that it knows, without damage.
void RequireAccepted(jet::Database& database, Season& season) {
    season.format = season.PropertyText("DataFormatID");
    for (const char* const known : {kCurrentFormat, "4.00.00", "3.92.00", "3.00.00"}) {
        if (season.format == known) {
            for (const jet::Finding& finding : jet::CheckDatabase(database).findings) {
                if (finding.severity == jet::Severity::kError) {
                    throw Refused("The file is damaged: " + finding.sentence);
                }
            }
            return;
        }
    }
    throw Refused(
        season.format.empty()
            ? "This file uses an incompatible format and cannot be opened: it does not say which."
            : "This file uses an incompatible format and cannot be opened: " + season.format + ".");
}

void ReadTables(jet::Database& database, Season& season) {
    ReadProperties(database, season);
    RequireAccepted(database, season);
    if (season.format != "3.00.00" || database.HasTable("ManagementGoals")) {
        ReadGoals(database, season);
    }
    ReadZones(database, season);
    ReadCosts(database, season);
    ReadResources(database, season);
    ReadNvcResources(database, season);
    ReadNvc(database, season);
    Order(season);
}

bool IsAboutContents(jet::ErrorKind kind) {
    return kind == jet::ErrorKind::kNoSuchTable || kind == jet::ErrorKind::kNoSuchIndex ||
           kind == jet::ErrorKind::kNotADatabase || kind == jet::ErrorKind::kTypeMismatch;
}

}  // namespace

Season Read(const std::filesystem::path& path, jet::FileSystem& files) {
    try {
        Season season;
        season.path = path;
        const auto database =
            jet::Database::Open(path, {.exclusive = false, .readOnly = true}, files);
        season.version = database->FileVersion();
        ReadTables(*database, season);
        season.bytes = files.Open(path, jet::OpenMode::kReadOnly)->Size();
        return season;
    } catch (const jet::Error& error) {
        throw Refused(IsAboutContents(error.Kind())
                          ? std::string("The file does not appear to be a TARN Prep file: ") +
                                error.what()
                          : std::string(error.what()));
    }
}

}  // namespace season
