// Where a class of fire sizes starts, given where the class before it ends.
#pragma once

#include <QString>

// The text of a "From" cell: a step above `top` that fits its size (a hundredth below 1 acre, a
// tenth below 10, a whole acre beyond); empty when the class before is not in use or is open-ended.
// Sums are formed in double from the single bound.
QString NextLowerBound(float top);
