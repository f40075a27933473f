// Busy mode: marks the periods in which the program itself fills controls, with the hourglass
// pointer.
//
// None of the three writes an entry to the trace log: they stand in every change handler, and the
// log of a session would be mostly theirs.
//
// Unbalanced calls are not corrected: the counter is never reset, so a BusyOff too many keeps the
// flag set after the next balanced pair.
#pragma once

#include <cstdint>

namespace UIMode {

void BusyOn();
void BusyOff();
[[nodiscard]] bool NotBusy();

// The nesting counter and flag as they stand, and back: for the last trap.
struct State {
    bool busy = false;
    std::int32_t counter = 0;
};
[[nodiscard]] State Remember();
void Restore(const State& state);

// BusyOn now, BusyOff at the end of the scope.
class BusyScope {
public:
    BusyScope() { UIMode::BusyOn(); }
    ~BusyScope() { UIMode::BusyOff(); }
    BusyScope(const BusyScope&) = delete;
    BusyScope& operator=(const BusyScope&) = delete;
};

}  // namespace UIMode
