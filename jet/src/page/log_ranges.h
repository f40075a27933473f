// What differs between a page as it was and as it is, for the log.
#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "page/log_format.h"
#include "page/types.h"

namespace jet {

// The first place from `from` on where two pages differ, or their size.
std::size_t FirstDifference(Bytes a, Bytes b, std::size_t from);

// Where the page differs, as ranges that are worth an entry of their own.
void FindRanges(const PageChange& change, std::vector<LogRange>& into);
// Takes out of the ranges the bytes of one that only moved, as the entries of an index do when one
// is added or erased among them.
std::optional<LogMove> TakeMove(const PageChange& change, std::vector<LogRange>& ranges);

}  // namespace jet
