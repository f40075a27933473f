#include "os/page_memory.h"

#if defined(__linux__)
#include <sys/mman.h>
#endif

namespace jet {

namespace {

constexpr std::size_t kProcessorPage = 4096;
constexpr std::size_t kSlack = PageMemory::kApart ? 0 : kProcessorPage - 1;

std::byte* AlignedWithin(std::byte* bytes, std::size_t size) {
    if (PageMemory::kApart) return bytes;
    void* at = bytes;
    std::size_t room = size + kSlack;
    return static_cast<std::byte*>(std::align(kProcessorPage, size, at, room));
}

}  // namespace

PageMemory::PageMemory(std::size_t size)
    : bytes_(std::make_unique_for_overwrite<std::byte[]>(size + kSlack)),
      data_(AlignedWithin(bytes_.get(), size)) {
#if defined(MADV_POPULATE_WRITE)
    // Otherwise the system stops at each page when it is first used, which takes twice the time. A
    // system that does not know how changes nothing but that.
    if (!kApart) static_cast<void>(::madvise(data_, size, MADV_POPULATE_WRITE));
#endif
}

}  // namespace jet
