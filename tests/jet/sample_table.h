// The tables that the tests of record sets work on.
#pragma once

#include <string>

#include "jet/database.h"
#include "jet/recordset.h"
#include "jet/schema.h"

namespace jet {

// A field of every kind that both versions have, a number of its own, and three indexes.
inline TableSchema PeopleSchema() {
    TableSchema schema;
    schema.name = "People";
    schema.columns = {
        {.name = "ID", .type = ColumnType::kLong, .autoNumber = true},
        {.name = "Name", .type = ColumnType::kText, .length = 60},
        {.name = "Town", .type = ColumnType::kText, .length = 30},
        {.name = "Age", .type = ColumnType::kInteger},
        {.name = "Score", .type = ColumnType::kSingle},
        {.name = "Weight", .type = ColumnType::kDouble},
        {.name = "Paid", .type = ColumnType::kCurrency},
        {.name = "Born", .type = ColumnType::kDate},
        {.name = "Class", .type = ColumnType::kByte},
        {.name = "Active", .type = ColumnType::kBoolean},
        {.name = "Story", .type = ColumnType::kMemo},
        {.name = "Picture", .type = ColumnType::kOle},
        {.name = "Code", .type = ColumnType::kBinary, .length = 12},
    };
    schema.indexes = {
        {.name = "PrimaryKey", .columns = {{"ID"}}, .primary = true},
        {.name = "TownAge", .columns = {{"Town"}, {"Age", false}}},
        {.name = "Name", .columns = {{"Name"}}, .unique = true, .ignoreNulls = true},
    };
    return schema;
}

// Two numbers that are the key together, and a value.
inline TableSchema ZonesSchema() {
    TableSchema schema;
    schema.name = "Zones";
    schema.columns = {{.name = "Zone"}, {.name = "Place"}, {.name = "Acres"}};
    schema.columns[2].type = ColumnType::kSingle;
    schema.indexes = {{.name = "PrimaryKey", .columns = {{"Zone"}, {"Place"}}, .primary = true}};
    return schema;
}

inline void AddZone(Recordset& zones, std::int32_t zone, std::int32_t place, float acres) {
    zones.AddNew();
    zones.Set("Zone", zone);
    zones.Set("Place", place);
    zones.Set("Acres", acres);
    zones.Update();
}

inline const char* VersionName(Version version) {
    return version == Version::kJet3 ? "Jet3" : "Jet4";
}

// The kind of error that the call ends with; kIo with a failure when it ends with none.
template <typename Call>
ErrorKind ErrorOf(Call call) {
    try {
        call();
    } catch (const Error& error) {
        return error.Kind();
    }
    ADD_FAILURE() << "no error came";
    return ErrorKind::kIo;
}

}  // namespace jet
