// A Jet database file, open.
//
// Start here. A Database owns the file from opening to closing; record sets borrow it and must not
// be used after it is closed (they then throw kClosed). One thread uses a database at a time.
//
// Every row operation and every table creation is whole: when the call returned, the operation
// survives the end of the process; when it threw, nothing of it is there, indexes included. Begin
// makes any number of them one. Besides the errors named, everything here can throw kClosed, kIo
// and kOutOfMemory. MakeDurable carries all operations so far through a power cut and leaves the
// file complete by itself; until then the recent ones also live in a log file beside it (NAME-log),
// from which the next opening recovers them.
//
// Exclusive means exclusive: while the database is open nobody else can open the file, neither
// another process nor a second Database of this one.
#pragma once

#include <cstdint>
#include <filesystem>
#include <initializer_list>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "jet/error.h"
#include "jet/file.h"
#include "jet/options.h"
#include "jet/schema.h"
#include "jet/transaction.h"
#include "jet/value.h"

namespace jet {

class Recordset;
struct Query;

// What opening found to do before the file could be used.
struct Recovery {
    bool applied = false;          // operations of an interrupted run were recovered
    std::uint64_t operations = 0;  // how many
    // At the end of its log: of operations and transactions that were cut off, and of transactions
    // that had not been committed.
    std::uint64_t discardedBytes = 0;
    bool foreignLogIgnored = false;  // a log lay there that does not belong to this file
    // Logs beside the file that hold changes which it lacks: an older copy has been put in the
    // file's place, say, or another program has written to it. They are kept, and named at every
    // opening, until a person removes them.
    std::vector<std::filesystem::path> keptLogs;
};

class Database {
public:
    // Errors: kFileNotFound, kFileInUse, kNotADatabase, kUnsupportedVersion, kEncrypted, kDamaged,
    // kReadOnly, kPermissionDenied, kIo. A refused file is left as it was, byte for byte.
    static std::unique_ptr<Database> Open(const std::filesystem::path& path,
                                          const OpenOptions& options = {},
                                          FileSystem& files = HostFileSystem());
    // Makes an empty database; when it cannot, no file is left. Errors: kAlreadyExists,
    // kFileNotFound (the folder), kPermissionDenied, kReadOnly, kDiskFull, kIo.
    static std::unique_ptr<Database> Create(const std::filesystem::path& path, Version version,
                                            FileSystem& files = HostFileSystem());
    // The same with options; the new file is always held alone and for writing.
    static std::unique_ptr<Database> Create(const std::filesystem::path& path, Version version,
                                            const OpenOptions& options,
                                            FileSystem& files = HostFileSystem());

    // Whether the file could be opened for writing, as far as others decide it; without a word
    // where there is no file. For those who are about to replace one. Errors: kFileInUse (also when
    // a lock file NAME.ldb beside it is held), kReadOnly, kPermissionDenied, kIo.
    static void RequireFree(const std::filesystem::path& path,
                            FileSystem& files = HostFileSystem());
    // Removes the log beside a file that is not open: for one that has just been copied over
    // another, whose last changes are not its own.
    static void DiscardLog(const std::filesystem::path& path, FileSystem& files = HostFileSystem());
    // Where the log of a file lies when there is one.
    static std::filesystem::path LogOf(const std::filesystem::path& path,
                                       FileSystem& files = HostFileSystem());

    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;
    // Closes; an error while closing is lost, so call Close first where it matters.
    ~Database();

    // Begins a transaction; see transaction.h. Errors: kTransactionOpen (there is one), kReadOnly,
    // and those of MakeDurable, which is done first when much has changed since the last time.
    [[nodiscard]] Transaction Begin();

    // Rolls an open transaction back, makes everything durable, removes the log and gives up the
    // file, even when it throws: the log then stays for the next opening. Safe to call twice.
    // Errors: those of MakeDurable but kTransactionOpen.
    void Close();
    // At most two flushes, or three in the first call without SecureLog before it; none when
    // nothing changed since the last call. A file that was removed meanwhile is written anew at its
    // place. Errors: kTransactionOpen (nothing is done inside a
    // transaction), kDiskFull, kIo, kClosed; nothing is lost, and the next call tries again.
    // kFileInUse when another program has replaced or overwritten the file; all that was done here
    // is kept in NAME-kept beside one that was replaced.
    void MakeDurable();
    // Makes sure that the log cannot vanish from its folder in a power cut: one flush, once. For a
    // moment between opening, which need not wait for the disk, and the first change. It does not
    // fail: what it cannot do is left to MakeDurable.
    void SecureLog() noexcept;
    // Operations that are safe from a crash but that no checkpoint has written into the file.
    [[nodiscard]] std::uint64_t PendingOperations() const;
    // What MakeDurable found: the file has another name now, or was removed and has been put back.
    [[nodiscard]] bool WasMoved() const;
    [[nodiscard]] bool WasPutBack() const;

    [[nodiscard]] Version FileVersion() const;
    [[nodiscard]] bool IsReadOnly() const;
    [[nodiscard]] const Recovery& OpeningRecovery() const;

    // User tables, in catalog order. Linked tables and queries are not among them.
    [[nodiscard]] std::vector<std::string> TableNames() const;
    [[nodiscard]] std::vector<std::string> SystemTableNames() const;
    [[nodiscard]] bool HasTable(std::string_view name) const;
    // Errors: kNoSuchTable, kDamaged.
    [[nodiscard]] TableSchema Describe(std::string_view table) const;
    // Errors: kAlreadyExists, kBadName, kNoSuchField (in an index), kUnsupported (a type the
    // version lacks), kRecordTooLarge (its shortest record), kReadOnly, kDiskFull, kIo.
    void CreateTable(const TableSchema& schema);

    // A table-type record set: rows in stored order until an index is set. System tables open
    // read-only. Errors: kNoSuchTable, kDamaged.
    [[nodiscard]] std::unique_ptr<Recordset> OpenTable(std::string_view name);
    // A snapshot of the rows that a query selects, in its order; see query.h for the language.
    // `parameters` are the values of its question marks. Errors: kSyntax (another number of them,
    // too), kNoSuchTable, kNoSuchField, kTypeMismatch (a condition), kUnsupported (an
    // order that is not known), kDamaged.
    [[nodiscard]] std::unique_ptr<Recordset> OpenQuery(std::string_view sql,
                                                       std::span<const Value> parameters = {});
    [[nodiscard]] std::unique_ptr<Recordset> OpenQuery(std::string_view sql,
                                                       std::initializer_list<Value> parameters);
    [[nodiscard]] std::unique_ptr<Recordset> OpenQuery(const Query& query,
                                                       std::span<const Value> parameters = {});

    class Impl;
    // The private side, for the structure check and the tools.
    [[nodiscard]] Impl& Internals() { return *impl_; }

private:
    explicit Database(std::unique_ptr<Impl> impl);
    std::unique_ptr<Impl> impl_;
};

}  // namespace jet
