#include "rollup/sqlite_destination.h"

#include <array>
#include <filesystem>

#include "jet/path.h"
#include "rollup/run_lock.h"
#include "rollup/sqlite.h"
#include "rollup/views.h"

namespace rollup {

namespace {

std::string TypeName(ColumnType type) {
    switch (type) {
        case ColumnType::kText:
            return "TEXT";
        case ColumnType::kNumber:
            return "REAL";
        case ColumnType::kWhole:
        case ColumnType::kTruth:
            break;
    }
    return "INTEGER";
}

// "a, b, c" of what each column becomes.
template <typename Words>
std::string Listed(const Table& table, const Words& words) {
    std::string list;
    for (const Column& column : table.columns) {
        list += (list.empty() ? "" : ", ") + words(column);
    }
    return list;
}

std::string Names(const Table& table) {
    return Listed(table, [](const Column& column) { return std::string(column.name); });
}

// Each run asks for files by their paths, and for the other rows by their file.
std::string IndexStatement(const Table& table) {
    const std::string name(table.name);
    const std::string column = table.id == TableId::kFiles ? "path" : "file_id";
    return "CREATE INDEX IF NOT EXISTS " + name + "_" + column + " ON " + name + " (" + column +
           ")";
}

std::string CreateStatement(const Table& table) {
    return "CREATE TABLE IF NOT EXISTS " + std::string(table.name) + " (" +
           Listed(table,
                  [](const Column& column) {
                      return std::string(column.name) + " " + TypeName(column.type);
                  }) +
           ")";
}

std::string InsertStatement(const Table& table) {
    return "INSERT INTO " + std::string(table.name) + " (" + Names(table) + ") VALUES (" +
           Listed(table, [](const Column&) { return std::string("?"); }) + ")";
}

FileRow FileOf(const SqliteStatement& row) {
    FileRow file;
    int column = 0;
    file.fileId = row.OptionalText(column++);
    file.path = row.Text(column++);
    file.sha256 = row.OptionalText(column++);
    file.bytes = row.OptionalWhole(column++);
    file.format = row.OptionalText(column++);
    file.jet = row.OptionalWhole(column++);
    file.unit = row.OptionalText(column++);
    file.state = row.OptionalText(column++);
    file.year = row.OptionalWhole(column++);
    file.unitName = row.OptionalText(column++);
    file.status = StatusOf(row.Text(column++));
    file.reason = row.OptionalText(column);
    return file;
}

class PackedSeason : public Packed {
public:
    explicit PackedSeason(season::Season packed) : season(std::move(packed)) {}
    season::Season season;
};

class SqliteDestination : public Destination {
public:
    SqliteDestination(const std::string& file, const Waiting& waiting)
        : lock_(file + "-lock", waiting), database_(file, SqliteDatabase::Mode::kWrite) {
        // A commit then waits for no disk; a power cut can lose the last files of a run, which
        // the next one reads again.
        database_.Execute(
            "PRAGMA journal_mode = WAL; PRAGMA synchronous = NORMAL;"
            "PRAGMA wal_autocheckpoint = 4000; PRAGMA cache_size = -16000");
        Make();
        for (const Table& table : Tables()) {
            insert_.push_back(database_.Prepare(InsertStatement(table)));
        }
    }

    std::optional<FileRow> Find(const std::string& path) override {
        find_.Bind(0, std::string_view(path));
        std::optional<FileRow> found;
        if (find_.Step()) {
            found = FileOf(find_);
        }
        find_.Reset();
        return found;
    }

    std::vector<FileRow> WithContents(const std::string& sha256) override {
        withContents_.Bind(0, std::string_view(sha256));
        std::vector<FileRow> found;
        while (withContents_.Step()) {
            found.push_back(FileOf(withContents_));
        }
        withContents_.Reset();
        return found;
    }

    void EachPath(const std::function<void(const std::string&)>& take) override {
        SqliteStatement paths = database_.Prepare("SELECT path FROM files ORDER BY path");
        while (paths.Step()) {
            take(paths.Text(0));
        }
    }

    std::unique_ptr<Packed> Pack(season::Season season, const FileRow& /*file*/) const override {
        return std::make_unique<PackedSeason>(std::move(season));
    }

    void Begin() override { database_.Execute("BEGIN IMMEDIATE"); }

    void Put(const FileRow& file) override {
        Remove(file);
        FileCells(file, Inserter());
    }

    void Remove(const FileRow& file) override {
        remove_.Bind(0, std::string_view(file.path));
        remove_.Run();
    }

    void AddContents(const FileRow& file, Packed& packed) override {
        EachRow(dynamic_cast<PackedSeason&>(packed).season, file, Inserter());
    }

    void RemoveContents(const FileRow& file) override {
        for (const Table& table : Tables().subspan(1)) {
            SqliteStatement remove =
                database_.Prepare("DELETE FROM " + std::string(table.name) + " WHERE file_id = ?");
            remove.Bind(0, std::string_view(*file.fileId));
            remove.Run();
        }
    }

    void MoveContents(const FileRow& file, std::optional<std::int64_t> year) override {
        for (const Table& table : Tables().subspan(1)) {
            SqliteStatement move = database_.Prepare("UPDATE " + std::string(table.name) +
                                                     " SET year = ? WHERE file_id = ?");
            move.Bind(0, year ? Cell(*year) : Cell());
            move.Bind(1, std::string_view(*file.fileId));
            move.Run();
        }
    }

    void Commit() override { database_.Execute("COMMIT"); }

    void Rollback() noexcept override {
        try {
            if (database_.IsInTransaction()) {
                database_.Execute("ROLLBACK");
            }
        } catch (const DestinationError&) {
            // The file's own journal does it at the next opening.
        }
    }

    void Finish() override {
        for (const std::string& view : ViewStatements(Dialect::kSqlite)) {
            database_.Execute(view);
        }
        try {
            // One file again, which can be copied; who reads it just now keeps it as it is.
            database_.Execute(
                "PRAGMA busy_timeout = 0; PRAGMA wal_checkpoint(TRUNCATE);"
                "PRAGMA journal_mode = DELETE");
        } catch (const DestinationError&) {
            return;
        }
    }

private:
    // Columns are looked for by name, so that tables which are there may have more of them.
    void Make() {
        database_.Execute("BEGIN IMMEDIATE");
        for (const Table& table : Tables()) {
            database_.Execute(CreateStatement(table));
            database_.Execute(IndexStatement(table));
        }
        database_.Execute("CREATE INDEX IF NOT EXISTS files_sha256 ON files (sha256)");
        database_.Execute("COMMIT");
        const std::string files = "SELECT " + Names(TableOf(TableId::kFiles)) + " FROM files";
        find_ = database_.Prepare(files + " WHERE path = ?");
        withContents_ = database_.Prepare(files + " WHERE sha256 = ? ORDER BY path");
        remove_ = database_.Prepare("DELETE FROM files WHERE path = ?");
    }

    TakeRow Inserter() {
        return [this](TableId table, std::span<const Cell> row) {
            SqliteStatement& insert = insert_[static_cast<std::size_t>(table)];
            for (std::size_t i = 0; i < row.size(); ++i) {
                insert.Bind(static_cast<int>(i), row[i]);
            }
            insert.Run();
        };
    }

    RunLock lock_;
    SqliteDatabase database_;
    SqliteStatement find_{database_, nullptr};
    SqliteStatement withContents_{database_, nullptr};
    SqliteStatement remove_{database_, nullptr};
    std::vector<SqliteStatement> insert_;
};

}  // namespace

std::unique_ptr<Destination> OpenSqlite(const std::string& file, const Waiting& waiting) {
    // Two ways to one file are one file, and one lock.
    std::error_code failed;
    const std::filesystem::path path = std::filesystem::weakly_canonical(jet::PathOf(file), failed);
    return std::make_unique<SqliteDestination>(failed ? file : path.string(), waiting);
}

}  // namespace rollup
