// Giving a slot other bytes, with no more of its page opened for it than changes.
#pragma once

#include "page/format.h"
#include "page/operation.h"
#include "page/types.h"

namespace jet {

// The caller has made sure that the page has the slot, and room.
void GiveOtherBytes(Operation& operation, RowId place, Bytes bytes);

}  // namespace jet
