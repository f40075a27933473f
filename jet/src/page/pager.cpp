#include "page/pager.h"

#include "jet/error.h"

namespace jet {

namespace {

// Only a file system or a logger that calls back gets here.
[[noreturn]] void ThrowOperationOpen() {
    throw Error(ErrorKind::kTransactionOpen, "A change is being made; it has to end first.");
}

}  // namespace

Pager::Pager(FileSystem& files, const std::filesystem::path& path, std::unique_ptr<File> file,
             const Format& format, const OpenOptions& options)
    : format_(format),
      changedBytes_(options.changedBytes),
      logBytes_(options.logBytes),
      file_(files, path, std::move(file), format, options.readOnly),
      journal_(file_),
      cache_(file_, journal_, options.cacheBytes),
      changes_(cache_, journal_, format, options.changedBytes),
      checkpoint_(file_, cache_, journal_) {}

Pager::~Pager() {
    try {
        Close();
    } catch (...) {
        // Whoever wants to know closes by hand. What was acknowledged is in the log.
    }
}

void Pager::CheckpointWhenDue(std::size_t mostChangedBytes) {
    // More changes follow, for which the memory is kept.
    if (cache_.DirtyBytes() > mostChangedBytes || journal_.Size() > logBytes_) checkpoint_.Run();
}

void Pager::BeginTransaction() {
    file_.RequireWritable();
    if (changes_.InTransaction()) {
        throw Error(ErrorKind::kTransactionOpen, "A transaction is open already.");
    }
    if (changes_.InOperation()) ThrowOperationOpen();
    // Pages that are in memory only cannot be moved to the log by the transaction.
    CheckpointWhenDue(changedBytes_ / 4);
    changes_.BeginTransaction();
}

void Pager::BeginOperation() {
    file_.RequireWritable();
    if (changes_.InOperation()) ThrowOperationOpen();
    if (!changes_.InTransaction()) CheckpointWhenDue(changedBytes_);
    changes_.BeginOperation();
}

void Pager::MakeDurable() {
    if (changes_.InOperation()) ThrowOperationOpen();
    if (changes_.InTransaction()) {
        throw Error(ErrorKind::kTransactionOpen,
                    "What a transaction has changed so far cannot be made durable: it is open.");
    }
    checkpoint_.Run();
    cache_.Shrink();
}

void Pager::Close() {
    if (!file_.IsOpen()) return;
    if (changes_.InTransaction()) changes_.RollbackTransaction();
    try {
        if (file_.IsReadOnly()) {
            journal_.Release();
        } else {
            MakeDurable();
            journal_.Remove();
        }
    } catch (...) {
        // It would get into the file that has the name now, if that one happens to fit.
        if (checkpoint_.IsKeptBeside()) journal_.SetAside();
        Release();
        throw;
    }
    file_.Release();
}

void Pager::Release() noexcept {
    journal_.Release();
    file_.Release();
}

void Pager::Abandon() noexcept {
    if (!file_.IsOpen()) return;
    journal_.Remove();
    file_.Discard();
}

}  // namespace jet
