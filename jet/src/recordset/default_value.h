// The default of a column, where it is a plain literal.
#pragma once

#include <optional>

#include "jet/value.h"
#include "values/column.h"

namespace jet {

// The value of the expression in the column's properties, or nothing when there is none or when it
// is more than a number, a text or one of the words True, False, Yes, No, On and Off.
std::optional<Value> LiteralDefault(const Column& column, Version version);

}  // namespace jet
