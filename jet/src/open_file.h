// An open file with its catalogue, shared by the database and the record sets on it.
#pragma once

#include <functional>
#include <memory>
#include <string_view>
#include <vector>

#include "catalog/catalog.h"
#include "jet/database.h"
#include "page/pager.h"

namespace jet {

// Is told of rows that go, so that a record set never takes another row for its own.
class RowWatcher {
public:
    RowWatcher() = default;
    RowWatcher(const RowWatcher&) = delete;
    RowWatcher& operator=(const RowWatcher&) = delete;
    virtual ~RowWatcher() = default;
    virtual void RowDeleted(const Table& table, RowId row) = 0;
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
    // Tells the logger what opening found.
    void LogRecovery() const;
    // Hands a sentence, in two parts, to the logger, if there is one. Does not fail.
    void Log(LogLevel level, std::string_view what, std::string_view detail = {}) const noexcept;
    [[nodiscard]] const Recovery& OpeningRecovery() const { return recovery_; }

    void Watch(RowWatcher& watcher);
    void Unwatch(RowWatcher& watcher);
    void TellDeleted(const Table& table, RowId row);

private:
    [[noreturn]] static void ThrowClosed();
    void LogFailure(std::string_view what, const std::function<void()>& work) const;

    std::unique_ptr<Pager> pager_;
    std::unique_ptr<Catalog> catalog_;
    Recovery recovery_;
    Logger logger_;
    std::vector<RowWatcher*> watchers_;
    bool closed_ = false;
};

class Database::Impl {
public:
    explicit Impl(std::shared_ptr<OpenFile> opened) : file(std::move(opened)) {}
    std::shared_ptr<OpenFile> file;
};

}  // namespace jet
