#include <sqlite3.h>

#include <cstdlib>
#include <stdexcept>
#include <string>

#include "bench/Peer.h"

namespace bench {

namespace {

class Statement {
public:
    Statement(sqlite3* database, const char* sql) {
        if (sqlite3_prepare_v2(database, sql, -1, &statement_, nullptr) != SQLITE_OK) {
            throw std::runtime_error(sqlite3_errmsg(database));
        }
    }
    Statement(const Statement&) = delete;
    Statement& operator=(const Statement&) = delete;
    ~Statement() { sqlite3_finalize(statement_); }

    void Bind(int place, int value) { sqlite3_bind_int(statement_, place, value); }
    void Bind(int place, float value) {
        sqlite3_bind_double(statement_, place, static_cast<double>(value));
    }
    void Bind(int place, const std::u16string& text) {
        sqlite3_bind_text16(statement_, place, text.data(),
                            static_cast<int>(text.size() * sizeof(char16_t)), SQLITE_STATIC);
    }
    // True while there is a row.
    bool Step() {
        const int result = sqlite3_step(statement_);
        if (result != SQLITE_ROW && result != SQLITE_DONE) throw std::runtime_error("step failed");
        return result == SQLITE_ROW;
    }
    void Reset() { sqlite3_reset(statement_); }
    [[nodiscard]] sqlite3_stmt* Get() const { return statement_; }

private:
    sqlite3_stmt* statement_ = nullptr;
};

// Autocommit, as one row operation of the engine is whole by itself.
class SqlitePeer : public Peer {
public:
    ~SqlitePeer() override { SqlitePeer::Close(); }
    std::string Name() const override { return "sqlite"; }

    void Create(const std::filesystem::path& path) override {
        Open(path);
        Run("CREATE TABLE Numbers (FMZRLKey INTEGER, ResourceNumber INTEGER, FIL1 REAL, FIL2 REAL, "
            "FIL3 REAL, FIL4 REAL, FIL5 REAL, FIL6 REAL, PRIMARY KEY (FMZRLKey, ResourceNumber))");
        Run("CREATE TABLE Texts (Key INTEGER PRIMARY KEY, Name TEXT, Body TEXT)");
    }
    void Open(const std::filesystem::path& path) override {
        if (sqlite3_open(path.c_str(), &database_) != SQLITE_OK) {
            throw std::runtime_error("cannot open");
        }
        Run("PRAGMA journal_mode=WAL");
        const char* synchronous = std::getenv("TARN_BENCH_SYNCHRONOUS");
        Run(std::string("PRAGMA synchronous=") + (synchronous != nullptr ? synchronous : "OFF"));
        // As much cache as the engine gives itself.
        Run("PRAGMA cache_size=-24576");
    }
    void Close() override {
        sqlite3_close(database_);
        database_ = nullptr;
    }

    void Begin() override { Run("BEGIN"); }
    void Commit() override { Run("COMMIT"); }

    void Insert(const std::vector<Row>& rows) override {
        Statement insert(database_, "INSERT INTO Numbers VALUES (?,?,?,?,?,?,?,?)");
        for (const Row& row : rows) {
            insert.Bind(1, row.location);
            insert.Bind(2, row.resource);
            for (int level = 0; level < 6; ++level) insert.Bind(3 + level, row.values[level]);
            insert.Step();
            insert.Reset();
        }
    }
    void Insert(const std::vector<Note>& notes) override {
        Statement insert(database_, "INSERT INTO Texts VALUES (?,?,?)");
        for (const Note& note : notes) {
            insert.Bind(1, note.key);
            insert.Bind(2, note.name);
            insert.Bind(3, note.body);
            insert.Step();
            insert.Reset();
        }
    }
    double Scan(Shape shape) override {
        double sum = 0;
        if (shape == Shape::kNumbers) {
            Statement scan(database_, "SELECT * FROM Numbers");
            while (scan.Step()) {
                for (int i = 0; i < 2; ++i) sum += sqlite3_column_int(scan.Get(), i);
                for (int i = 2; i < 8; ++i) sum += sqlite3_column_double(scan.Get(), i);
            }
            return sum;
        }
        Statement scan(database_, "SELECT * FROM Texts");
        std::string text;
        while (scan.Step()) {
            for (int i = 1; i < 3; ++i) {
                text.assign(reinterpret_cast<const char*>(sqlite3_column_text(scan.Get(), i)),
                            static_cast<std::size_t>(sqlite3_column_bytes(scan.Get(), i)));
                sum += static_cast<double>(text.size());
            }
        }
        return sum;
    }
    double ScanWide() override {
        Statement scan(database_, "SELECT * FROM Texts");
        std::u16string text;
        double sum = 0;
        while (scan.Step()) {
            for (int i = 1; i < 3; ++i) sum += static_cast<double>(ReadText(scan, i, text));
        }
        return sum;
    }
    double Seek(const std::vector<Row>& rows) override {
        Statement seek(database_,
                       "SELECT FIL3 FROM Numbers WHERE FMZRLKey = ? AND ResourceNumber = ?");
        double sum = 0;
        for (const Row& row : rows) {
            seek.Bind(1, row.location);
            seek.Bind(2, row.resource);
            if (seek.Step()) sum += sqlite3_column_double(seek.Get(), 0);
            seek.Reset();
        }
        return sum;
    }
    double Seek(const std::vector<Note>& notes) override {
        Statement seek(database_, "SELECT Name FROM Texts WHERE Key = ?");
        std::u16string text;
        double sum = 0;
        for (const Note& note : notes) {
            seek.Bind(1, note.key);
            if (seek.Step()) sum += static_cast<double>(ReadText(seek, 0, text));
            seek.Reset();
        }
        return sum;
    }
    void UpdateOneField(const std::vector<Row>& rows, int round) override {
        Statement update(database_,
                         "UPDATE Numbers SET FIL2 = ? WHERE FMZRLKey = ? AND ResourceNumber = ?");
        for (const Row& row : rows) {
            update.Bind(1, NewValue(row, round));
            update.Bind(2, row.location);
            update.Bind(3, row.resource);
            update.Step();
            update.Reset();
        }
    }
    void Delete(const std::vector<Row>& rows) override {
        Statement erase(database_, "DELETE FROM Numbers WHERE FMZRLKey = ? AND ResourceNumber = ?");
        for (const Row& row : rows) {
            erase.Bind(1, row.location);
            erase.Bind(2, row.resource);
            erase.Step();
            erase.Reset();
        }
    }
    void UpdateOneField(const std::vector<Note>& notes, int round) override {
        UpdateText(notes, "UPDATE Texts SET Name = ? WHERE Key = ?", round, NewName);
    }
    void UpdateMemo(const std::vector<Note>& notes, int round) override {
        UpdateText(notes, "UPDATE Texts SET Body = ? WHERE Key = ?", round, NewBody);
    }
    void Delete(const std::vector<Note>& notes) override {
        Statement erase(database_, "DELETE FROM Texts WHERE Key = ?");
        for (const Note& note : notes) {
            erase.Bind(1, note.key);
            erase.Step();
            erase.Reset();
        }
    }
    void DeleteSelected() override {
        Statement(database_, "DELETE FROM Numbers WHERE FMZRLKey >= 0").Step();
    }
    double FirstRow() override {
        Statement first(database_,
                        "SELECT FMZRLKey FROM Numbers ORDER BY 1, ResourceNumber LIMIT 1");
        return first.Step() ? sqlite3_column_int(first.Get(), 0) : 0;
    }

private:
    void UpdateText(const std::vector<Note>& notes, const char* sql, int round,
                    std::u16string (*newText)(const Note&, int)) {
        Statement update(database_, sql);
        for (const Note& note : notes) {
            const std::u16string text = newText(note, round);
            update.Bind(1, text);
            update.Bind(2, note.key);
            update.Step();
            update.Reset();
        }
    }
    static std::size_t ReadText(const Statement& row, int column, std::u16string& into) {
        const auto* text = static_cast<const char16_t*>(sqlite3_column_text16(row.Get(), column));
        into.assign(text, static_cast<std::size_t>(sqlite3_column_bytes16(row.Get(), column)) /
                              sizeof(char16_t));
        return into.size();
    }
    void Run(const std::string& sql) {
        if (sqlite3_exec(database_, sql.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) {
            throw std::runtime_error(sqlite3_errmsg(database_));
        }
    }
    sqlite3* database_ = nullptr;
};

}  // namespace

std::unique_ptr<Peer> MakeSqlitePeer() {
    return std::make_unique<SqlitePeer>();
}

}  // namespace bench
