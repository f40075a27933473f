#include "rollup/postgres_destination.h"

#include <array>

#include "rollup/postgres.h"
#include "rollup/postgres_rows.h"
#include "rollup/postgres_schema.h"
#include "rollup/run_lock.h"

namespace rollup {

namespace {

// The data of a COPY for each table; empty where it has no rows.
class PackedRows : public Packed {
public:
    std::array<std::string, kTables> tables;
};

std::optional<std::int64_t> WholeOf(const std::optional<std::string>& text) {
    return text ? std::optional(static_cast<std::int64_t>(std::stoll(*text))) : std::nullopt;
}

FileRow FileOf(const PostgresResult& result, int row) {
    FileRow file;
    int column = 0;
    file.fileId = result.Field(row, column++);
    file.path = result.Text(row, column++);
    file.sha256 = result.Field(row, column++);
    file.bytes = WholeOf(result.Field(row, column++));
    file.format = result.Field(row, column++);
    file.jet = WholeOf(result.Field(row, column++));
    file.unit = result.Field(row, column++);
    file.state = result.Field(row, column++);
    file.year = WholeOf(result.Field(row, column++));
    file.unitName = result.Field(row, column++);
    file.status = StatusOf(result.Text(row, column++));
    file.reason = result.Field(row, column);
    return file;
}

std::string YearCondition(std::optional<std::int64_t> year) {
    return year ? "year = " + std::to_string(*year) : "year IS NULL";
}

// Takes the file's rows out of a table and puts them into it again with `values` for the columns.
std::string MoveStatement(const std::string& table, const std::string& condition,
                          const std::string& columns, const std::string& values) {
    return "WITH gone AS (DELETE FROM " + table + " WHERE file_id = $1 AND " + condition +
           " RETURNING *) INSERT INTO " + table + " (" + columns + ") SELECT " + values +
           " FROM gone";
}

class PostgresDestination : public Destination {
public:
    PostgresDestination(const std::string& connection, const Waiting& waiting)
        : connection_(connection) {
        WaitUntil([this] { return TryLock(); }, waiting);
        // A commit then waits for no disk; a power cut of the server can lose the last files
        // of a run, which the next one reads again.
        connection_.Execute("SET synchronous_commit = off");
        schema_ = std::make_unique<PostgresSchema>(connection_);
        fileColumns_ = schema_->Columns(TableId::kFiles);
    }

    std::optional<FileRow> Find(const std::string& path) override {
        const PostgresResult found =
            connection_.Execute("SELECT " + fileColumns_ + " FROM files WHERE path = $1", {path});
        return found.Rows() == 0 ? std::nullopt : std::optional(FileOf(found, 0));
    }

    std::vector<FileRow> WithContents(const std::string& sha256) override {
        const PostgresResult found = connection_.Execute(
            "SELECT " + fileColumns_ + " FROM files WHERE sha256 = $1 ORDER BY path COLLATE \"C\"",
            {sha256});
        std::vector<FileRow> files;
        for (int row = 0; row < found.Rows(); ++row) {
            files.push_back(FileOf(found, row));
        }
        return files;
    }

    void EachPath(const std::function<void(const std::string&)>& take) override {
        connection_.EachRow("SELECT path FROM files", {},
                            [&take](const PostgresResult& row) { take(row.Text(0, 0)); });
    }

    std::unique_ptr<Packed> Pack(season::Season season, const FileRow& file) const override {
        auto packed = std::make_unique<PackedRows>();
        EachRow(season, file, [&](TableId table, std::span<const Cell> row) {
            std::string& data = packed->tables[static_cast<std::size_t>(table)];
            const PostgresFormat& format = schema_->FormatOf(table);
            if (data.empty()) {
                data = format.Heading();
            }
            format.Append(data, row);
        });
        return packed;
    }

    void Begin() override { connection_.Execute("BEGIN"); }

    void Put(const FileRow& file) override {
        schema_->MakeRoomFor(file.year);
        Remove(file);
        FileCells(file, [this](TableId table, std::span<const Cell> row) {
            std::string data(schema_->FormatOf(table).Heading());
            schema_->FormatOf(table).Append(data, row);
            Copy(table, std::move(data));
        });
    }

    void Remove(const FileRow& file) override {
        connection_.Execute("DELETE FROM files WHERE path = $1", {file.path});
    }

    void AddContents(const FileRow& file, Packed& packed) override {
        schema_->MakeRoomFor(file.year);
        for (const Table& table : Tables().subspan(1)) {
            std::string& data =
                dynamic_cast<PackedRows&>(packed).tables[static_cast<std::size_t>(table.id)];
            if (!data.empty()) {
                Copy(table.id, std::move(data));
            }
        }
    }

    void RemoveContents(const FileRow& file) override {
        for (const Table& table : Tables().subspan(1)) {
            connection_.Execute("DELETE FROM " + std::string(table.name) +
                                    " WHERE file_id = $1 AND " + YearCondition(file.year),
                                {file.fileId});
        }
    }

    // An update could not move rows to a partition on another server.
    void MoveContents(const FileRow& file, std::optional<std::int64_t> year) override {
        schema_->MakeRoomFor(year);
        const std::string to = year ? std::to_string(*year) : "NULL";
        for (const Table& table : Tables().subspan(1)) {
            const std::string name(table.name);
            const std::string columns = schema_->Columns(table.id);
            std::string moved = columns;
            const std::string own = connection_.Quoted("year");
            moved.replace(moved.find(own), own.size(), to);
            connection_.Execute(MoveStatement(name, YearCondition(file.year), columns, moved),
                                {file.fileId});
        }
    }

    void Commit() override {
        connection_.Execute("COMMIT");
        schema_->Committed();
    }

    void Rollback() noexcept override {
        schema_->RolledBack();
        try {
            if (connection_.IsInTransaction()) {
                connection_.Execute("ROLLBACK");
            }
        } catch (const std::exception&) {
            // The connection is lost, and the server rolls back by itself.
        }
    }

    void Finish() override {
        try {
            schema_->MakeViews();
        } catch (const std::exception&) {
            // They only make things easier; who may not make any, or has tables of types that they
            // do not fit, does without.
        }
        // One transaction that the disk has means that it has all before; it has to write
        // something.
        connection_.Execute("SET synchronous_commit = on");
        connection_.Execute("SELECT pg_logical_emit_message(true, 'fcdtool rollup', 'ended')");
    }

private:
    // It ends with the connection, however that ends. Roll-ups in other schemas are others.
    bool TryLock() {
        return connection_
                   .Execute(
                       "SELECT pg_try_advisory_lock(hashtext('fcdtool rollup'), "
                       "hashtext(coalesce(current_schema(), '')))")
                   .Text(0, 0) == "t";
    }

    void Copy(TableId table, std::string data) {
        const PostgresFormat& format = schema_->FormatOf(table);
        data += format.Ending();
        connection_.Copy("COPY " + std::string(TableOf(table).name) + " (" +
                             schema_->Columns(table) + ") FROM STDIN" +
                             (format.IsBinary() ? " (FORMAT binary)" : ""),
                         data);
    }

    PostgresConnection connection_;
    std::unique_ptr<PostgresSchema> schema_;
    std::string fileColumns_;
};

}  // namespace

std::unique_ptr<Destination> OpenPostgres(const std::string& connection, const Waiting& waiting) {
    return std::make_unique<PostgresDestination>(connection, waiting);
}

}  // namespace rollup
