#include "table/row_rules.h"

#include "jet/error.h"
#include "values/text.h"

namespace jet {

RowRules::RowRules(const Definition& definition) : definition_(&definition) {
    for (std::size_t i = 0; i < definition.columns.size(); ++i) {
        Add(definition.columns[i].validationRule, definition.columns[i].validationText, i);
    }
    Add(definition.validationRule, definition.validationText, std::nullopt);
}

void RowRules::Add(const std::string& rule, const std::string& text,
                   std::optional<std::size_t> column) {
    if (rule.empty()) return;
    auto parsed = Rule::Parse(WidenName(rule), *definition_, column);
    if (!parsed) {
        if (unknown_.empty()) unknown_ = rule;
        return;
    }
    std::string sentence = text;
    if (sentence.empty()) {
        sentence = "The validation rule '" + rule + "'" +
                   (column ? " of the field '" + definition_->columns[*column].name + "'" : "") +
                   " does not allow this value.";
    }
    conditions_.push_back({std::move(*parsed), column, std::move(sentence)});
}

void RowRules::RequireKnown() const {
    if (unknown_.empty()) return;
    throw Error(ErrorKind::kUnsupported,
                "The table has a validation rule that is not understood "
                "here (" +
                    unknown_ + "), so it is not written to.");
}

void RowRules::CheckColumn(std::size_t column, const Value& value) const {
    const Column& checked = definition_->columns[column];
    // A field of yes and no has no null: without a value it is no.
    const bool isNull = value.IsNull() && checked.type != ColumnType::kBoolean;
    if (checked.required && isNull) {
        throw Error(ErrorKind::kNullNotAllowed,
                    "The field '" + checked.name +
                        "' cannot contain a null value because it is a required field.");
    }
    const auto* text = std::get_if<std::u16string>(&value.Get());
    if (!checked.allowZeroLength && text != nullptr && text->empty()) {
        throw Error(ErrorKind::kZeroLengthNotAllowed,
                    "The field '" + checked.name + "' cannot be an empty text.");
    }
}

void RowRules::Check(const RowValues& row, bool isNew, const ColumnValue& value) const {
    for (std::size_t i = 0; i < row.values.size(); ++i) {
        if (row.DraftOf(i) != nullptr) continue;  // which is neither null nor empty
        if (row.given[i]) {
            CheckColumn(i, row.values[i]);
        } else if (isNew) {
            CheckColumn(i, Value());
        }
    }
    for (const Condition& condition : conditions_) {
        const bool concerned = isNew || !condition.column || row.given[*condition.column];
        if (!concerned || condition.rule.Allows(value)) continue;
        throw Error(ErrorKind::kRuleViolated, condition.sentence);
    }
}

}  // namespace jet
