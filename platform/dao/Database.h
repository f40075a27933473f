// Database and record set as the program speaks of them: names and texts are QString, errors are
// platform::RuntimeError with the engine's number. Closing makes everything durable.
#pragma once

#include <QString>
#include <QStringList>

#include <cstdint>
#include <memory>
#include <vector>

#include "platform/RuntimeError.h"
#include "platform/dao/Transaction.h"

namespace jet {
class Database;
}

namespace dao {

class Recordset;

enum class FieldType { kLong, kSingle, kText, kMemo };

struct FieldDefinition {
    QString name;
    FieldType type = FieldType::kLong;
    int size = 0;  // characters, kText only
    bool autoIncrement = false;
};

struct IndexDefinition {
    QString name;
    QStringList fields;
    bool primary = false;
    bool unique = false;
};

struct TableDefinition {
    QString name;
    std::vector<FieldDefinition> fields;
    std::vector<IndexDefinition> indexes;
};

enum class OpenMode {
    kExclusive,  // read and write, nobody else
    kShared,     // read and write if possible, else as below
    kReading,    // beside other readers; the file may be on a read-only medium
};

class Database {
public:
    static std::unique_ptr<Database> Open(const QString& path, OpenMode mode);
    // Throws when a file of that name exists and somebody holds it or it cannot be written, so that
    // nobody's open file is replaced under their hands.
    static void RequireFree(const QString& path);
    // A file that has just been copied over another must not get the changes that the other one was
    // waiting for.
    static void DiscardLog(const QString& path);
    ~Database();
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;

    // Begins a transaction, or joins the one that is open; see Transaction.h.
    [[nodiscard]] Transaction Begin();
    [[nodiscard]] bool InTransaction() const;

    // Rolls an open transaction back, makes everything durable and gives up the file, even when it
    // throws.
    void Close();
    // Carries all that was stored so far through a power cut. 3246 inside a transaction.
    void MakeDurable();
    // Spares the first MakeDurable a flush: for a moment in which nobody waits.
    void SecureLog() noexcept;
    [[nodiscard]] bool HasTable(const QString& name) const;
    // All records of a table; kNoSuchTable (3078).
    [[nodiscard]] std::unique_ptr<Recordset> OpenTable(const QString& name);
    // The records that a query selects, in its order; jet/query.h says what it may ask for.
    [[nodiscard]] std::unique_ptr<Recordset> OpenDynaset(const QString& sql);
    void AppendTable(const TableDefinition& table);
    // Operations of an interrupted run that opening recovered.
    [[nodiscard]] int RecoveredOperations() const;
    // The names of logs beside the file that hold changes which it lacks; empty when there are
    // none.
    [[nodiscard]] QString KeptLog() const;
    // Operations that no checkpoint has written into the file.
    [[nodiscard]] std::uint64_t PendingOperations() const;
    // What MakeDurable found: the file has another name now, or was removed and has been put back.
    [[nodiscard]] bool WasMoved() const;
    [[nodiscard]] bool WasPutBack() const;
    // What contradicts the format anywhere in the file, a sentence for each; reads all of it.
    [[nodiscard]] QStringList Damage();

private:
    explicit Database(std::unique_ptr<jet::Database> database);
    std::unique_ptr<jet::Database> database_;
    std::weak_ptr<Transaction::Whole> transaction_;
};

}  // namespace dao
