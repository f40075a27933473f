// What a table asks of the values of each row: required fields, no empty texts, validation rules.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "table/definition.h"
#include "table/row_values.h"
#include "table/rule.h"

namespace jet {

class RowRules {
public:
    // The definition must outlive it.
    explicit RowRules(const Definition& definition);

    // kUnsupported when there is a rule that is not understood, so that it cannot be kept.
    void RequireKnown() const;
    // `value` gives what the row will have, given or not. Errors: kNullNotAllowed,
    // kZeroLengthNotAllowed, kRuleViolated.
    void Check(const RowValues& row, bool isNew, const ColumnValue& value) const;

private:
    struct Condition {
        Rule rule;
        std::optional<std::size_t> column;  // none: of the record
        std::string sentence;               // for a value that it does not allow
    };

    void Add(const std::string& rule, const std::string& text, std::optional<std::size_t> column);
    void CheckColumn(std::size_t column, const Value& value) const;

    const Definition* definition_;
    std::vector<Condition> conditions_;
    std::string unknown_;  // the first rule that is not understood
};

}  // namespace jet
