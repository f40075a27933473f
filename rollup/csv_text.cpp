#include "rollup/csv_text.h"

#include <array>
#include <charconv>
#include <cmath>

namespace rollup {

namespace {

void AppendText(std::string& to, std::string_view text) {
    const bool isPlain = !text.empty() && text.find_first_of(",\"\r\n") == std::string_view::npos &&
                         text.front() != ' ' && text.back() != ' ';
    if (isPlain) {
        to += text;
        return;
    }
    to += '"';
    for (const char c : text) {
        to += c;
        if (c == '"') {
            to += c;
        }
    }
    to += '"';
}

void AppendCell(std::string& to, const Cell& cell) {
    if (const auto* text = std::get_if<std::string_view>(&cell)) {
        AppendText(to, *text);
    } else if (const auto* whole = std::get_if<std::int64_t>(&cell)) {
        to += std::to_string(*whole);
    } else if (const auto* truth = std::get_if<bool>(&cell)) {
        to += *truth ? "true" : "false";
    } else if (const auto* number = std::get_if<double>(&cell)) {
        AppendNumber(to, *number);
    }
}

}  // namespace

void AppendNumber(std::string& to, double number) {
    if (std::isnan(number)) {
        to += "nan";
        return;
    }
    std::array<char, 32> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number);
    to.append(digits.data(), end.ptr);
}

void AppendHeading(std::string& to, const Table& table) {
    bool isFirst = true;
    for (const Column& column : table.columns) {
        if (column.name != "year") {
            to += isFirst ? "" : ",";
            to += column.name;
            isFirst = false;
        }
    }
    to += '\n';
}

void AppendRow(std::string& to, const Table& table, std::span<const Cell> row) {
    const std::size_t year = table.YearColumn();
    for (std::size_t i = 0; i < row.size(); ++i) {
        if (i != year) {
            to += i == 0 ? "" : ",";
            AppendCell(to, row[i]);
        }
    }
    to += '\n';
}

bool ReadRecord(GzipReader& file, CsvRecord& into) {
    into.clear();
    std::string field;
    bool isQuoted = false;
    bool wasQuoted = false;
    for (int c = file.Next(); c >= 0; c = file.Next()) {
        if (c == '"') {
            // A second quote within quotes is one of the text's.
            if (!isQuoted && wasQuoted) {
                field += '"';
            }
            isQuoted = !isQuoted;
            wasQuoted = true;
            continue;
        }
        if (isQuoted || (c != ',' && c != '\n')) {
            field += static_cast<char>(c);
            continue;
        }
        into.push_back(wasQuoted || !field.empty() ? std::optional(field) : std::nullopt);
        field.clear();
        wasQuoted = false;
        if (c == '\n') {
            return true;
        }
    }
    return false;
}

}  // namespace rollup
