// Adding and removing one entry on a stored leaf, without taking the page apart.
#pragma once

#include <cstddef>

#include "page/format.h"
#include "page/types.h"

namespace jet {

// Puts the stored form of an entry (without the page's prefix, unless it is the first) at byte `at`
// of the entry area, of which `used` bytes are in use. The caller knows that it fits and belongs
// there.
void InsertStored(MutableBytes page, const Format& format, std::size_t used, std::size_t at,
                  Bytes stored);

// Takes the stored entry at the bytes `at` to `end` out again. It must not be the first entry of a
// page with a prefix.
void EraseStored(MutableBytes page, const Format& format, std::size_t used, std::size_t at,
                 std::size_t end);

}  // namespace jet
