#include "jet/transaction.h"

#include <utility>

#include "os/out_of_memory.h"
#include "recordset/open_file.h"

namespace jet {

Transaction::Transaction(Transaction&& other) noexcept = default;

Transaction& Transaction::operator=(Transaction&& other) noexcept {
    if (this != &other) {
        Rollback();
        file_ = std::exchange(other.file_, nullptr);
    }
    return *this;
}

Transaction::~Transaction() {
    Rollback();
}

void Transaction::Commit() {
    return Guarded([&] {
        if (!file_) {
            throw Error(ErrorKind::kNoTransaction, "The transaction has ended already.");
        }
        const std::shared_ptr<OpenFile> file = std::exchange(file_, nullptr);
        file->RequireOpen();
        file->CommitTransaction();
    });
}

void Transaction::Rollback() noexcept {
    if (const auto file = std::exchange(file_, nullptr)) file->RollbackTransaction();
}

bool Transaction::IsOpen() const {
    return file_ != nullptr && file_->InTransaction();
}

}  // namespace jet
