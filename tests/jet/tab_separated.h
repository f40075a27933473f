// Tables of the tree that are kept as text: tabs between fields, "#" before remarks.
#pragma once

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace tarn_test {

using TextFields = std::vector<std::string>;

// The rows of a table, each brought to `width` fields.
inline std::vector<TextFields> ReadTabSeparated(const std::filesystem::path& path,
                                                std::size_t width) {
    std::ifstream file(path);
    std::vector<TextFields> rows;
    for (std::string line; std::getline(file, line);) {
        if (line.empty() || line[0] == '#') continue;
        TextFields& fields = rows.emplace_back(1);
        for (const char c : line) {
            if (c == '\t') {
                fields.emplace_back();
            } else {
                fields.back() += c;
            }
        }
        fields.resize(width);
    }
    return rows;
}

// What pairs of hexadecimal digits stand for, as a row of bytes or of characters.
template <typename Row>
Row FromHex(const std::string& hex) {
    Row row;
    for (std::size_t i = 0; i + 1 < hex.size(); i += 2) {
        row.push_back(
            static_cast<typename Row::value_type>(std::stoul(hex.substr(i, 2), nullptr, 16)));
    }
    return row;
}

}  // namespace tarn_test
