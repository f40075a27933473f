// Any number of changes to a database as one: all of them, or none.
//
//   dao::Transaction transaction = database.Begin()
//   ... add, edit and delete records, append tables ...
//   transaction.Commit()
//
// Nothing is in the file before Commit. What is not committed when its Transaction is destroyed, by
// an error that is thrown past it for example, is rolled back. A record that is refused is undone
// alone, and the transaction goes on.
//
// Transactions join: a Begin while one is open belongs to that one. So a procedure that is an
// action of its own can also be a part of another one. The whole is committed when the last of its
// Transactions has been, which is the outermost; if one of them is rolled back, the whole is. The
// changes then stay visible until the outermost ends, and its Commit throws.
//
// Errors are platform::RuntimeError.
#pragma once

#include <memory>

#include "platform/RuntimeError.h"

namespace jet {
class Database;
}

namespace dao {

class Transaction {
public:
    Transaction(Transaction&& other) noexcept = default;
    Transaction& operator=(Transaction&& other) = delete;
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;
    ~Transaction();  // rolls back unless committed

    // Afterwards all is stored, or will be when the outermost is committed. When it throws, nothing
    // of the whole is there: 3034 (this one has ended already, or a part of the whole was rolled
    // back), 3420 (the database was closed), and the errors of writing.
    void Commit();
    // Nothing happens when it has ended already.
    void Rollback() noexcept;

private:
    friend class Database;
    struct Whole;
    explicit Transaction(std::shared_ptr<Whole> whole);
    // Joins the one that `open` refers to, or begins one that it then refers to.
    static Transaction Begin(jet::Database& database, std::weak_ptr<Whole>& open);
    static bool IsOpen(const std::weak_ptr<Whole>& open);

    std::shared_ptr<Whole> whole_;  // null once this one has ended
};

}  // namespace dao
