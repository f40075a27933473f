#include "rollup/postgres_values.h"

#include <cstdlib>

#include "rollup/postgres.h"

namespace rollup {

namespace {

constexpr const char* kContentsQuery =
    "SELECT file_id FROM files WHERE file_id IS NOT NULL AND path = $1";
constexpr const char* kValuesQuery =
    "SELECT resource, fil1, fil2, fil3, fil4, fil5, fil6 FROM nvc WHERE live";

class PostgresValues : public ValueSource {
public:
    explicit PostgresValues(const std::string& connection) : server_(connection) {}

    void EachRow(const Take& take) override { GiveRows(kValuesQuery, {}, take); }

    void EachRowOf(const std::string& fileId, const Take& take) override {
        GiveRows(std::string(kValuesQuery) + " AND file_id = $1", {fileId}, take);
    }

    std::optional<std::string> ContentsOf(const std::string& path) override {
        const PostgresResult found = server_.Execute(kContentsQuery, {path});
        return found.Rows() == 0 ? std::nullopt : found.Field(0, 0);
    }

private:
    void GiveRows(const std::string& query, const PostgresParameters& parameters,
                  const Take& take) {
        server_.EachRow(query, parameters, [&take](const PostgresResult& result) {
            ValueRow row{std::strtoll(result.Text(0, 0).c_str(), nullptr, 10)};
            for (std::size_t fil = 0; fil < row.values.size(); ++fil) {
                const std::string text = result.Text(0, static_cast<int>(fil) + 1);
                row.values[fil] = std::strtod(text.c_str(), nullptr);
            }
            take(row);
        });
    }

    PostgresConnection server_;
};

}  // namespace

std::unique_ptr<ValueSource> OpenPostgresValues(const std::string& connection) {
    return std::make_unique<PostgresValues>(connection);
}

}  // namespace rollup
