// Failures of the operating system on demand: a shared library that stands before the C library's
// calls that write, flush, shorten, open, rename and copy files.
//
// A test program that is linked with it sets the switchboard directly. Any other program gets the
// library through LD_PRELOAD and the switchboard as a file, named by TARN_FAULTS, which both sides
// map into memory; so failures can be switched on and off while the program runs.
#pragma once

#include <cstdint>

namespace tarn_faults {

enum class Mode : std::int32_t {
    kOff,
    kCount,    // only counts
    kOnce,     // the n-th call fails
    kForGood,  // that one and all later ones
    kShort,    // the n-th write takes only half of its bytes, and all later calls fail
};

enum Call : std::int32_t {
    kWrite = 1,
    kFlush = 2,
    kResize = 4,
    kOpen = 8,      // for writing
    kName = 16,     // renaming and removing
    kOpenAny = 32,  // for reading as well
    kRead = 64,
};

inline constexpr std::int32_t kAllChanges = kWrite | kFlush | kResize | kOpen | kName;

// Plain numbers, so that a program in any language can fill it in: 32 bits each, then the text.
struct Switchboard {
    Mode mode = Mode::kOff;
    std::int32_t calls = 0;     // which, as a sum of Call
    std::int32_t error = 0;     // the errno that a failing call leaves
    std::int32_t nth = 0;       // the first is 1
    std::int32_t seen = 0;      // calls so far
    std::int32_t happened = 0;  // calls that failed
    char pattern[232] = {};     // a part of the path of the files concerned; empty for all
};

}  // namespace tarn_faults

extern "C" tarn_faults::Switchboard* TarnFaults();
