#include "rollup/postgres_rows.h"

#include <bit>
#include <cmath>
#include <limits>
#include <utility>

#include "rollup/csv_text.h"
#include "rollup/destination.h"

namespace rollup {

namespace {

// Numbers of the types in every server's catalog.
constexpr std::uint32_t kBool = 16;
constexpr std::uint32_t kInt8 = 20;
constexpr std::uint32_t kInt2 = 21;
constexpr std::uint32_t kInt4 = 23;
constexpr std::uint32_t kText = 25;
constexpr std::uint32_t kFloat4 = 700;
constexpr std::uint32_t kFloat8 = 701;
constexpr std::uint32_t kVarchar = 1043;

bool IsKnown(ColumnType column, std::uint32_t type) {
    switch (column) {
        case ColumnType::kText:
            return type == kText || type == kVarchar;
        case ColumnType::kWhole:
            return type == kInt2 || type == kInt4 || type == kInt8;
        case ColumnType::kNumber:
            return type == kFloat4 || type == kFloat8;
        case ColumnType::kTruth:
            break;
    }
    return type == kBool;
}

// The bytes of a number, the highest first.
template <typename Number>
void AppendBytes(std::string& to, Number number) {
    for (int shift = (static_cast<int>(sizeof(Number)) - 1) * 8; shift >= 0; shift -= 8) {
        to += static_cast<char>(number >> shift & 0xFFU);
    }
}

template <typename Number>
void AppendField(std::string& to, Number number) {
    AppendBytes(to, static_cast<std::uint32_t>(sizeof(Number)));
    AppendBytes(to, number);
}

template <typename Small>
Small Narrow(std::int64_t number) {
    if (!std::in_range<Small>(number)) {
        throw FileNotTaken("The number " + std::to_string(number) +
                           " has no room in the destination's column.");
    }
    return static_cast<Small>(number);
}

void AppendWhole(std::string& to, std::int64_t number, std::uint32_t type) {
    if (type == kInt2) {
        AppendField(to, static_cast<std::uint16_t>(Narrow<std::int16_t>(number)));
    } else if (type == kInt4) {
        AppendField(to, static_cast<std::uint32_t>(Narrow<std::int32_t>(number)));
    } else {
        AppendField(to, static_cast<std::uint64_t>(number));
    }
}

void AppendNumberBytes(std::string& to, double number, std::uint32_t type) {
    if (type == kFloat4) {
        AppendField(to, std::bit_cast<std::uint32_t>(static_cast<float>(number)));
    } else {
        AppendField(to, std::bit_cast<std::uint64_t>(number));
    }
}

// The server keeps no null characters within texts.
constexpr std::string_view kInPlaceOfNull = "\xEF\xBF\xBD";

void AppendTextBytes(std::string& to, std::string_view text) {
    if (text.find('\0') == std::string_view::npos) {
        AppendBytes(to, static_cast<std::uint32_t>(text.size()));
        to += text;
        return;
    }
    std::string kept;
    for (const char c : text) {
        c == '\0' ? kept.append(kInPlaceOfNull) : kept.append(1, c);
    }
    AppendTextBytes(to, kept);
}

void AppendEscaped(std::string& to, std::string_view text) {
    for (const char c : text) {
        switch (c) {
            case '\\':
                to += "\\\\";
                break;
            case '\n':
                to += "\\n";
                break;
            case '\r':
                to += "\\r";
                break;
            case '\t':
                to += "\\t";
                break;
            case '\0':
                to += kInPlaceOfNull;
                break;
            default:
                to += c;
        }
    }
}

void AppendNumberText(std::string& to, double number) {
    if (std::isinf(number)) {
        to += number < 0 ? "-Infinity" : "Infinity";
    } else {
        AppendNumber(to, number);
    }
}

}  // namespace

PostgresFormat::PostgresFormat(const Table& table, std::vector<std::uint32_t> types)
    : types_(std::move(types)), isBinary_(true) {
    for (std::size_t i = 0; i < types_.size(); ++i) {
        isBinary_ = isBinary_ && IsKnown(table.columns[i].type, types_[i]);
    }
}

std::string_view PostgresFormat::Heading() const {
    // A signature, no flags, no extension.
    static constexpr std::string_view kHeading("PGCOPY\n\377\r\n\0\0\0\0\0\0\0\0\0", 19);
    return isBinary_ ? kHeading : std::string_view();
}

std::string_view PostgresFormat::Ending() const {
    return isBinary_ ? std::string_view("\377\377") : std::string_view();
}

void PostgresFormat::Append(std::string& to, std::span<const Cell> row) const {
    if (isBinary_) {
        AppendBinary(to, row);
    } else {
        AppendText(to, row);
    }
}

void PostgresFormat::AppendBinary(std::string& to, std::span<const Cell> row) const {
    AppendBytes(to, static_cast<std::uint16_t>(row.size()));
    for (std::size_t i = 0; i < row.size(); ++i) {
        const Cell& cell = row[i];
        if (const auto* text = std::get_if<std::string_view>(&cell)) {
            AppendTextBytes(to, *text);
        } else if (const auto* whole = std::get_if<std::int64_t>(&cell)) {
            AppendWhole(to, *whole, types_[i]);
        } else if (const auto* number = std::get_if<double>(&cell)) {
            AppendNumberBytes(to, *number, types_[i]);
        } else if (const auto* truth = std::get_if<bool>(&cell)) {
            AppendField(to, static_cast<std::uint8_t>(*truth ? 1 : 0));
        } else {
            AppendBytes(to, std::numeric_limits<std::uint32_t>::max());  // null
        }
    }
}

void PostgresFormat::AppendText(std::string& to, std::span<const Cell> row) const {
    for (std::size_t i = 0; i < row.size(); ++i) {
        const Cell& cell = row[i];
        to += i == 0 ? "" : "\t";
        if (const auto* text = std::get_if<std::string_view>(&cell)) {
            AppendEscaped(to, *text);
        } else if (const auto* whole = std::get_if<std::int64_t>(&cell)) {
            to += std::to_string(*whole);
        } else if (const auto* number = std::get_if<double>(&cell)) {
            AppendNumberText(to, *number);
        } else if (const auto* truth = std::get_if<bool>(&cell)) {
            // Columns of numbers and of truths take both.
            to += *truth ? "1" : "0";
        } else {
            to += "\\N";
        }
    }
    to += '\n';
}

}  // namespace rollup
