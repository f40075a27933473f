#include "tools/AssessmentSchema.h"

#include "tools/TableText.h"

namespace tools {

std::vector<jet::TableSchema> AssessmentTables() {
    using Type = jet::ColumnType;
    return {{"FMZ",
             {Column("FMZCode", Type::kText, 10), Column("Describe", Type::kText, 50),
              Column("RLCount", Type::kInteger)},
             {Index("FMZCode", {"FMZCode"}, true)}},
            {"AAC",
             {Column("FMZCode", Type::kText, 10), Column("RowNo", Type::kInteger),
              Column("UpAcres", Type::kSingle), Column("Cost", Type::kSingle)},
             {Index("FMZRow", {"FMZCode", "RowNo"}, true)}},
            {"NVCSetup",
             {Column("FMZCode", Type::kText, 10), Column("RL", Type::kInteger),
              Column("TableID", Type::kText, 10)},
             {Index("FMZRL", {"FMZCode", "RL"}, true)}},
            {"NVCTable",
             {Column("TableID", Type::kText, 10), Column("Resource", Type::kInteger),
              Column("FIL", Type::kInteger), Column("WPANRVCBF", Type::kSingle)},
             {Index("NVCTable", {"TableID", "Resource", "FIL"}, true)}}};
}

}  // namespace tools
