// Any number of changes as one: all of them, or none.
//
//   jet::Transaction transaction = database->Begin()
//   ... add, edit and delete records of any tables, create tables ...
//   transaction.Commit()
//
// Record sets see the changes at once, whether they were opened before Begin or after it. Nothing
// of them is in the file before Commit, which is one write to its log: it survives the end of the
// process entirely or not at all. (A transaction that outgrows the memory of
// OpenOptions::changedBytes, or fills a table with more pages than it comes back to, moves pages to
// the log before; they count for nothing until that write.) Database::MakeDurable afterwards
// carries it through a power cut.
//
// A change that is refused or fails within a transaction (a key that exists, no memory) is undone
// alone; what was changed before it stays, and the transaction goes on.
//
// After a rollback every record set has a definite position:
// - On a record that existed before Begin and was not deleted since, it stays there, and shows the
//   values from before Begin.
// - On any other record it has no current record; MoveNext and MovePrevious go to the neighbors of
//   the place where that record was. The same holds where the current record had been deleted.
// - The result of a query has the rows that it had at Begin; one that was opened since then has
//   those of its rows that existed before and were not deleted.
// - An open edit is dropped.
// - On a table that was created since Begin every call throws kNoSuchTable.
//
// A database has one transaction at a time. Record sets may stay open from one to the next. A
// database that is closed meanwhile rolls its transaction back.
#pragma once

#include <memory>

#include "jet/error.h"

namespace jet {

class OpenFile;

class Transaction {
public:
    Transaction(Transaction&& other) noexcept;
    // Rolls back what this one holds, and takes over the other.
    Transaction& operator=(Transaction&& other) noexcept;
    ~Transaction();  // rolls back unless committed

    // When it throws, everything is as it was before Begin. Errors: kNoTransaction (it has ended
    // already), kClosed, kDiskFull, kFileTooLarge, kIo, kOutOfMemory.
    void Commit();
    // Nothing happens when it has ended already.
    void Rollback() noexcept;
    // Neither committed nor rolled back yet.
    [[nodiscard]] bool IsOpen() const;

private:
    friend class Database;
    explicit Transaction(std::shared_ptr<OpenFile> file) : file_(std::move(file)) {}

    std::shared_ptr<OpenFile> file_;  // null once it has ended
};

}  // namespace jet
