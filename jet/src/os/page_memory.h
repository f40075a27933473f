// Memory for many pages of a file at once.
#pragma once

#include <cstddef>
#include <memory>

namespace jet {

class PageMemory {
public:
    // Whether each page is to have memory by itself: who watches over memory sees a step out of a
    // page only then.
#if defined(__SANITIZE_ADDRESS__)
    static constexpr bool kApart = true;
#elif defined(__has_feature)
    static constexpr bool kApart = __has_feature(address_sanitizer);
#else
    static constexpr bool kApart = false;
#endif

    // `size` bytes that are undefined, all of which will be used. std::bad_alloc.
    explicit PageMemory(std::size_t size);

    [[nodiscard]] std::byte* Data() const {
        return bytes_.get();
    }

private:
    std::unique_ptr<std::byte[]> bytes_;
};

}  // namespace jet
