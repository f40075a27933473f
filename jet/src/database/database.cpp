#include "jet/database.h"

#include "catalog/new_table.h"
#include "catalog/system_tables.h"
#include "jet/query.h"
#include "jet/recordset.h"
#include "os/out_of_memory.h"
#include "page/data_file.h"
#include "query/bind.h"
#include "query/query_recordset.h"
#include "recordset/open_file.h"
#include "recordset/table_recordset.h"
#include "values/text.h"

namespace jet {

std::unique_ptr<Database> Database::Open(const std::filesystem::path& path,
                                         const OpenOptions& options, FileSystem& files) {
    return Guarded([&] {
        Recovery recovery;
        std::unique_ptr<Pager> pager = Pager::Open(files, path, options, recovery);
        auto file = std::make_shared<OpenFile>(std::move(pager), recovery, options.logger);
        file->LogRecovery();
        return std::unique_ptr<Database>(new Database(std::make_unique<Impl>(std::move(file))));
    });
}

std::unique_ptr<Database> Database::Create(const std::filesystem::path& path, Version version,
                                           FileSystem& files) {
    return Create(path, version, OpenOptions{}, files);
}

std::unique_ptr<Database> Database::Create(const std::filesystem::path& path, Version version,
                                           const OpenOptions& options, FileSystem& files) {
    return Impl::Create(path, version, options, files, nullptr);
}

std::unique_ptr<Database> Database::Impl::Create(const std::filesystem::path& path, Version version,
                                                 const OpenOptions& options, FileSystem& files,
                                                 File* like) {
    return Guarded([&] {
        OpenOptions forWriting = options;
        forWriting.readOnly = false;
        std::unique_ptr<Pager> pager = Pager::Create(files, path, version, forWriting, like);
        try {
            {
                Operation operation(*pager);
                CreateSystemTables(operation);
                operation.Commit();
            }
            pager->MakeDurable();
            auto opened = std::make_shared<OpenFile>(std::move(pager), Recovery{}, options.logger);
            return std::unique_ptr<Database>(
                new Database(std::make_unique<Impl>(std::move(opened))));
        } catch (...) {
            if (pager) pager->Abandon();
            RemoveQuietly(files, path);
            throw;
        }
    });
}

void Database::RequireFree(const std::filesystem::path& path, FileSystem& files) {
    return Guarded([&] {
        if (files.Exists(files.Resolve(path))) (void)OpenLocked(files, path, {});
    });
}

void Database::DiscardLog(const std::filesystem::path& path, FileSystem& files) {
    return Guarded([&] {
        const std::filesystem::path log = LogPath(files.Resolve(path));
        if (files.Exists(log)) files.Remove(log);
    });
}

std::filesystem::path Database::LogOf(const std::filesystem::path& path, FileSystem& files) {
    return Guarded([&] { return LogPath(files.Resolve(path)); });
}

Database::Database(std::unique_ptr<Impl> impl) : impl_(std::move(impl)) {}

Database::~Database() {
    try {
        Close();
    } catch (const Error&) {
        // Whoever wants to know calls Close.
    }
}

Transaction Database::Begin() {
    return Guarded([&] {
        impl_->file->RequireOpen();
        impl_->file->BeginTransaction();
        return Transaction(impl_->file);
    });
}

void Database::Close() {
    return Guarded([&] { impl_->file->Close(); });
}

void Database::MakeDurable() {
    return Guarded([&] {
        impl_->file->RequireOpen();
        impl_->file->MakeDurable();
    });
}

void Database::SecureLog() noexcept {
    if (impl_->file) impl_->file->Pages().SecureLog();
}

std::uint64_t Database::PendingOperations() const {
    return impl_->file->Pages().PendingOperations();
}

bool Database::WasMoved() const {
    return impl_->file->Pages().WasMoved();
}

bool Database::WasPutBack() const {
    return impl_->file->Pages().WasPutBack();
}

Version Database::FileVersion() const {
    return impl_->file->Pages().FileFormat().version;
}

bool Database::IsReadOnly() const {
    return impl_->file->Pages().IsReadOnly();
}

const Recovery& Database::OpeningRecovery() const {
    return impl_->file->OpeningRecovery();
}

namespace {

std::vector<std::string> Names(OpenFile& file, bool system) {
    file.RequireOpen();
    std::vector<std::string> names;
    for (const CatalogEntry& entry : file.Tables().Entries()) {
        if (entry.system == system) names.push_back(entry.name);
    }
    return names;
}

const CatalogEntry& Require(OpenFile& file, std::string_view name) {
    file.RequireOpen();
    const CatalogEntry* entry = file.Tables().Find(WidenName(name));
    if (entry == nullptr) {
        throw Error(ErrorKind::kNoSuchTable,
                    "The database has no table '" + std::string(name) + "'.");
    }
    return *entry;
}

}  // namespace

std::vector<std::string> Database::TableNames() const {
    return Guarded([&] { return Names(*impl_->file, false); });
}

std::vector<std::string> Database::SystemTableNames() const {
    return Guarded([&] { return Names(*impl_->file, true); });
}

bool Database::HasTable(std::string_view name) const {
    return Guarded([&] {
        impl_->file->RequireOpen();
        return impl_->file->Tables().Find(WidenName(name)) != nullptr;
    });
}

TableSchema Database::Describe(std::string_view table) const {
    return Guarded([&] {
        const CatalogEntry& entry = Require(*impl_->file, table);
        return SchemaOf(entry.name, impl_->file->Tables().Open(entry).Def());
    });
}

void Database::CreateTable(const TableSchema& schema) {
    return Guarded([&] {
        impl_->file->RequireOpen();
        if (IsReadOnly()) throw Error(ErrorKind::kReadOnly, "The file is open for reading only.");
        impl_->file->Tables().CreateTable(schema);
    });
}

std::unique_ptr<Recordset> Database::OpenTable(std::string_view name) {
    return Guarded([&] {
        const CatalogEntry& entry = Require(*impl_->file, name);
        Table& table = impl_->file->Tables().Open(entry);
        return std::make_unique<TableRecordset>(impl_->file, table, entry.system);
    });
}

std::unique_ptr<Recordset> Database::OpenQuery(std::string_view sql,
                                               std::span<const Value> parameters) {
    impl_->file->RequireOpen();
    return OpenQuery(ParseQuery(sql), parameters);
}

std::unique_ptr<Recordset> Database::OpenQuery(std::string_view sql,
                                               std::initializer_list<Value> parameters) {
    return OpenQuery(sql, std::span(parameters.begin(), parameters.size()));
}

std::unique_ptr<Recordset> Database::OpenQuery(const Query& query,
                                               std::span<const Value> parameters) {
    return Guarded([&] {
        const Query bound = Bind(query, parameters);
        const CatalogEntry& entry = Require(*impl_->file, bound.table);
        Table& table = impl_->file->Tables().Open(entry);
        return std::make_unique<QueryRecordset>(impl_->file, table, entry.system, bound);
    });
}

}  // namespace jet
