#include "platform/dao/Database.h"

#include "jet/database.h"
#include "jet/recordset.h"
#include "platform/dao/Convert.h"
#include "platform/dao/Recordset.h"
#include "platform/system/NativePath.h"

namespace dao {

namespace {

jet::ColumnSchema ToSchema(const FieldDefinition& field) {
    jet::ColumnSchema column;
    column.name = ToUtf8(field.name);
    column.autoNumber = field.autoIncrement;
    switch (field.type) {
        case FieldType::kLong:
            column.type = jet::ColumnType::kLong;
            break;
        case FieldType::kSingle:
            column.type = jet::ColumnType::kSingle;
            break;
        case FieldType::kText:
            column.type = jet::ColumnType::kText;
            column.length = field.size;
            break;
        case FieldType::kMemo:
            column.type = jet::ColumnType::kMemo;
            break;
    }
    return column;
}

jet::IndexSchema ToSchema(const IndexDefinition& definition) {
    jet::IndexSchema index;
    index.name = ToUtf8(definition.name);
    index.primary = definition.primary;
    index.unique = definition.unique || definition.primary;
    index.required = definition.primary;
    for (const QString& field : definition.fields) {
        index.columns.push_back({ToUtf8(field), true});
    }
    return index;
}

std::unique_ptr<jet::Database> OpenFile(const std::filesystem::path& path, OpenMode mode) {
    const jet::OpenOptions reading{.exclusive = false, .readOnly = true};
    switch (mode) {
        case OpenMode::kExclusive:
            return jet::Database::Open(path, {.exclusive = true, .readOnly = false});
        case OpenMode::kShared:
            try {
                return jet::Database::Open(path, {.exclusive = false, .readOnly = false});
            } catch (const jet::Error&) {
                return jet::Database::Open(path, reading);
            }
        case OpenMode::kReading:
            break;
    }
    return jet::Database::Open(path, reading);
}

}  // namespace

Database::Database(std::unique_ptr<jet::Database> database) : database_(std::move(database)) {}

Database::~Database() = default;

std::unique_ptr<Database> Database::Open(const QString& path, OpenMode mode) {
    return Mapped(
        [&] { return std::unique_ptr<Database>(new Database(OpenFile(ToPath(path), mode))); });
}

void Database::RequireFree(const QString& path) {
    Mapped([&] { jet::Database::RequireFree(ToPath(path)); });
}

void Database::DiscardLog(const QString& path) {
    Mapped([&] { jet::Database::DiscardLog(ToPath(path)); });
}

Transaction Database::Begin() {
    return Transaction::Begin(*database_, transaction_);
}

bool Database::InTransaction() const {
    return Transaction::IsOpen(transaction_);
}

void Database::Close() {
    Mapped([this] { database_->Close(); });
}

void Database::MakeDurable() {
    Mapped([this] { database_->MakeDurable(); });
}

void Database::SecureLog() noexcept {
    database_->SecureLog();
}

bool Database::HasTable(const QString& name) const {
    return Mapped([&] { return database_->HasTable(ToUtf8(name)); });
}

std::unique_ptr<Recordset> Database::OpenTable(const QString& name) {
    return Mapped([&] { return std::make_unique<Recordset>(database_->OpenTable(ToUtf8(name))); });
}

std::unique_ptr<Recordset> Database::OpenDynaset(const QString& sql) {
    return Mapped([&] { return std::make_unique<Recordset>(database_->OpenQuery(ToUtf8(sql))); });
}

void Database::AppendTable(const TableDefinition& table) {
    jet::TableSchema schema;
    schema.name = ToUtf8(table.name);
    for (const FieldDefinition& field : table.fields) {
        schema.columns.push_back(ToSchema(field));
    }
    for (const IndexDefinition& index : table.indexes) {
        schema.indexes.push_back(ToSchema(index));
    }
    Mapped([&] { database_->CreateTable(schema); });
}

int Database::RecoveredOperations() const {
    const jet::Recovery& recovery = database_->OpeningRecovery();
    return recovery.applied ? static_cast<int>(recovery.operations) : 0;
}

QString Database::KeptLog() const {
    QStringList names;
    for (const std::filesystem::path& log : database_->OpeningRecovery().keptLogs) {
        names << platform::ShownPath(platform::FromNativePath(log.filename()));
    }
    return names.join(QStringLiteral("\", \""));
}

std::uint64_t Database::PendingOperations() const {
    return database_->PendingOperations();
}

bool Database::WasMoved() const {
    return database_->WasMoved();
}

bool Database::WasPutBack() const {
    return database_->WasPutBack();
}

}  // namespace dao
