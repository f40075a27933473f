// What tests have to know of the system that they run on.
#pragma once

namespace support {

#ifdef _WIN32
// Whether a file that a program holds for itself can still be read, copied and removed by others.
constexpr bool kOthersReachHeldFiles = false;
// Whether a folder can hold two files whose names differ in case alone.
constexpr bool kNamesDifferByCase = false;
// Whether a file can have a name that is no text.
constexpr bool kNamesAreBytes = false;
#else
constexpr bool kOthersReachHeldFiles = true;
constexpr bool kNamesDifferByCase = true;
constexpr bool kNamesAreBytes = true;
#endif

}  // namespace support
