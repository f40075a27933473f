// Lets allocations of this program fail.
#pragma once

namespace tarn_test {

enum class Shortage {
    kOnce,     // one allocation fails
    kForGood,  // that one and all later ones
};

// The allocation after `nth` more of this thread throws std::bad_alloc; negative for none.
void FailAllocation(long nth, Shortage shortage = Shortage::kOnce);

}  // namespace tarn_test
