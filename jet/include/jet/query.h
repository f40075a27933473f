// The one kind of query that the engine answers:
//
//   SELECT * | field [, field ...] FROM table
//     [WHERE condition [AND condition ...]]
//     [ORDER BY field [ASC | DESC] [, ...]] [;]
//
// A condition compares a field with a literal: field (= | <> | < | <= | > | >=) ('text' | "text" |
// number), or field IS [NOT] NULL. Names may stand in square brackets. Within a text literal a
// doubled quote stands for the quote itself. Text is compared as the engine's indexes compare it:
// without regard to case and trailing blanks. Anything else is kSyntax.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "jet/recordset.h"
#include "jet/value.h"

namespace jet {

enum class Operator {
    kEqual,
    kNotEqual,
    kLess,
    kLessOrEqual,
    kGreater,
    kGreaterOrEqual,
    kIsNull,
    kIsNotNull
};

struct Condition {
    std::string field;
    Operator comparison = Operator::kEqual;
    Value literal;
};

struct OrderTerm {
    std::string field;
    bool ascending = true;
};

struct Query {
    std::vector<std::string> fields;  // empty: all
    std::string table;
    std::vector<Condition> conditions;  // joined by AND
    std::vector<OrderTerm> order;
};

// Throws kSyntax with the place of the fault.
Query ParseQuery(std::string_view sql);

}  // namespace jet
