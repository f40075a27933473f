// An open file with its catalog, shared by the database and the record sets on it.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string_view>

#include "catalog/catalog.h"
#include "jet/database.h"
#include "page/pager.h"

namespace jet {

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

    // Errors: those of Database::Begin and Transaction::Commit.
    void BeginTransaction();
    void CommitTransaction();
    void RollbackTransaction() noexcept;
    [[nodiscard]] bool InTransaction() const { return inTransaction_; }
    // Raised by each rollback, which drops all open edits.
    [[nodiscard]] std::uint64_t Rollbacks() const { return rollbacks_; }

private:
    void UndoInMemory() noexcept;
    [[noreturn]] static void ThrowClosed();
    void LogFailure(std::string_view what, const std::function<void()>& work) const;

    std::unique_ptr<Pager> pager_;
    std::unique_ptr<Catalog> catalog_;
    Recovery recovery_;
    Logger logger_;
    std::uint64_t rollbacks_ = 0;
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
