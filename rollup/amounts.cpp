#include "rollup/amounts.h"

#include <cmath>
#include <cstdlib>

#include "rollup/csv_folder.h"
#include "rollup/csv_text.h"
#include "rollup/destination_name.h"
#include "rollup/postgres.h"
#include "rollup/reader.h"
#include "rollup/sqlite.h"

namespace rollup {

namespace {

constexpr const char* kFilesQuery = "SELECT path, file_id FROM files WHERE file_id IS NOT NULL";
constexpr const char* kValuesQuery =
    "SELECT file_id, resource, fil1, fil2, fil3, fil4, fil5, fil6 FROM nvc WHERE live";
constexpr int kFirstFil = 2;  // its column

double NumberOf(const std::string& text) {
    return std::strtod(text.c_str(), nullptr);
}

std::int64_t WholeOf(const std::string& text) {
    return std::strtoll(text.c_str(), nullptr, 10);
}

}  // namespace

Amounts::Amounts(const std::string& destination) {
    const DestinationName name = ParseDestination(destination);
    switch (name.kind) {
        case DestinationKind::kSqlite:
            ReadSqlite(name.rest);
            break;
        case DestinationKind::kPostgres:
            ReadPostgres(name.rest);
            break;
        case DestinationKind::kCsv:
            ReadCsv(name.rest);
            break;
    }
}

void Amounts::ReadSqlite(const std::string& file) {
    SqliteDatabase database(file, SqliteDatabase::Mode::kRead);
    for (SqliteStatement row = database.Prepare(kFilesQuery); row.Step();) {
        TakeFile(row.Text(0), row.Text(1));
    }
    for (SqliteStatement row = database.Prepare(kValuesQuery); row.Step();) {
        const std::string id = row.Text(0);
        for (int fil = 1; fil <= season::kFilLevels; ++fil) {
            Take(id, row.Whole(1), fil, row.Number(kFirstFil + fil - 1));
        }
    }
}

void Amounts::ReadPostgres(const std::string& connection) {
    PostgresConnection server(connection);
    server.EachRow(kFilesQuery, {}, [this](const PostgresResult& row) {
        TakeFile(row.Text(0, 0), row.Text(0, 1));
    });
    server.EachRow(kValuesQuery, {}, [this](const PostgresResult& row) {
        const std::string id = row.Text(0, 0);
        const std::int64_t resource = WholeOf(row.Text(0, 1));
        for (int fil = 1; fil <= season::kFilLevels; ++fil) {
            Take(id, resource, fil, NumberOf(row.Text(0, kFirstFil + fil - 1)));
        }
    });
}

void Amounts::ReadCsv(const std::string& path) {
    const CsvFolder folder(path);
    if (!std::filesystem::is_directory(folder.Path() / TableOf(TableId::kFiles).name)) {
        throw DestinationError(path + ": There is no roll-up in this folder.");
    }
    folder.EachFile(TableId::kFiles,
                    [this](const std::filesystem::path& file, Year year, const std::string&) {
                        if (const auto row = CsvFolder::ReadFileRow(file, year)) {
                            TakeFile(row->path, row->fileId.value_or(""));
                        }
                    });
    // file_id, zone, location, resource, fil1 to fil6, live
    constexpr std::size_t kFields = 11;
    constexpr std::size_t kResource = 3;
    folder.EachFile(TableId::kNvc, [this](const std::filesystem::path& file, Year,
                                          const std::string& id) {
        GzipReader reader(file);
        CsvRecord fields;
        ReadRecord(reader, fields);
        while (ReadRecord(reader, fields) && fields.size() == kFields) {
            for (int fil = 1; fields.back() == "true" && fil <= season::kFilLevels; ++fil) {
                const std::string value =
                    fields[kResource + static_cast<std::size_t>(fil)].value_or("");
                Take(id, WholeOf(fields[kResource].value_or("")), fil, NumberOf(value));
            }
        }
    });
}

void Amounts::TakeFile(const std::string& path, const std::string& fileId) {
    contentsOfPath_[path] = fileId;
}

void Amounts::Take(const std::string& fileId, std::int64_t resource, int fil, double value) {
    if (value == 0 || !std::isfinite(value)) {
        return;
    }
    const std::size_t number = numbers_.try_emplace(fileId, numbers_.size()).first->second;
    Series& series = series_[{resource, fil, value < 0}];
    series.amounts.push_back(static_cast<float>(std::abs(value)));
    if (series.ends.empty() || series.ends.back().first != number) {
        series.ends.emplace_back(number, 0);
    }
    series.ends.back().second = series.amounts.size();
}

std::set<std::string> Amounts::ContentsOf(const std::filesystem::path& file) const {
    std::error_code failed;
    std::filesystem::path path = std::filesystem::canonical(file, failed);
    path = failed ? file : path;
    std::set<std::string> contents{FileIdOf(path)};
    const auto found = contentsOfPath_.find(PathText(path));
    if (found != contentsOfPath_.end()) {
        contents.insert(found->second);
    }
    return contents;
}

std::vector<double> Amounts::Logarithms(std::int32_t resource, int fil, bool negative,
                                        const std::set<std::string>& without) const {
    std::set<std::size_t> leftOut;
    for (const std::string& contents : without) {
        const auto number = numbers_.find(contents);
        if (number != numbers_.end()) {
            leftOut.insert(number->second);
        }
    }
    std::vector<double> logarithms;
    const auto series = series_.find({resource, fil, negative});
    if (series == series_.end()) {
        return logarithms;
    }
    std::size_t at = 0;
    for (const auto& [number, end] : series->second.ends) {
        for (; !leftOut.contains(number) && at < end; ++at) {
            logarithms.push_back(std::log10(double{series->second.amounts[at]}));
        }
        at = end;
    }
    return logarithms;
}

}  // namespace rollup
