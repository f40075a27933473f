#include "recordset/open_file.h"

#include <string>
#include <utility>

namespace jet {

OpenFile::OpenFile(std::unique_ptr<Pager> pager, const Recovery& recovery, Logger logger)
    : pager_(std::move(pager)),
      catalog_(std::make_unique<Catalog>(*pager_)),
      recovery_(recovery),
      logger_(std::move(logger)) {}

OpenFile::~OpenFile() = default;

void OpenFile::Close() {
    if (closed_) return;
    RollbackTransaction();
    closed_ = true;
    LogFailure("The file could not be closed properly: ", [this] { pager_->Close(); });
}

void OpenFile::MakeDurable() {
    LogFailure("The changes could not be made durable: ", [this] { pager_->MakeDurable(); });
}

void OpenFile::Log(LogLevel level, std::string_view what, std::string_view detail) const noexcept {
    if (!logger_) return;
    try {
        logger_(level, std::string(what).append(detail));
    } catch (...) {
        // A logger that fails must not fail what it was to report.
    }
}

void OpenFile::LogFailure(std::string_view what, const std::function<void()>& work) const {
    try {
        work();
    } catch (const Error& error) {
        Log(LogLevel::kError, what, error.what());
        throw;
    }
}

void OpenFile::LogRecovery() const {
    if (!logger_) return;
    if (recovery_.applied) {
        Log(LogLevel::kInfo,
            "An interrupted run was recovered. Operations: ", std::to_string(recovery_.operations));
    }
    if (recovery_.foreignLogIgnored) {
        Log(LogLevel::kWarning, "A log that does not belong to the file was ignored.");
    }
    for (const std::filesystem::path& kept : recovery_.keptLogs) {
        const std::u8string name = kept.filename().u8string();
        Log(LogLevel::kWarning, "A log with changes that the file lacks is kept as ",
            std::string(name.begin(), name.end()));
    }
}

void OpenFile::ThrowClosed() {
    throw Error(ErrorKind::kClosed, "The database has been closed.");
}

void OpenFile::BeginTransaction() {
    pager_->BeginTransaction();
    inTransaction_ = true;
}

void OpenFile::CommitTransaction() {
    try {
        pager_->CommitTransaction();
    } catch (...) {
        UndoInMemory();
        throw;
    }
    inTransaction_ = false;
    catalog_->TransactionCommitted();
}

void OpenFile::RollbackTransaction() noexcept {
    if (!inTransaction_) return;
    pager_->RollbackTransaction();
    UndoInMemory();
}

// The pages are as they were; what was remembered of them follows.
void OpenFile::UndoInMemory() noexcept {
    inTransaction_ = false;
    ++rollbacks_;
    catalog_->TransactionRolledBack();
}

}  // namespace jet
