// The amounts of a roll-up: what values of the same kind are elsewhere.
#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <tuple>
#include <unordered_map>
#include <vector>

#include "rollup/destination.h"

namespace rollup {

// Held in memory, four bytes for each amount.
class Amounts {
public:
    // Reads all live values of a roll-up, of whatever kind its destination is; it stays as it is.
    // Throws DestinationError.
    explicit Amounts(const std::string& destination);

    // The contents that a data file has or had: those of its path in the roll-up, and its own.
    // Throws season::Refused when it cannot be read.
    [[nodiscard]] std::set<std::string> ContentsOf(const std::filesystem::path& file) const;
    // log10 of the amounts of one resource, FIL (1 to 6) and sign, but for those of the contents
    // named. Values of 0 and infinite ones have no amount.
    [[nodiscard]] std::vector<double> Logarithms(std::int32_t resource, int fil, bool negative,
                                                 const std::set<std::string>& without) const;

private:
    // Amounts in the order in which they came, and where those of each contents end.
    struct Series {
        std::vector<float> amounts;
        std::vector<std::pair<std::size_t, std::size_t>> ends;  // the number of the contents, end
    };

    void ReadSqlite(const std::string& file);
    void ReadPostgres(const std::string& connection);
    void ReadCsv(const std::string& folder);
    void TakeFile(const std::string& path, const std::string& fileId);
    void Take(const std::string& fileId, std::int64_t resource, int fil, double value);

    std::map<std::tuple<std::int64_t, int, bool>, Series> series_;
    std::unordered_map<std::string, std::size_t> numbers_;  // of contents
    std::unordered_map<std::string, std::string> contentsOfPath_;
};

}  // namespace rollup
