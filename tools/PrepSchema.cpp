#include "tools/PrepSchema.h"

#include <string>

#include "tools/TableText.h"

namespace tools {

namespace {

using Type = jet::ColumnType;

const char* const kPrimaryKey = "PrimaryKey";

jet::TableSchema Properties() {
    return {"Properties",
            {Column("Property", Type::kText, 50), Column("Value", Type::kText, 255)},
            {Index(kPrimaryKey, {"Property"}, true)}};
}

jet::TableSchema ManagementGoals() {
    return {"ManagementGoals",
            {AutoNumber("Key"), Column("ManagementArea", Type::kText, 100),
             Column("Explanation", Type::kMemo)},
            {Index(kPrimaryKey, {"Key"}, true)}};
}

jet::TableSchema SRMasterList() {
    return {
        "SRMasterList",
        {AutoNumber("Key"), Column("Sequence", Type::kLong), Column("LongName", Type::kText, 50),
         Column("ShortName", Type::kText, 20), Column("Units", Type::kText, 10),
         Column("UnitType", Type::kText, 10), Column("Cost", Type::kSingle)},
        {Index(kPrimaryKey, {"Key"}, true), Index("Sequence", {"Sequence"})}};
}

jet::TableSchema FMZList() {
    return {"FMZList",
            {AutoNumber("Key"), Column("Name", Type::kText, 46), Column("RLCount", Type::kLong)},
            {Index(kPrimaryKey, {"Key"}, true)}};
}

jet::TableSchema SuppressionPerAcreCost() {
    return {"SuppressionPerAcreCost",
            {Column("FMZKey", Type::kLong), Column("Sequence", Type::kLong),
             Column("TopSize", Type::kSingle), Column("Cost", Type::kSingle)},
            {Index(kPrimaryKey, {"FMZKey", "Sequence"}, true)}};
}

jet::TableSchema NVCResources() {
    return {"NVCResources",
            {Column("Key", Type::kLong), Column("ResourceName", Type::kText, 50)},
            {Index(kPrimaryKey, {"Key"}, true)}};
}

jet::TableSchema NVCPerAcre() {
    jet::TableSchema table{"NVCPerAcre",
                           {Column("FMZRLKey", Type::kLong), Column("ResourceNumber", Type::kLong)},
                           {Index(kPrimaryKey, {"FMZRLKey", "ResourceNumber"}, true)}};
    for (int level = 1; level <= 6; ++level) {
        table.columns.push_back(Column("FIL" + std::to_string(level), Type::kSingle));
    }
    return table;
}

}  // namespace

std::vector<jet::TableSchema> PrepTables() {
    return {Properties(),   ManagementGoals(),        SRMasterList(), FMZList(),
            NVCResources(), SuppressionPerAcreCost(), NVCPerAcre()};
}

}  // namespace tools
