// One condition of a query with its column found and its literal ready to be compared.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "jet/query.h"
#include "table/table.h"

namespace jet {

// The position of a field in a table; kNoSuchField.
std::size_t RequireColumn(const Table& table, const std::string& name);

class RowCondition {
public:
    // kNoSuchField; kTypeMismatch for a literal that the column's values cannot be compared with.
    RowCondition(const Table& table, const Condition& condition);

    bool Passes(const RowView& row);

private:
    enum class Way { kNull, kNever, kText, kDouble, kScaled, kDecimal, kBytes };

    // A number that counts steps of the column - whole numbers, ten-thousandths - and whether it
    // lies between two of them, or beyond all.
    struct Bound {
        std::int64_t below = 0;
        bool between = false;
        int beyond = 0;  // 1 above all, -1 below all
        [[nodiscard]] int Compare(std::int64_t value) const;
    };

    void SetText(const Condition& condition);
    void SetNumber(const Condition& condition, ColumnType type);
    void SetBytes(const Condition& condition, ColumnType type);
    [[nodiscard]] static Bound BoundOf(Decimal literal, int scale);
    [[noreturn]] static void ThrowMismatch(const Condition& condition);
    [[nodiscard]] bool PassesText(const RowView& row);
    // The order of a value that is not null against the literal.
    [[nodiscard]] int Compare(const Value& value) const;

    const Table* table_;
    std::size_t column_;
    Operator comparison_;
    Way way_ = Way::kNull;
    std::u16string text_;
    std::u16string current_;
    double number_ = 0;
    Bound bound_;
    Decimal decimal_;
    Value bytes_;
};

}  // namespace jet
