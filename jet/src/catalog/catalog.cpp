#include "catalog/catalog.h"

#include <algorithm>

#include "catalog/new_table.h"
#include "catalog/properties.h"
#include "catalog/table_maker.h"
#include "jet/error.h"
#include "page/bytes.h"
#include "table/row_cursor.h"
#include "values/text.h"

namespace jet {

namespace {

constexpr std::uint32_t kPageMask = 0xFFFFFF;

// The columns of the catalog that are read, by name: files differ in what else is there.
struct ObjectColumns {
    explicit ObjectColumns(const Table& objects)
        : id(Position(objects, u"Id")),
          parent(Position(objects, u"ParentId")),
          name(Position(objects, u"Name")),
          type(Position(objects, u"Type")),
          owner(Position(objects, u"Owner")),
          flags(Position(objects, u"Flags")),
          properties(Position(objects, u"LvProp")) {}

    static std::size_t Position(const Table& table, std::u16string_view name) {
        const auto found = table.Def().FindColumn(name);
        if (!found) {
            ThrowDamaged("The file is damaged: its catalog lacks a field.");
        }
        return *found;
    }

    std::size_t id, parent, name, type, owner, flags, properties;
};

std::int32_t NumberOf(const Value& value) {
    return value.IsNull() ? 0 : value.AsLong();
}

// Calls visit(row id, view) for each row until it gives false.
template <typename Visit>
void ForEachRow(Table& table, Visit visit) {
    StoredRow stored;
    RowCursor cursor(table.Rows());
    for (bool on = cursor.SeekToFirst(); on; on = cursor.Next()) {
        if (!table.Rows().Find(cursor.Row(), stored)) continue;
        if (!visit(cursor.Row(), table.View(stored.bytes))) return;
    }
}

Binary BytesOf(const Value& value) {
    const auto* bytes = std::get_if<Binary>(&value.Get());
    return bytes == nullptr ? Binary{} : *bytes;
}

}  // namespace

Catalog::Catalog(Pager& pager)
    : pager_(&pager),
      objects_(pager, "MSysObjects", ReadDefinition(pager, pager.Header().objects)),
      permissions_(pager, "MSysACEs", ReadDefinition(pager, pager.Header().accessControl)) {
    const ObjectColumns columns(objects_);
    static_cast<void>(columns);
}

const std::vector<CatalogEntry>& Catalog::Entries() {
    if (!known_) ReadEntries();
    return entries_;
}

void Catalog::ReadEntries() {
    const ObjectColumns columns(objects_);
    entries_.clear();
    ForEachRow(objects_, [&](RowId row, const RowView& view) {
        const std::int32_t type = NumberOf(objects_.ReadValue(view, columns.type));
        if (type != static_cast<std::int32_t>(ObjectType::kTable)) return true;
        CatalogEntry entry;
        if (!objects_.ReadText(view, columns.name, entry.wide)) return true;
        entry.name = NarrowName(entry.wide);
        const auto id = static_cast<std::uint32_t>(NumberOf(objects_.ReadValue(view, columns.id)));
        entry.definition = PageNumber{id & kPageMask};
        const auto flags =
            static_cast<std::uint32_t>(NumberOf(objects_.ReadValue(view, columns.flags)));
        entry.system = (flags & (kSystemObject | kSystemObjectOfProgram)) != 0;
        entry.row = row;
        entries_.push_back(std::move(entry));
        return true;
    });
    known_ = true;
}

const CatalogEntry* Catalog::Find(std::u16string_view name) {
    for (const CatalogEntry& entry : Entries()) {
        if (SameName(entry.wide, name, pager_->FileFormat().version)) return &entry;
    }
    return nullptr;
}

void Catalog::ApplyStoredProperties(RowId row, Definition& definition) {
    StoredRow stored;
    if (!objects_.Rows().Find(row, stored)) return;
    const ObjectColumns columns(objects_);
    const Value properties = objects_.ReadValue(objects_.View(stored.bytes), columns.properties);
    ApplyProperties(BytesOf(properties), definition);
}

Table& Catalog::Open(const CatalogEntry& entry) {
    std::unique_ptr<Table>& table = tables_[entry.definition.value];
    if (!table) {
        Definition definition = ReadDefinition(*pager_, entry.definition);
        ApplyStoredProperties(entry.row, definition);
        TableFamily* const family = this;
        table = std::make_unique<Table>(*pager_, entry.name, std::move(definition), family);
    }
    return *table;
}

Table* Catalog::TableAt(PageNumber definition) {
    for (const CatalogEntry& entry : Entries()) {
        if (entry.definition == definition) return &Open(entry);
    }
    return nullptr;
}

// Tables, links and queries share one set of names.
bool Catalog::IsNameTaken(std::u16string_view name) {
    const ObjectColumns columns(objects_);
    bool taken = false;
    std::u16string other;
    ForEachRow(objects_, [&](RowId, const RowView& view) {
        const auto parent =
            static_cast<std::uint32_t>(NumberOf(objects_.ReadValue(view, columns.parent)));
        taken = parent == kTablesId && objects_.ReadText(view, columns.name, other) &&
                SameName(other, name, pager_->FileFormat().version);
        return !taken;
    });
    return taken;
}

// The stored owner of the object with this id.
Binary Catalog::OwnerOf(std::uint32_t id) {
    const ObjectColumns columns(objects_);
    Binary owner;
    ForEachRow(objects_, [&](RowId, const RowView& view) {
        if (static_cast<std::uint32_t>(NumberOf(objects_.ReadValue(view, columns.id))) != id) {
            return true;
        }
        owner = BytesOf(objects_.ReadValue(view, columns.owner));
        return false;
    });
    return owner;
}

// How the file masks its security ids shows in the owner of a container, which is always the
// engine itself.
SecurityId Catalog::Mask() {
    const Binary owner = OwnerOf(kTablesId);
    if (owner.size() < 2) return {};
    return {static_cast<std::uint8_t>(static_cast<std::uint8_t>(owner[0]) ^ kEngineId[0]),
            static_cast<std::uint8_t>(static_cast<std::uint8_t>(owner[1]) ^ kEngineId[1])};
}

// A new table gets what its container says that new objects inherit; the creator's share is the
// owner's.
void Catalog::GrantPermissions(Operation& operation, PageNumber table, const Binary& owner) {
    struct Grant {
        Binary holder;
        std::uint32_t mask;
    };
    const std::size_t object = ObjectColumns::Position(permissions_, u"ObjectId");
    const std::size_t holder = ObjectColumns::Position(permissions_, u"SID");
    const std::size_t mask = ObjectColumns::Position(permissions_, u"ACM");
    const std::size_t inheritable = ObjectColumns::Position(permissions_, u"FInheritable");
    const Binary creator = MaskedId(kCreatorId, Mask());
    std::vector<Grant> grants;
    ForEachRow(permissions_, [&](RowId, const RowView& view) {
        const Value id = permissions_.ReadValue(view, object);
        if (static_cast<std::uint32_t>(NumberOf(id)) != kTablesId ||
            !permissions_.ReadValue(view, inheritable).AsBoolean()) {
            return true;
        }
        Binary who = BytesOf(permissions_.ReadValue(view, holder));
        if (who == creator) who = owner;
        const auto bits = static_cast<std::uint32_t>(NumberOf(permissions_.ReadValue(view, mask)));
        const auto same = std::find_if(grants.begin(), grants.end(),
                                       [&](const Grant& grant) { return grant.holder == who; });
        if (same == grants.end()) {
            grants.push_back({std::move(who), bits});
        } else {
            same->mask |= bits;
        }
        return true;
    });
    for (const Grant& grant : grants) {
        permissions_.Insert(
            operation,
            PermissionRow(permissions_, table.value, grant.holder, grant.mask, false).Values());
    }
}

void Catalog::CreateTable(const TableSchema& schema) {
    const Version version = pager_->FileFormat().version;
    Definition definition = DefinitionOf(schema, version);
    PlaceColumns(definition, pager_->Header());
    RequireIndexable(definition);
    RequireRowFits(definition, pager_->FileFormat());
    const std::u16string name = WidenName(schema.name);
    if (IsNameTaken(name)) {
        throw Error(ErrorKind::kAlreadyExists, "The table '" + schema.name + "' already exists.");
    }
    const Binary owner = OwnerOf(kDatabaseId);
    const std::vector<std::byte> properties = BuildProperties(schema, version);
    if (pager_->InTransaction()) {
        created_.reserve(created_.size() + 1);
        dropped_.reserve(dropped_.size() + created_.size() + 1);
    }
    Operation operation(*pager_);
    definition.page = operation.Allocate();
    MakeTablePages(operation, definition);
    SystemRow row =
        ObjectRow(objects_, definition.page.value, kTablesId, name, ObjectType::kTable, owner, 0);
    if (!properties.empty()) row.Set(u"LvProp", properties);
    objects_.Insert(operation, row.Values());
    GrantPermissions(operation, definition.page, owner);
    operation.Commit();
    known_ = false;
    if (pager_->InTransaction()) created_.push_back(definition.page.value);
}

void Catalog::TransactionCommitted() noexcept {
    created_.clear();
    for (const auto& [page, table] : tables_) {
        if (table) table->Rows().Cursors().TransactionCommitted();
    }
}

void Catalog::TransactionRolledBack() noexcept {
    known_ = false;
    for (const std::uint32_t page : created_) {
        auto table = tables_.extract(page);
        if (table.empty() || !table.mapped()) continue;
        table.mapped()->Drop();
        dropped_.push_back(std::move(table));
    }
    created_.clear();
    for (const auto& [page, table] : tables_) {
        if (table) table->Rows().Cursors().TransactionRolledBack();
    }
}

}  // namespace jet
