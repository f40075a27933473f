// Lets one allocation of this program fail.
#pragma once

namespace tarn_test {

// The allocation after `nth` more of this thread throws std::bad_alloc, once; negative for none.
void FailAllocation(long nth);

}  // namespace tarn_test
