#include "jetsql/command/Rows.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <string_view>

namespace jetsql {

namespace {

constexpr std::size_t kRowsForWidths = 1000;
constexpr std::string_view kHexDigits = "0123456789abcdef";

// The shortest text that gives the same number when it is read.
std::string NumberText(double number) {
    std::array<char, 32> text{};
    const auto end = std::to_chars(text.data(), text.data() + text.size(), number);
    return {text.data(), end.ptr};
}

std::string Bytes(sqlite3_stmt* statement, int column) {
    const auto* bytes = static_cast<const char*>(sqlite3_column_blob(statement, column));
    const auto count = static_cast<std::size_t>(sqlite3_column_bytes(statement, column));
    return bytes == nullptr ? std::string() : std::string(bytes, count);
}

std::string Hex(const std::string& bytes) {
    std::string text;
    for (const char byte : bytes) {
        const auto value = static_cast<unsigned char>(byte);
        text += kHexDigits[value >> 4U];
        text += kHexDigits[value & 15U];
    }
    return text;
}

std::string PlainText(sqlite3_stmt* statement, int column) {
    switch (sqlite3_column_type(statement, column)) {
        case SQLITE_NULL:
            return {};
        case SQLITE_FLOAT:
            return NumberText(sqlite3_column_double(statement, column));
        case SQLITE_BLOB:
            return Hex(Bytes(statement, column));
        default: {
            const auto* text =
                reinterpret_cast<const char*>(sqlite3_column_text(statement, column));
            return {text, static_cast<std::size_t>(sqlite3_column_bytes(statement, column))};
        }
    }
}

// Characters, not bytes.
std::size_t Width(const std::string& text) {
    return static_cast<std::size_t>(
        std::ranges::count_if(text, [](char byte) { return (byte & 0xC0) != 0x80; }));
}

class TablePrinter : public RowPrinter {
public:
    explicit TablePrinter(std::ostream& out) : out_(out) {}

    void Begin(const std::vector<std::string>& headings) override {
        rows_ = {headings};
        numeric_.assign(headings.size(), false);
        widths_.clear();
    }

    void Row(sqlite3_stmt* statement) override {
        std::vector<std::string> cells;
        for (int column = 0; column < sqlite3_column_count(statement); ++column) {
            cells.push_back(OneLine(PlainText(statement, column)));
            const int type = sqlite3_column_type(statement, column);
            if (type == SQLITE_INTEGER || type == SQLITE_FLOAT) {
                numeric_[static_cast<std::size_t>(column)] = true;
            }
        }
        if (!widths_.empty()) {
            Print(cells, false);
            return;
        }
        rows_.push_back(std::move(cells));
        if (rows_.size() > kRowsForWidths) Flush();
    }

    void End() override { Flush(); }

private:
    static std::string OneLine(std::string text) {
        std::ranges::replace_if(
            text, [](char byte) { return byte >= 0 && byte < ' '; }, ' ');
        return text;
    }

    void Flush() {
        if (!widths_.empty()) return;
        widths_.assign(rows_.front().size(), 0);
        for (const auto& row : rows_) {
            for (std::size_t column = 0; column < row.size(); ++column) {
                widths_[column] = std::max(widths_[column], Width(row[column]));
            }
        }
        for (std::size_t row = 0; row < rows_.size(); ++row) {
            Print(rows_[row], row == 0);
            if (row == 0) Rule();
        }
        rows_.clear();
    }

    void Print(const std::vector<std::string>& row, bool heading) {
        std::string line;
        for (std::size_t column = 0; column < row.size(); ++column) {
            const std::size_t width = Width(row[column]);
            const std::string room(widths_[column] - std::min(width, widths_[column]), ' ');
            if (column > 0) line += "  ";
            line += numeric_[column] && !heading ? room + row[column] : row[column] + room;
        }
        line.erase(line.find_last_not_of(' ') + 1);
        out_ << line << '\n';
    }

    void Rule() {
        std::string line;
        for (const std::size_t width : widths_) {
            if (!line.empty()) line += "  ";
            line += std::string(std::max<std::size_t>(width, 1), '-');
        }
        out_ << line << '\n';
    }

    std::ostream& out_;
    std::vector<std::vector<std::string>> rows_;
    std::vector<std::size_t> widths_;  // empty while the first rows are gathered
    std::vector<bool> numeric_;
};

class CsvPrinter : public RowPrinter {
public:
    explicit CsvPrinter(std::ostream& out) : out_(out) {}

    void Begin(const std::vector<std::string>& headings) override {
        const char* separator = "";
        for (const std::string& heading : headings) {
            out_ << separator << Field(heading);
            separator = ",";
        }
        out_ << "\r\n";
    }

    // A null is nothing, an empty text two quotes.
    void Row(sqlite3_stmt* statement) override {
        for (int column = 0; column < sqlite3_column_count(statement); ++column) {
            if (column > 0) out_ << ',';
            const std::string text = PlainText(statement, column);
            const int type = sqlite3_column_type(statement, column);
            out_ << (type == SQLITE_TEXT && text.empty() ? "\"\"" : Field(text));
        }
        out_ << "\r\n";
    }

    void End() override {}

private:
    static std::string Field(const std::string& text) {
        if (text.find_first_of(",\"\r\n") == std::string::npos) return text;
        std::string quoted = "\"";
        for (const char character : text) {
            if (character == '"') quoted += '"';
            quoted += character;
        }
        return quoted + '"';
    }

    std::ostream& out_;
};

class JsonPrinter : public RowPrinter {
public:
    explicit JsonPrinter(std::ostream& out) : out_(out) {}

    void Begin(const std::vector<std::string>& headings) override {
        headings_ = headings;
        out_ << '[';
        separator_ = "\n";
    }

    void Row(sqlite3_stmt* statement) override {
        out_ << separator_ << '{';
        separator_ = ",\n";
        for (int column = 0; column < sqlite3_column_count(statement); ++column) {
            if (column > 0) out_ << ", ";
            out_ << Quoted(headings_[static_cast<std::size_t>(column)]) << ": "
                 << JsonValue(statement, column);
        }
        out_ << '}';
    }

    void End() override { out_ << "\n]\n"; }

private:
    static std::string JsonValue(sqlite3_stmt* statement, int column) {
        switch (sqlite3_column_type(statement, column)) {
            case SQLITE_NULL:
                return "null";
            case SQLITE_INTEGER:
                return PlainText(statement, column);
            case SQLITE_FLOAT: {
                const double number = sqlite3_column_double(statement, column);
                return std::isfinite(number) ? NumberText(number) : "null";
            }
            default:
                return Quoted(PlainText(statement, column));
        }
    }

    static std::string Quoted(const std::string& text) {
        std::string quoted = "\"";
        for (const char character : text) {
            if (character == '"' || character == '\\') {
                quoted += '\\';
                quoted += character;
            } else if (character >= 0 && character < ' ') {
                quoted += "\\u00" + Hex(std::string(1, character));
            } else {
                quoted += character;
            }
        }
        return quoted + '"';
    }

    std::ostream& out_;
    std::vector<std::string> headings_;
    const char* separator_ = "";
};

}  // namespace

std::unique_ptr<RowPrinter> MakePrinter(Style style, std::ostream& out) {
    switch (style) {
        case Style::kCsv:
            return std::make_unique<CsvPrinter>(out);
        case Style::kJson:
            return std::make_unique<JsonPrinter>(out);
        default:
            return std::make_unique<TablePrinter>(out);
    }
}

}  // namespace jetsql
