#include "base/UIMode.h"

#include "platform/system/Pointer.h"

namespace {

std::int16_t busyFlag = 0;  // true is all bits set
std::int32_t busyCounter = 0;

}  // namespace

namespace UIMode {

void BusyOn() {
    busyFlag = -1;
    platform::SetMousePointer(platform::Pointer::kHourglass);
    ++busyCounter;
}

void BusyOff() {
    --busyCounter;
    if (busyCounter == 0) {
        busyFlag = 0;
        platform::SetMousePointer(platform::Pointer::kDefault);
    }
}

bool NotBusy() {
    return busyFlag == 0;
}

State Remember() {
    return {busyFlag != 0, busyCounter};
}

void Restore(const State& state) {
    busyFlag = state.busy ? std::int16_t{-1} : std::int16_t{0};
    busyCounter = state.counter;
    platform::SetMousePointer(state.busy ? platform::Pointer::kHourglass
                                         : platform::Pointer::kDefault);
}

}  // namespace UIMode
