#include "rollup/value_source.h"

#include <cstdlib>

#include "jet/path.h"
#include "rollup/csv_folder.h"
#include "rollup/csv_text.h"
#include "rollup/destination.h"
#include "rollup/destination_name.h"
#include "rollup/postgres_values.h"
#include "rollup/sqlite.h"

namespace rollup {

namespace {

constexpr const char* kContentsQuery =
    "SELECT file_id FROM files WHERE file_id IS NOT NULL AND path = ";
constexpr const char* kValuesQuery =
    "SELECT resource, fil1, fil2, fil3, fil4, fil5, fil6 FROM nvc WHERE live";

double NumberOf(const std::string& text) {
    return std::strtod(text.c_str(), nullptr);
}

std::int64_t WholeOf(const std::string& text) {
    return std::strtoll(text.c_str(), nullptr, 10);
}

class SqliteValues : public ValueSource {
public:
    explicit SqliteValues(const std::string& file) : database_(file, SqliteDatabase::Mode::kRead) {}

    void EachRow(const Take& take) override { GiveRows(database_.Prepare(kValuesQuery), take); }

    void EachRowOf(const std::string& fileId, const Take& take) override {
        SqliteStatement rows = database_.Prepare(std::string(kValuesQuery) + " AND file_id = ?");
        rows.Bind(0, std::string_view(fileId));
        GiveRows(std::move(rows), take);
    }

    std::optional<std::string> ContentsOf(const std::string& path) override {
        SqliteStatement found = database_.Prepare(std::string(kContentsQuery) + "?");
        found.Bind(0, std::string_view(path));
        return found.Step() ? std::optional(found.Text(0)) : std::nullopt;
    }

private:
    static void GiveRows(SqliteStatement rows, const Take& take) {
        while (rows.Step()) {
            ValueRow row{rows.Whole(0)};
            for (std::size_t fil = 0; fil < row.values.size(); ++fil) {
                row.values[fil] = rows.Number(static_cast<int>(fil) + 1);
            }
            take(row);
        }
    }

    SqliteDatabase database_;
};

class CsvValues : public ValueSource {
public:
    explicit CsvValues(const std::string& path) : folder_(jet::PathOf(path)) {
        if (!std::filesystem::is_directory(folder_.Path() / TableOf(TableId::kFiles).name)) {
            throw DestinationError(path + ": There is no roll-up in this folder.");
        }
    }

    void EachRow(const Take& take) override {
        folder_.EachFile(TableId::kNvc, [&take](const std::filesystem::path& file, Year,
                                                const std::string&) { GiveRows(file, take); });
    }

    void EachRowOf(const std::string& fileId, const Take& take) override {
        folder_.EachFile(TableId::kNvc,
                         [&](const std::filesystem::path& file, Year, const std::string& id) {
                             if (id == fileId) {
                                 GiveRows(file, take);
                             }
                         });
    }

    std::optional<std::string> ContentsOf(const std::string& path) override {
        std::optional<std::string> contents;
        folder_.EachFile(TableId::kFiles, [&](const std::filesystem::path& file, Year year,
                                              const std::string& name) {
            if (name != CsvFolder::NameOfPath(path)) {
                return;
            }
            if (const auto row = CsvFolder::ReadFileRow(file, year)) {
                contents = row->fileId;
            }
        });
        return contents;
    }

private:
    static void GiveRows(const std::filesystem::path& file, const Take& take) {
        // file_id, zone, location, resource, fil1 to fil6, live
        constexpr std::size_t kFields = 11;
        constexpr std::size_t kResource = 3;
        GzipReader reader(file);
        CsvRecord fields;
        ReadRecord(reader, fields);
        while (ReadRecord(reader, fields) && fields.size() == kFields) {
            if (fields.back() != "true") {
                continue;
            }
            ValueRow row{WholeOf(fields[kResource].value_or(""))};
            for (std::size_t fil = 0; fil < row.values.size(); ++fil) {
                row.values[fil] = NumberOf(fields[kResource + 1 + fil].value_or(""));
            }
            take(row);
        }
    }

    CsvFolder folder_;
};

}  // namespace

std::unique_ptr<ValueSource> OpenValues(const std::string& destination) {
    const DestinationName name = ParseDestination(destination);
    switch (name.kind) {
        case DestinationKind::kPostgres:
            return OpenPostgresValues(name.rest);
        case DestinationKind::kCsv:
            return std::make_unique<CsvValues>(name.rest);
        case DestinationKind::kSqlite:
            break;
    }
    return std::make_unique<SqliteValues>(name.rest);
}

}  // namespace rollup
