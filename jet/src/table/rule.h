// Validation rules: conditions that the values of a field, or of a whole record, have to meet.
//
//   rule        test {AND | OR test}, NOT test, (rule)
//   test        operand comparison operand, operand BETWEEN operand AND operand,
//               operand [NOT] IN (operand, ...), operand IS [NOT] NULL
//   operand     number, 'text', "text", True, False, Null, [field]
//
// In a field's rule the first operand of a test may be missing and is then the field itself; an
// operand alone is what the field must be equal to. Other expressions - functions, dates, patterns,
// arithmetic - are not understood here.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

#include "jet/value.h"
#include "table/definition.h"
#include "table/row_values.h"

namespace jet {

class Rule {
public:
    // Nothing when the rule is not understood. `own` is the column that it belongs to, if any.
    static std::optional<Rule> Parse(std::u16string_view text, const Definition& definition,
                                     std::optional<std::size_t> own);

    // Whether the rule is true of these values. A comparison with null is neither true nor false,
    // and so a rule that does not allow for nulls refuses them.
    [[nodiscard]] bool Allows(const ColumnValue& value) const;

private:
    friend class RuleParser;
    enum class Kind { kAnd, kOr, kNot, kCompare, kIsNull };
    enum class Comparison { kEqual, kNotEqual, kLess, kLessOrEqual, kGreater, kGreaterOrEqual };
    enum class Truth { kFalse, kUnknown, kTrue };

    struct Operand {
        std::optional<std::size_t> column;
        Value literal;
    };
    struct Node {
        Kind kind = Kind::kAnd;
        Comparison comparison = Comparison::kEqual;
        std::vector<Operand> operands;
        std::vector<Node> parts;
    };

    [[nodiscard]] Truth Evaluate(const Node& node, const ColumnValue& value) const;
    [[nodiscard]] Truth Compare(const Node& node, const ColumnValue& value) const;

    Version version_ = Version::kJet4;
    Node root_;
};

}  // namespace jet
