#include "catalog/system_tables.h"

#include <span>

#include "catalog/table_maker.h"
#include "jet/error.h"
#include "os/clock.h"
#include "values/text.h"

namespace jet {

namespace {

struct ColumnPlan {
    std::u16string_view name;
    ColumnType type;
    bool fixed;
    bool jet4Only = false;
};

struct IndexPlan {
    std::u16string_view name;
    std::array<int, 3> columns;  // numbers; -1 for none
    std::uint8_t flags;
    bool primary = false;
};

constexpr ColumnPlan kObjectColumns[] = {
    {u"Id", ColumnType::kLong, true},           {u"ParentId", ColumnType::kLong, true},
    {u"Name", ColumnType::kText, false},        {u"Type", ColumnType::kInteger, true},
    {u"DateCreate", ColumnType::kDate, true},   {u"DateUpdate", ColumnType::kDate, true},
    {u"Owner", ColumnType::kBinary, false},     {u"Flags", ColumnType::kLong, true},
    {u"Database", ColumnType::kMemo, false},    {u"Connect", ColumnType::kMemo, false},
    {u"ForeignName", ColumnType::kText, false}, {u"RmtInfoShort", ColumnType::kBinary, false},
    {u"RmtInfoLong", ColumnType::kOle, false},  {u"Lv", ColumnType::kOle, false},
    {u"LvProp", ColumnType::kOle, false},       {u"LvModule", ColumnType::kOle, false},
    {u"LvExtra", ColumnType::kOle, false}};
constexpr IndexPlan kObjectIndexes[] = {{u"ParentIdName", {1, 2, -1}, kUniqueIndex},
                                        {u"Id", {0, -1, -1}, kUniqueIndex, true}};

constexpr ColumnPlan kPermissionColumns[] = {{u"ObjectId", ColumnType::kLong, true},
                                             {u"SID", ColumnType::kBinary, false},
                                             {u"ACM", ColumnType::kLong, true},
                                             {u"FInheritable", ColumnType::kBoolean, true}};
constexpr IndexPlan kPermissionIndexes[] = {{u"ObjectId", {0, -1, -1}, kRequiredIndex}};

constexpr ColumnPlan kQueryColumns[] = {
    {u"ObjectId", ColumnType::kLong, true}, {u"Attribute", ColumnType::kByte, true},
    {u"Order", ColumnType::kBinary, false}, {u"Name1", ColumnType::kText, false},
    {u"Name2", ColumnType::kText, false},   {u"Expression", ColumnType::kMemo, false},
    {u"Flag", ColumnType::kInteger, true},  {u"LvExtra", ColumnType::kLong, true, true}};
constexpr IndexPlan kQueryIndexes[] = {{u"ObjectIdAttribute", {0, 1, 2}, kUniqueIndex, true}};

constexpr ColumnPlan kRelationColumns[] = {{u"szRelationship", ColumnType::kText, false},
                                           {u"grbit", ColumnType::kLong, true},
                                           {u"ccolumn", ColumnType::kLong, true},
                                           {u"icolumn", ColumnType::kLong, true},
                                           {u"szObject", ColumnType::kText, false},
                                           {u"szColumn", ColumnType::kText, false},
                                           {u"szReferencedObject", ColumnType::kText, false},
                                           {u"szReferencedColumn", ColumnType::kText, false}};
constexpr IndexPlan kRelationIndexes[] = {{u"szRelationship", {0, -1, -1}, kIgnoreNullsIndex},
                                          {u"szObject", {4, -1, -1}, kIgnoreNullsIndex},
                                          {u"szReferencedObject", {6, -1, -1}, kIgnoreNullsIndex}};

// Of the file that a new Jet 4 header takes its creation date from.
constexpr SecurityId kNewFileMask = {0x67, 0x8A};
constexpr std::uint16_t kTextBytesJet3 = 255;
constexpr std::uint16_t kTextBytesJet4 = 510;

void PlanIndexes(Definition& definition, std::span<const IndexPlan> indexes, std::uint8_t always) {
    std::uint32_t number = 0;
    for (const IndexPlan& plan : indexes) {
        RealIndex real;
        real.flags = plan.flags | always;
        for (const int column : plan.columns) {
            if (column >= 0) real.parts.push_back({static_cast<std::size_t>(column), true});
        }
        definition.realIndexes.push_back(real);
        LogicalIndex logical;
        logical.wide = plan.name;
        logical.name = NarrowName(plan.name);
        logical.number = number;
        logical.real = number++;
        logical.role = plan.primary ? IndexRole::kPrimary : IndexRole::kOrdinary;
        definition.logicalIndexes.push_back(logical);
    }
    SortIndexNames(definition);
}

Definition MakeSystemTable(Operation& operation, PageNumber page,
                           std::span<const ColumnPlan> columns,
                           std::span<const IndexPlan> indexes) {
    const Format& format = operation.FileFormat();
    const bool jet3 = format.version == Version::kJet3;
    Definition definition;
    definition.page = page;
    definition.version = format.version;
    definition.system = true;
    for (const ColumnPlan& plan : columns) {
        if (plan.jet4Only && jet3) continue;
        Column column;
        column.wide = plan.name;
        column.name = NarrowName(plan.name);
        column.type = plan.type;
        column.fixed = plan.fixed;
        column.systemColumn = true;
        column.securityId = plan.name == u"Owner" || plan.name == u"SID";
        column.length = jet3 ? kTextBytesJet3 : kTextBytesJet4;
        definition.columns.push_back(column);
    }
    PlaceColumns(definition, operation.Pages().Header());
    PlanIndexes(definition, indexes, format.indexFlagAlways);
    MakeTablePages(operation, definition);
    return definition;
}

struct ObjectPlan {
    std::uint32_t id;
    std::uint32_t parent;
    std::u16string_view name;
    ObjectType type;
    SecurityId owner;
};

void FillObjects(Operation& operation, Table& objects, const SecurityId& mask) {
    const FileHeader& header = objects.Pages().Header();
    const ObjectPlan plans[] = {
        {kTablesId, kRootId, u"Tables", ObjectType::kContainer, kEngineId},
        {kDatabasesId, kRootId, u"Databases", ObjectType::kContainer, kEngineId},
        {kRelationshipsId, kRootId, u"Relationships", ObjectType::kContainer, kEngineId},
        {kDatabaseId, kDatabasesId, u"MSysDb", ObjectType::kDatabase, kAdminId},
        {header.objects.value, kTablesId, u"MSysObjects", ObjectType::kTable, kEngineId},
        {header.accessControl.value, kTablesId, u"MSysACEs", ObjectType::kTable, kEngineId},
        {header.queries.value, kTablesId, u"MSysQueries", ObjectType::kTable, kEngineId},
        {header.relationships.value, kTablesId, u"MSysRelationships", ObjectType::kTable,
         kEngineId}};
    for (const ObjectPlan& plan : plans) {
        objects.Insert(operation, ObjectRow(objects, plan.id, plan.parent, plan.name, plan.type,
                                            MaskedId(plan.owner, mask), kSystemObject)
                                      .Values());
    }
}

struct PermissionPlan {
    std::uint32_t object;
    SecurityId owner;
    std::uint32_t mask;
    bool inheritable;
};

void FillPermissions(Operation& operation, Table& permissions, const SecurityId& mask) {
    constexpr PermissionPlan kPlans[] = {{2, kAdminId, 0x60000, false},
                                         {3, kAdminId, 0x60000, false},
                                         {4, kAdminId, 0x60000, false},
                                         {5, kAdminId, 0xE0000, false},
                                         {kTablesId, kCreatorId, 0xF00FE, true},
                                         {kTablesId, kAdminId, 0x60001, false},
                                         {kRelationshipsId, kCreatorId, 0xF00FE, true},
                                         {kRelationshipsId, kAdminId, 0x60001, false},
                                         {kDatabasesId, kAdminId, 0x60000, false},
                                         {kDatabaseId, kAdminId, 0x6000E, false},
                                         {kDatabaseId, kUsersId, 0x0000E, false},
                                         {4, kUsersId, 0x00014, false},
                                         {5, kUsersId, 0x00014, false},
                                         {2, kUsersId, 0x00014, false},
                                         {kTablesId, kUsersId, 0xFFEFF, true},
                                         {kRelationshipsId, kUsersId, 0xFFFFF, true}};
    for (const PermissionPlan& plan : kPlans) {
        permissions.Insert(operation,
                           PermissionRow(permissions, plan.object, MaskedId(plan.owner, mask),
                                         plan.mask, plan.inheritable)
                               .Values());
    }
}

}  // namespace

Binary MaskedId(const SecurityId& id, const SecurityId& mask) {
    return {static_cast<std::byte>(id[0] ^ mask[0]), static_cast<std::byte>(id[1] ^ mask[1])};
}

SystemRow::SystemRow(const Table& table) : table_(&table) {
    row_.values.resize(table.Def().columns.size());
    row_.given.resize(table.Def().columns.size());
}

SystemRow& SystemRow::Set(std::u16string_view column, const Value& value) {
    const auto found = table_->Def().FindColumn(column);
    if (!found) {
        throw Error(ErrorKind::kDamaged, "The file is damaged: the catalog lacks the field '" +
                                             NarrowName(column) + "'.");
    }
    row_.values[*found] =
        ConvertForColumn(table_->Def().columns[*found], value, table_->Def().version);
    row_.given[*found] = true;
    return *this;
}

SystemRow ObjectRow(const Table& objects, std::uint32_t id, std::uint32_t parent,
                    std::u16string_view name, ObjectType type, const Binary& owner,
                    std::uint32_t flags) {
    const Date now{LocalTime()};
    SystemRow row(objects);
    row.Set(u"Id", static_cast<std::int32_t>(id))
        .Set(u"ParentId", static_cast<std::int32_t>(parent))
        .Set(u"Name", std::u16string(name))
        .Set(u"Type", std::int32_t{static_cast<std::int16_t>(type)})
        .Set(u"DateCreate", now)
        .Set(u"DateUpdate", now)
        .Set(u"Owner", owner)
        .Set(u"Flags", static_cast<std::int32_t>(flags));
    return row;
}

SystemRow PermissionRow(const Table& permissions, std::uint32_t object, const Binary& owner,
                        std::uint32_t mask, bool inheritable) {
    SystemRow row(permissions);
    row.Set(u"ObjectId", static_cast<std::int32_t>(object))
        .Set(u"SID", owner)
        .Set(u"ACM", static_cast<std::int32_t>(mask))
        .Set(u"FInheritable", inheritable);
    return row;
}

void CreateSystemTables(Operation& operation) {
    Pager& pager = operation.Pages();
    std::array<PageNumber, 4> pages;
    for (PageNumber& page : pages) page = operation.Allocate();
    Table objects(pager, "MSysObjects",
                  MakeSystemTable(operation, pages[0], kObjectColumns, kObjectIndexes));
    Table permissions(pager, "MSysACEs",
                      MakeSystemTable(operation, pages[1], kPermissionColumns, kPermissionIndexes));
    MakeSystemTable(operation, pages[2], kQueryColumns, kQueryIndexes);
    MakeSystemTable(operation, pages[3], kRelationColumns, kRelationIndexes);
    const SecurityId mask =
        pager.FileFormat().version == Version::kJet3 ? SecurityId{} : kNewFileMask;
    FillObjects(operation, objects, mask);
    FillPermissions(operation, permissions, mask);
}

}  // namespace jet
