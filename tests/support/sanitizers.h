// Whether this build runs under a sanitizer, which takes time and memory of its own.
#pragma once

namespace support {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
inline constexpr bool kIsSanitized = true;
#elif defined(__has_feature)
inline constexpr bool kIsSanitized =
    __has_feature(address_sanitizer) || __has_feature(thread_sanitizer);
#else
inline constexpr bool kIsSanitized = false;
#endif

// Under a sanitizer all takes several times as long: where a test tries case after case, it tries
// one of so many there; the optimized build tries them all.
inline constexpr int kOneOf = kIsSanitized ? 5 : 1;

}  // namespace support
