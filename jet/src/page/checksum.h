// A 64-bit checksum against accidental damage: torn, lost, misplaced and stale writes.
#pragma once

#include <cstdint>

#include "page/types.h"

namespace jet {

// `seed` ties the result to what came before, so that a record is good only in its place.
std::uint64_t Checksum(Bytes bytes, std::uint64_t seed);

}  // namespace jet
