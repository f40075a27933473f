#include "platform/dao/Transaction.h"

#include <utility>

#include "jet/database.h"
#include "platform/dao/Convert.h"

namespace dao {

struct Transaction::Whole {
    explicit Whole(jet::Transaction begun) : changes(std::move(begun)) {}
    jet::Transaction changes;
    int parts = 0;  // that have not ended
    bool failed = false;
};

Transaction::Transaction(std::shared_ptr<Whole> whole) : whole_(std::move(whole)) {
    ++whole_->parts;
}

Transaction::~Transaction() {
    Rollback();
}

bool Transaction::IsOpen(const std::weak_ptr<Whole>& open) {
    const auto whole = open.lock();
    return whole && whole->changes.IsOpen();
}

Transaction Transaction::Begin(jet::Database& database, std::weak_ptr<Whole>& open) {
    auto whole = open.lock();
    if (!whole || !whole->changes.IsOpen()) {
        whole = Mapped([&] { return std::make_shared<Whole>(database.Begin()); });
        open = whole;
    }
    return Transaction(std::move(whole));
}

void Transaction::Commit() {
    const auto whole = std::exchange(whole_, nullptr);
    if (!whole) {
        throw platform::RuntimeError(platform::kNoTransaction,
                                     QStringLiteral("The transaction has ended already."));
    }
    if (--whole->parts > 0) {
        return;
    }
    if (whole->failed) {
        whole->changes.Rollback();
        throw platform::RuntimeError(
            platform::kNoTransaction,
            QStringLiteral("Nothing was stored, because a part of the change failed."));
    }
    Mapped([&] { whole->changes.Commit(); });
}

void Transaction::Rollback() noexcept {
    const auto whole = std::exchange(whole_, nullptr);
    if (!whole) {
        return;
    }
    whole->failed = true;
    if (--whole->parts == 0) {
        whole->changes.Rollback();
    }
}

}  // namespace dao
