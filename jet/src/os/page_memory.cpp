#include "os/page_memory.h"

#if defined(__linux__)
#include <sys/mman.h>
#endif

namespace jet {

namespace {

// Otherwise the system stops at each page when it is first used, which takes twice the time. A
// system that does not know how changes nothing but that.
void HaveAllAtOnce([[maybe_unused]] std::byte* bytes, [[maybe_unused]] std::size_t size) {
#if defined(MADV_POPULATE_WRITE)
    constexpr std::size_t kProcessorPage = 4096;
    void* begin = bytes;
    std::size_t room = size;
    if (std::align(kProcessorPage, 1, begin, room) == nullptr) return;
    static_cast<void>(::madvise(begin, room, MADV_POPULATE_WRITE));
#endif
}

}  // namespace

PageMemory::PageMemory(std::size_t size)
    : bytes_(std::make_unique_for_overwrite<std::byte[]>(size)) {
    if (!kApart) HaveAllAtOnce(bytes_.get(), size);
}

}  // namespace jet
