// What tests have to know of the system that they run on.
#pragma once

namespace support {

#ifdef _WIN32
// Whether a file that a program holds for itself can still be read, copied and removed by others.
constexpr bool kOthersReachHeldFiles = false;
// Whether a folder can hold two files whose names differ in case alone.
constexpr bool kNamesDifferByCase = false;
#else
constexpr bool kOthersReachHeldFiles = true;
constexpr bool kNamesDifferByCase = true;
#endif

}  // namespace support
