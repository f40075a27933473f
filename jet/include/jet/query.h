// The one kind of query that the engine answers:
//
//   SELECT * | field [, field ...] FROM table
//     [WHERE condition [AND condition ...]]
//     [ORDER BY field [ASC | DESC] [, ...]] [;]
//
// A condition compares a field with a literal: field (= | <> | < | <= | > | >=) ('text' | "text" |
// number | ?), or field IS [NOT] NULL. Names may stand in square brackets. Within a text literal a
// doubled quote stands for the quote itself. A question mark stands for a value that is given when
// the query is opened; the first one for the first value. Anything else is kSyntax.
//
// Text is compared as the engine's indexes compare it: without regard to case and trailing blanks.
// Whole numbers, currency and decimals are compared exactly, the others as doubles. A comparison
// with null is never true. GUIDs and binary values can be compared by = and <> only; a GUID's
// literal may be its text.
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
    std::string field = {};
    Operator comparison = Operator::kEqual;
    Value literal = {};
    int parameter = -1;  // the place, from 0, of the value that takes the literal's; -1 for none
};

struct OrderTerm {
    std::string field = {};
    bool ascending = true;
};

struct Query {
    std::vector<std::string> fields = {};  // empty: all
    std::string table = {};
    std::vector<Condition> conditions = {};  // joined by AND
    std::vector<OrderTerm> order = {};
};

// Without bound values. Throws kSyntax with the place of the fault.
Query ParseQuery(std::string_view sql);

}  // namespace jet
