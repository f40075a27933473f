// An open file with its catalog, shared by the database and the record sets on it.
#pragma once

#include <compare>
#include <functional>
#include <memory>
#include <span>
#include <string_view>
#include <vector>

#include "catalog/catalog.h"
#include "jet/database.h"
#include "page/pager.h"

namespace jet {

// A row that was deleted.
struct DeletedRow {
    PageNumber table;  // its definition
    RowId row;
    auto operator<=>(const DeletedRow&) const = default;
};

// Notices rows that are deleted and transactions that are rolled back, so that a record set never
// takes another row for its own.
class RowWatcher {
public:
    RowWatcher() = default;
    RowWatcher(const RowWatcher&) = delete;
    RowWatcher& operator=(const RowWatcher&) = delete;
    virtual ~RowWatcher() = default;
    virtual void RowDeleted(const Table& table, RowId row) = 0;
    virtual void TransactionBegun() = 0;
    virtual void TransactionEnded() noexcept = 0;
    // `deleted` are the rows that the transaction had deleted, sorted; they are back.
    virtual void TransactionRolledBack(std::span<const DeletedRow> deleted) noexcept = 0;
};

class OpenFile {
public:
    OpenFile(std::unique_ptr<Pager> pager, const Recovery& recovery, Logger logger = {});
    ~OpenFile();
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;

    void Close();
    void MakeDurable();
    void RequireOpen() const {
        if (closed_) ThrowClosed();
    }

    [[nodiscard]] Pager& Pages() { return *pager_; }
    [[nodiscard]] Catalog& Tables() { return *catalog_; }
    // Reports to the logger what opening found.
    void LogRecovery() const;
    // Hands a sentence, in two parts, to the logger, if there is one. Does not fail.
    void Log(LogLevel level, std::string_view what, std::string_view detail = {}) const noexcept;
    [[nodiscard]] const Recovery& OpeningRecovery() const { return recovery_; }

    void Watch(RowWatcher& watcher);
    void Unwatch(RowWatcher& watcher);
    // Before so many rows are signaled as deleted: afterwards nothing may fail.
    void MakeRoomForDeleted(std::size_t count);
    void SignalDeleted(const Table& table, RowId row) noexcept;

    // Errors: those of Database::Begin and Transaction::Commit.
    void BeginTransaction();
    void CommitTransaction();
    void RollbackTransaction() noexcept;
    [[nodiscard]] bool InTransaction() const { return inTransaction_; }

private:
    void UndoInMemory() noexcept;
    [[noreturn]] static void ThrowClosed();
    void LogFailure(std::string_view what, const std::function<void()>& work) const;

    std::unique_ptr<Pager> pager_;
    std::unique_ptr<Catalog> catalog_;
    Recovery recovery_;
    Logger logger_;
    std::vector<RowWatcher*> watchers_;
    std::vector<DeletedRow> deleted_;  // by the open transaction
    bool inTransaction_ = false;
    bool closed_ = false;
};

class Database::Impl {
public:
    explicit Impl(std::shared_ptr<OpenFile> opened) : file(std::move(opened)) {}
    // Database::Create, with the access rights of `like`, where there is one.
    static std::unique_ptr<Database> Create(const std::filesystem::path& path, Version version,
                                            const OpenOptions& options, FileSystem& files,
                                            File* like);
    std::shared_ptr<OpenFile> file;
};

}  // namespace jet
