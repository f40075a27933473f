// The catalog: which tables a file has, and where their definitions are.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "catalog/system_tables.h"
#include "jet/schema.h"
#include "table/table.h"

namespace jet {

struct CatalogEntry {
    std::u16string wide;
    std::string name;  // UTF-8
    PageNumber definition;
    bool system = false;
    RowId row;  // in the catalog's own table
};

class Catalog : private TableFamily {
public:
    // kDamaged when the catalog's own tables cannot be read.
    explicit Catalog(Pager& pager);

    // All local tables, in stored order.
    [[nodiscard]] const std::vector<CatalogEntry>& Entries();
    [[nodiscard]] const CatalogEntry* Find(std::u16string_view name);
    // The table of an entry; the same object each time.
    Table& Open(const CatalogEntry& entry);
    // Errors: those of Database::CreateTable.
    void CreateTable(const TableSchema& schema);

    // The tables that the open transaction created stay, or are no longer there. The cursors on
    // the others learn of its end.
    void TransactionCommitted() noexcept;
    void TransactionRolledBack() noexcept;

private:
    Table* TableAt(PageNumber definition) override;
    void ReadEntries();
    [[nodiscard]] bool IsNameTaken(std::u16string_view name);
    [[nodiscard]] Binary OwnerOf(std::uint32_t id);
    [[nodiscard]] SecurityId Mask();
    void GrantPermissions(Operation& operation, PageNumber table, const Binary& owner);
    void ApplyStoredProperties(RowId row, Definition& definition);

    Pager* pager_;
    Table objects_;
    Table permissions_;
    std::vector<CatalogEntry> entries_;
    bool known_ = false;
    std::map<std::uint32_t, std::unique_ptr<Table>> tables_;  // by page of the definition
    std::vector<std::uint32_t> created_;                      // by the open transaction
    // Tables whose creation was rolled back: record sets may still refer to them.
    std::vector<std::map<std::uint32_t, std::unique_ptr<Table>>::node_type> dropped_;
};

}  // namespace jet
