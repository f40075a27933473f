#include "query/row_condition.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "jet/convert.h"
#include "jet/error.h"
#include "values/decimal.h"
#include "values/text.h"

namespace jet {

namespace {

bool Holds(Operator comparison, int order) {
    switch (comparison) {
        case Operator::kEqual:
            return order == 0;
        case Operator::kNotEqual:
            return order != 0;
        case Operator::kLess:
            return order < 0;
        case Operator::kLessOrEqual:
            return order <= 0;
        case Operator::kGreater:
            return order > 0;
        case Operator::kGreaterOrEqual:
            return order >= 0;
        default:  // unreachable: what is asked about null was answered before
            return false;
    }
}

bool IsPlainLetter(char16_t c) {
    return (c >= u'0' && c <= u'9') || (c >= u'A' && c <= u'Z') || (c >= u'a' && c <= u'z');
}

// Of a plain letter or digit.
char16_t Raised(char16_t c) {
    return c >= u'a' ? static_cast<char16_t>(c - u'a' + u'A') : c;
}

// True for most texts that differ, without making their keys: each letter and digit of the Latin
// alphabet has a weight of its own, so the first place where two of them differ decides.
bool SurelyDiffer(std::u16string_view left, std::u16string_view right) {
    const std::size_t common = std::min(left.size(), right.size());
    for (std::size_t i = 0; i < common; ++i) {
        if (!IsPlainLetter(left[i]) || !IsPlainLetter(right[i])) return false;
        if (Raised(left[i]) != Raised(right[i])) return true;
    }
    return false;
}

std::optional<Decimal> ExactLiteral(const Value& literal) {
    if (const auto* decimal = std::get_if<Decimal>(&literal.Get())) return *decimal;
    if (const bool* truth = std::get_if<bool>(&literal.Get())) {
        return ParseDecimal(*truth ? u"-1" : u"0");
    }
    if (const auto* date = std::get_if<Date>(&literal.Get())) {
        return ParseDecimal(Value(date->days).AsText());
    }
    return ParseDecimal(literal.AsText());
}

}  // namespace

std::size_t RequireColumn(const Table& table, const std::string& name) {
    const auto column = table.Def().FindColumn(WidenName(name));
    if (!column) {
        throw Error(ErrorKind::kNoSuchField,
                    "The table '" + table.Name() + "' has no field '" + name + "'.");
    }
    return *column;
}

RowCondition::RowCondition(const Table& table, const Condition& condition)
    : table_(&table),
      column_(RequireColumn(table, condition.field)),
      comparison_(condition.comparison) {
    if (comparison_ == Operator::kIsNull || comparison_ == Operator::kIsNotNull) return;
    const ColumnType type = table.Def().columns[column_].type;
    if (condition.literal.IsNull()) {
        way_ = Way::kNever;
        return;
    }
    switch (type) {
        case ColumnType::kText:
        case ColumnType::kMemo:
            SetText(condition);
            break;
        case ColumnType::kGuid:
        case ColumnType::kBinary:
        case ColumnType::kFixedBinary:
        case ColumnType::kOle:
            SetBytes(condition, type);
            break;
        default:
            SetNumber(condition, type);
            break;
    }
}

void RowCondition::ThrowMismatch(const Condition& condition) {
    throw Error(ErrorKind::kTypeMismatch,
                "The condition on the field '" + condition.field + "' compares different types.");
}

void RowCondition::SetText(const Condition& condition) {
    if (!std::holds_alternative<std::u16string>(condition.literal.Get())) ThrowMismatch(condition);
    way_ = Way::kText;
    text_ = condition.literal.AsText();
}

void RowCondition::SetBytes(const Condition& condition, ColumnType type) {
    if (comparison_ != Operator::kEqual && comparison_ != Operator::kNotEqual) {
        ThrowMismatch(condition);
    }
    way_ = Way::kBytes;
    bytes_ = condition.literal;
    const auto* text = std::get_if<std::u16string>(&bytes_.Get());
    if (type == ColumnType::kGuid && text != nullptr) bytes_ = ParseGuid(NarrowName(*text));
    const bool fits = type == ColumnType::kGuid ? std::holds_alternative<Guid>(bytes_.Get())
                                                : std::holds_alternative<Binary>(bytes_.Get());
    if (!fits) ThrowMismatch(condition);
}

void RowCondition::SetNumber(const Condition& condition, ColumnType type) {
    const Value& literal = condition.literal;
    if (std::holds_alternative<std::u16string>(literal.Get()) ||
        std::holds_alternative<Guid>(literal.Get()) ||
        std::holds_alternative<Binary>(literal.Get())) {
        ThrowMismatch(condition);
    }
    number_ = literal.AsDouble();
    way_ = std::isnan(number_) ? Way::kNever : Way::kDouble;
    const bool scaled = type == ColumnType::kByte || type == ColumnType::kInteger ||
                        type == ColumnType::kLong || type == ColumnType::kCurrency;
    if (way_ == Way::kNever || (!scaled && type != ColumnType::kDecimal)) return;
    const auto exact = ExactLiteral(literal);
    // What has no exact form here is larger than all values of these types.
    if (type == ColumnType::kDecimal) {
        if (exact) way_ = Way::kDecimal;
        if (exact) decimal_ = *exact;
        return;
    }
    way_ = Way::kScaled;
    constexpr int kCurrencyScale = 4;
    bound_ = exact ? BoundOf(*exact, type == ColumnType::kCurrency ? kCurrencyScale : 0)
                   : Bound{.beyond = number_ < 0 ? -1 : 1};
}

RowCondition::Bound RowCondition::BoundOf(Decimal literal, int scale) {
    Bound bound;
    bool rest = false;
    bool fits = true;
    for (; fits && literal.scale < scale; ++literal.scale) fits = TimesTen(literal);
    for (; literal.scale > scale; --literal.scale) rest = DivideByTen(literal) != 0 || rest;
    std::uint64_t steps = 0;
    for (std::size_t i = 0; i < literal.magnitude.size(); ++i) {
        if (i < 8) {
            fits = fits && literal.magnitude[i] == 0;
        } else {
            steps = steps << 8 | literal.magnitude[i];
        }
    }
    constexpr auto kMost = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
    if (literal.negative && fits && !rest && steps == kMost + 1) {
        bound.below = std::numeric_limits<std::int64_t>::min();
        return bound;
    }
    if (!fits || steps > kMost) {
        bound.beyond = literal.negative ? -1 : 1;
        return bound;
    }
    const auto whole = static_cast<std::int64_t>(steps);
    bound.between = rest;
    bound.below = !literal.negative ? whole : rest ? -whole - 1 : -whole;
    return bound;
}

int RowCondition::Bound::Compare(std::int64_t value) const {
    if (beyond != 0) return -beyond;
    if (value != below) return value < below ? -1 : 1;
    return between ? -1 : 0;
}

bool RowCondition::PassesText(const RowView& row) {
    if (!table_->ReadText(row, column_, current_)) return false;
    if (comparison_ == Operator::kEqual && SurelyDiffer(current_, text_)) return false;
    return Holds(comparison_, CompareText(current_, text_, table_->Def().version));
}

int RowCondition::Compare(const Value& value) const {
    switch (way_) {
        case Way::kScaled:
            if (const auto* money = std::get_if<Currency>(&value.Get())) {
                return bound_.Compare(money->tenThousandths);
            }
            return bound_.Compare(value.AsLong());
        case Way::kDecimal:
            return CompareDecimals(std::get<Decimal>(value.Get()), decimal_);
        case Way::kBytes:
            return value == bytes_ ? 0 : 1;
        default: {
            const double number = value.AsDouble();
            return number < number_ ? -1 : number > number_ ? 1 : 0;
        }
    }
}

bool RowCondition::Passes(const RowView& row) {
    if (way_ == Way::kNever) return false;
    if (way_ == Way::kText) return PassesText(row);
    if (way_ == Way::kNull) {
        const Column& column = table_->Def().columns[column_];
        const bool present =
            column.type == ColumnType::kBoolean || table_->ColumnBytes(row, column_).has_value();
        return present == (comparison_ == Operator::kIsNotNull);
    }
    const Value value = table_->ReadValue(row, column_);
    return !value.IsNull() && Holds(comparison_, Compare(value));
}

}  // namespace jet
