#include "season/schema.h"

#include <string>
#include <utility>

namespace season {

namespace {

using Type = jet::ColumnType;

const char* const kPrimaryKey = "PrimaryKey";

jet::ColumnSchema Column(std::string name, Type type, int length = 0) {
    jet::ColumnSchema column;
    column.name = std::move(name);
    column.type = type;
    column.length = length;
    return column;
}

jet::ColumnSchema AutoNumber(std::string name) {
    jet::ColumnSchema column = Column(std::move(name), Type::kLong);
    column.autoNumber = true;
    return column;
}

jet::IndexSchema PrimaryKey(const std::vector<std::string>& columns) {
    jet::IndexSchema index;
    index.name = kPrimaryKey;
    for (const std::string& column : columns) {
        index.columns.push_back({column, true});
    }
    index.primary = true;
    index.unique = true;
    index.required = true;
    return index;
}

jet::TableSchema Properties() {
    return {"Properties",
            {Column("Property", Type::kText, 50), Column("Value", Type::kText, 255)},
            {PrimaryKey({"Property"})}};
}

jet::TableSchema ManagementGoals() {
    return {"ManagementGoals",
            {AutoNumber("Key"), Column("ManagementArea", Type::kText, 100),
             Column("Explanation", Type::kMemo)},
            {PrimaryKey({"Key"})}};
}

jet::TableSchema SRMasterList() {
    jet::IndexSchema order;
    order.name = "Sequence";
    order.columns = {{"Sequence", true}};
    return {
        "SRMasterList",
        {AutoNumber("Key"), Column("Sequence", Type::kLong), Column("LongName", Type::kText, 50),
         Column("ShortName", Type::kText, 20), Column("Units", Type::kText, 10),
         Column("UnitType", Type::kText, 10), Column("Cost", Type::kSingle)},
        {PrimaryKey({"Key"}), order}};
}

jet::TableSchema FMZList() {
    return {"FMZList",
            {AutoNumber("Key"), Column("Name", Type::kText, 46), Column("RLCount", Type::kLong)},
            {PrimaryKey({"Key"})}};
}

jet::TableSchema SuppressionPerAcreCost() {
    return {"SuppressionPerAcreCost",
            {Column("FMZKey", Type::kLong), Column("Sequence", Type::kLong),
             Column("TopSize", Type::kSingle), Column("Cost", Type::kSingle)},
            {PrimaryKey({"FMZKey", "Sequence"})}};
}

jet::TableSchema NVCResources() {
    return {"NVCResources",
            {Column("Key", Type::kLong), Column("ResourceName", Type::kText, 50)},
            {PrimaryKey({"Key"})}};
}

jet::TableSchema NVCPerAcre() {
    jet::TableSchema table{"NVCPerAcre",
                           {Column("FMZRLKey", Type::kLong), Column("ResourceNumber", Type::kLong)},
                           {PrimaryKey({"FMZRLKey", "ResourceNumber"})}};
    for (int level = 1; level <= 6; ++level) {
        table.columns.push_back(Column("FIL" + std::to_string(level), Type::kSingle));
    }
    return table;
}

}  // namespace

std::vector<jet::TableSchema> Tables() {
    return {Properties(),   ManagementGoals(),        SRMasterList(), FMZList(),
            NVCResources(), SuppressionPerAcreCost(), NVCPerAcre()};
}

}  // namespace season
