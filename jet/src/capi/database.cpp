// The C interface: files, tables, transactions.
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "capi/guard.h"
#include "jet/version.h"

namespace {

using jet::capi::GiveText;
using jet::capi::Guarded;
using jet::capi::Require;
using jet::capi::ThrowBadArgument;

std::filesystem::path PathOf(const char* path) {
    const std::string_view utf8 = &Require(path);
    return std::u8string(utf8.begin(), utf8.end());
}

jet::OpenOptions OptionsOf(const jet_options* options) {
    jet::OpenOptions made;
    if (options == nullptr) return made;
    made.readOnly = options->read_only != 0;
    made.exclusive = options->shared == 0;
    if (options->cache_bytes != 0) {
        made.cacheBytes = static_cast<std::size_t>(options->cache_bytes);
    }
    if (options->changed_bytes != 0) {
        made.changedBytes = static_cast<std::size_t>(options->changed_bytes);
    }
    if (options->log_bytes != 0) made.logBytes = options->log_bytes;
    return made;
}

jet::Database& Opened(jet_database* database) {
    return *Require(database).opened;
}

jet::ColumnSchema ColumnOf(const jet_column& column) {
    if (column.type < JET_BOOLEAN || column.type > JET_DECIMAL) ThrowBadArgument();
    jet::ColumnSchema made;
    made.name = &Require(column.name);
    made.type = static_cast<jet::ColumnType>(column.type);
    made.length = column.length;
    made.autoNumber = column.auto_number != 0;
    made.required = column.required != 0;
    made.allowZeroLength = column.allow_zero_length != 0;
    if (column.precision != 0) made.precision = column.precision;
    made.scale = column.scale;
    return made;
}

jet::IndexSchema IndexOf(const jet_index& index) {
    jet::IndexSchema made;
    made.name = &Require(index.name);
    if (index.column_count > 0) Require(index.columns);
    for (std::size_t i = 0; i < index.column_count; ++i) {
        const bool descending = index.descending != nullptr && index.descending[i] != 0;
        made.columns.push_back({&Require(index.columns[i]), !descending});
    }
    made.primary = index.primary != 0;
    made.unique = index.unique != 0;
    return made;
}

}  // namespace

#define JET_TEXT_OF(number) #number
#define JET_VERSION_TEXT(major, minor, patch) \
    JET_TEXT_OF(major) "." JET_TEXT_OF(minor) "." JET_TEXT_OF(patch)

const char* jet_version(void) {
    return JET_VERSION_TEXT(JET_VERSION_MAJOR, JET_VERSION_MINOR, JET_VERSION_PATCH);
}

int jet_open(const char* path, const jet_options* options, jet_database** database,
             jet_error* error) {
    return Guarded(error, [&] {
        Require(database);
        auto opened = std::make_unique<jet_database>();
        opened->opened = jet::Database::Open(PathOf(path), OptionsOf(options));
        *database = opened.release();
    });
}

int jet_create(const char* path, int version, const jet_options* options, jet_database** database,
               jet_error* error) {
    return Guarded(error, [&] {
        Require(database);
        if (version != 3 && version != 4) ThrowBadArgument();
        auto created = std::make_unique<jet_database>();
        created->opened = jet::Database::Create(
            PathOf(path), version == 3 ? jet::Version::kJet3 : jet::Version::kJet4,
            OptionsOf(options));
        *database = created.release();
    });
}

int jet_close(jet_database* database, jet_error* error) {
    const std::unique_ptr<jet_database> owned(database);
    return Guarded(error, [&] {
        if (owned) owned->opened->Close();
    });
}

int jet_make_durable(jet_database* database, jet_error* error) {
    return Guarded(error, [&] { Opened(database).MakeDurable(); });
}

int jet_opening_recovery(jet_database* database, jet_recovery* recovery, jet_error* error) {
    return Guarded(error, [&] {
        const jet::Recovery& found = Opened(database).OpeningRecovery();
        Require(recovery) = {found.applied ? 1 : 0, found.foreignLogIgnored ? 1 : 0,
                             found.operations, found.discardedBytes, found.keptLogs.size()};
    });
}

int jet_kept_log(jet_database* database, size_t log, char* path, size_t capacity, size_t* size,
                 jet_error* error) {
    return Guarded(error, [&] {
        const auto& logs = Opened(database).OpeningRecovery().keptLogs;
        if (log >= logs.size()) ThrowBadArgument();
        const std::u8string name = logs[log].u8string();
        GiveText(std::string(name.begin(), name.end()), path, capacity, size);
    });
}

int jet_table_count(jet_database* database, size_t* count, jet_error* error) {
    return Guarded(error, [&] { Require(count) = Opened(database).TableNames().size(); });
}

int jet_table_name(jet_database* database, size_t table, char* name, size_t capacity, size_t* size,
                   jet_error* error) {
    return Guarded(error, [&] {
        const std::vector<std::string> names = Opened(database).TableNames();
        if (table >= names.size()) ThrowBadArgument();
        GiveText(names[table], name, capacity, size);
    });
}

int jet_index_count(jet_database* database, const char* table, size_t* count, jet_error* error) {
    return Guarded(
        error, [&] { Require(count) = Opened(database).Describe(&Require(table)).indexes.size(); });
}

int jet_index_name(jet_database* database, const char* table, size_t index, char* name,
                   size_t capacity, size_t* size, jet_error* error) {
    return Guarded(error, [&] {
        const auto indexes = Opened(database).Describe(&Require(table)).indexes;
        if (index >= indexes.size()) ThrowBadArgument();
        GiveText(indexes[index].name, name, capacity, size);
    });
}

int jet_create_table(jet_database* database, const char* name, const jet_column* columns,
                     size_t column_count, const jet_index* indexes, size_t index_count,
                     jet_error* error) {
    return Guarded(error, [&] {
        jet::TableSchema schema;
        schema.name = &Require(name);
        if (column_count > 0) Require(columns);
        if (index_count > 0) Require(indexes);
        for (std::size_t i = 0; i < column_count; ++i)
            schema.columns.push_back(ColumnOf(columns[i]));
        for (std::size_t i = 0; i < index_count; ++i) schema.indexes.push_back(IndexOf(indexes[i]));
        Opened(database).CreateTable(schema);
    });
}

int jet_begin(jet_database* database, jet_transaction** transaction, jet_error* error) {
    return Guarded(error, [&] {
        Require(transaction);
        *transaction = new jet_transaction{Opened(database).Begin()};
    });
}

int jet_commit(jet_transaction* transaction, jet_error* error) {
    const std::unique_ptr<jet_transaction> owned(transaction);
    return Guarded(error, [&] { Require(owned.get()).begun.Commit(); });
}

void jet_rollback(jet_transaction* transaction) {
    const std::unique_ptr<jet_transaction> owned(transaction);
    if (owned) owned->begun.Rollback();
}
