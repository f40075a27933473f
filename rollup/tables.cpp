#include "rollup/tables.h"

#include <array>

#include "season/text.h"

namespace rollup {

namespace {

using enum ColumnType;

constexpr std::array kFileColumns{
    Column{"file_id", kText},   Column{"path", kText},   Column{"sha256", kText},
    Column{"bytes", kWhole},    Column{"format", kText}, Column{"jet", kWhole},
    Column{"unit", kText},      Column{"state", kText},  Column{"year", kWhole},
    Column{"unit_name", kText}, Column{"status", kText}, Column{"reason", kText}};
constexpr std::array kPropertyColumns{Column{"file_id", kText}, Column{"year", kWhole},
                                      Column{"property", kText}, Column{"value", kText}};
constexpr std::array kGoalColumns{Column{"file_id", kText}, Column{"year", kWhole},
                                  Column{"number", kWhole}, Column{"area", kText},
                                  Column{"explanation", kText}};
constexpr std::array kResourceColumns{Column{"file_id", kText},    Column{"year", kWhole},
                                      Column{"sequence", kWhole},  Column{"long_name", kText},
                                      Column{"short_name", kText}, Column{"units", kText},
                                      Column{"unit_type", kText},  Column{"cost", kNumber}};
constexpr std::array kZoneColumns{Column{"file_id", kText}, Column{"year", kWhole},
                                  Column{"zone", kWhole}, Column{"name", kText},
                                  Column{"rl_count", kWhole}};
constexpr std::array kCostColumns{Column{"file_id", kText},    Column{"year", kWhole},
                                  Column{"zone", kWhole},      Column{"class", kWhole},
                                  Column{"top_size", kNumber}, Column{"cost", kNumber}};
constexpr std::array kNvcResourceColumns{Column{"file_id", kText}, Column{"year", kWhole},
                                         Column{"resource", kWhole}, Column{"name", kText}};
constexpr std::array kNvcColumns{
    Column{"file_id", kText},   Column{"year", kWhole},     Column{"zone", kWhole},
    Column{"location", kWhole}, Column{"resource", kWhole}, Column{"fil1", kNumber},
    Column{"fil2", kNumber},    Column{"fil3", kNumber},    Column{"fil4", kNumber},
    Column{"fil5", kNumber},    Column{"fil6", kNumber},    Column{"live", kTruth}};

constexpr std::array<Table, kTables> kAll{
    Table{TableId::kFiles, "files", kFileColumns},
    Table{TableId::kProperties, "properties", kPropertyColumns},
    Table{TableId::kGoals, "goals", kGoalColumns},
    Table{TableId::kResources, "resources", kResourceColumns},
    Table{TableId::kZones, "zones", kZoneColumns},
    Table{TableId::kCosts, "costs", kCostColumns},
    Table{TableId::kNvcResources, "nvc_resources", kNvcResourceColumns},
    Table{TableId::kNvc, "nvc", kNvcColumns}};

template <typename Value>
Cell CellOf(const std::optional<Value>& value) {
    return value ? Cell(*value) : Cell();
}
Cell CellOf(const std::optional<std::string>& text) {
    return text ? Cell(std::string_view(*text)) : Cell();
}
Cell CellOf(const season::Whole& number) {
    return number ? Cell(std::int64_t{*number}) : Cell();
}
Cell CellOf(const season::Single& number) {
    return number ? Cell(double{*number}) : Cell();
}

// A text that lives as long as a row is made.
class WellFormed {
public:
    explicit WellFormed(const season::Text& text)
        : text_(text ? std::optional(season::WellFormed(*text)) : std::nullopt) {}
    [[nodiscard]] Cell AsCell() const { return CellOf(text_); }

private:
    std::optional<std::string> text_;
};

// Gives the rows of one file to who takes them.
class Rows {
public:
    Rows(const FileRow& file, const TakeRow& take)
        : id_(CellOf(file.fileId)), year_(CellOf(file.year)), take_(take) {}

    template <typename... Cells>
    void Give(TableId table, const Cells&... cells) const {
        const std::array<Cell, sizeof...(Cells) + 2> row{id_, year_, cells...};
        take_(table, row);
    }
    void GiveCost(std::int64_t zone, const season::CostClass& row) const {
        Give(TableId::kCosts, Cell(zone), Cell(std::int64_t{row.number}), CellOf(row.topSize),
             CellOf(row.cost));
    }
    void GiveNvc(std::int64_t zone, std::int64_t location, const season::NvcRow& row,
                 bool live) const {
        const auto& v = row.values;
        static_assert(season::kFilLevels == 6);
        Give(TableId::kNvc, Cell(zone), Cell(location), Cell(std::int64_t{row.resource}),
             CellOf(v[0]), CellOf(v[1]), CellOf(v[2]), CellOf(v[3]), CellOf(v[4]), CellOf(v[5]),
             Cell(live));
    }
    void GiveZone(const season::Zone& zone) const {
        Give(TableId::kZones, Cell(std::int64_t{zone.key}), WellFormed(zone.name).AsCell(),
             CellOf(zone.rlCount));
    }

private:
    Cell id_;
    Cell year_;
    const TakeRow& take_;
};

void ListRows(const season::Season& season, const Rows& rows) {
    for (const season::Property& property : season.properties) {
        rows.Give(TableId::kProperties, WellFormed(property.name).AsCell(),
                  WellFormed(property.value).AsCell());
    }
    for (const season::Goal& goal : season.goals) {
        rows.Give(TableId::kGoals, Cell(std::int64_t{goal.key}), WellFormed(goal.area).AsCell(),
                  WellFormed(goal.explanation).AsCell());
    }
    for (const season::Resource& resource : season.resources) {
        rows.Give(TableId::kResources, CellOf(resource.sequence),
                  WellFormed(resource.longName).AsCell(), WellFormed(resource.shortName).AsCell(),
                  WellFormed(resource.units).AsCell(), WellFormed(resource.unitType).AsCell(),
                  CellOf(resource.cost));
    }
    for (const season::NvcResource& resource : season.nvcResources) {
        rows.Give(TableId::kNvcResources, Cell(std::int64_t{resource.number}),
                  WellFormed(resource.name).AsCell());
    }
}

void ZoneRows(const season::Season& season, const Rows& rows) {
    for (const season::Zone& zone : season.zones) {
        rows.GiveZone(zone);
        for (const season::CostClass& row : zone.classes) {
            rows.GiveCost(zone.key, row);
        }
        for (const season::Location& location : zone.locations) {
            const bool live = location.number <= season::LiveCount(zone);
            for (const season::NvcRow& row : location.rows) {
                rows.GiveNvc(zone.key, location.number, row, live);
            }
        }
    }
    for (const season::StrayCost& stray : season.strayCosts) {
        rows.GiveCost(stray.zoneKey, stray.row);
    }
    for (const season::StrayNvc& stray : season.strayNvc) {
        const season::LocationKey place = season::SplitKey(stray.locationKey);
        rows.GiveNvc(place.zone, place.location, stray.row, false);
    }
}

}  // namespace

static_assert(kFileColumns[kYearOfFiles].name == "year" && kNvcColumns[kYearOfRows].name == "year");

std::span<const Table> Tables() {
    return kAll;
}

std::string_view StatusName(Status status) {
    switch (status) {
        case Status::kRead:
            return "read";
        case Status::kDuplicate:
            return "duplicate";
        case Status::kRefused:
            break;
    }
    return "refused";
}

Status StatusOf(std::string_view name) {
    for (const Status status : {Status::kRead, Status::kDuplicate}) {
        if (StatusName(status) == name) {
            return status;
        }
    }
    return Status::kRefused;
}

void FileCells(const FileRow& file, const TakeRow& take) {
    const std::array<Cell, kFileColumns.size()> row{CellOf(file.fileId),
                                                    Cell(std::string_view(file.path)),
                                                    CellOf(file.sha256),
                                                    CellOf(file.bytes),
                                                    CellOf(file.format),
                                                    CellOf(file.jet),
                                                    CellOf(file.unit),
                                                    CellOf(file.state),
                                                    CellOf(file.year),
                                                    CellOf(file.unitName),
                                                    Cell(StatusName(file.status)),
                                                    CellOf(file.reason)};
    take(TableId::kFiles, row);
}

void EachRow(const season::Season& season, const FileRow& file, const TakeRow& take) {
    const Rows rows(file, take);
    ListRows(season, rows);
    ZoneRows(season, rows);
}

}  // namespace rollup
