// The catalog: which tables there are, and whether what it says of them holds.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "check/account.h"
#include "check/row_check.h"
#include "check/table_layout.h"

namespace jet {

struct ListedObject {
    RowId row;
    std::string name;
    std::uint32_t page = 0;  // of the table's definition
    bool system = false;     // made by the engine or for itself by another program
    bool hidden = false;     // marked so, but named like one that a user made
    Binary properties;
};

// Collects the rows of the system table of objects.
class CatalogCheck {
public:
    CatalogCheck(CheckContext& context, const TableLayout& objects);

    // False when the table lacks the columns that a catalog must have.
    [[nodiscard]] bool IsReadable() const { return readable_; }
    void AddRow(const CheckedRow& row);
    // The tables of the catalog whose definition can be there.
    [[nodiscard]] const std::vector<ListedObject>& Tables() const { return tables_; }
    // How many objects of other kinds there are, by kind.
    [[nodiscard]] const std::map<std::int32_t, std::uint32_t>& Others() const { return others_; }

private:
    [[nodiscard]] std::size_t Find(const char* column);
    void CheckProperties(Bytes blob, const Spot& spot);

    CheckContext& context_;
    const TableLayout& objects_;
    bool readable_ = true;
    std::size_t id_, name_, type_, flags_, properties_;
    std::map<std::int32_t, std::uint32_t> others_;
    std::vector<ListedObject> tables_;
    std::map<std::uint32_t, std::string> names_;  // by page
};

// Both sides of every relationship must name each other.
void CheckRelations(CheckContext& context, const std::vector<TableLayout>& tables);

}  // namespace jet
