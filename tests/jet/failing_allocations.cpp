#include "jet/failing_allocations.h"

#include <cstdlib>
#include <new>

namespace {

thread_local long allocationsLeft = -1;

}  // namespace

namespace tarn_test {

void FailAllocation(long nth) {
    allocationsLeft = nth;
}

}  // namespace tarn_test

void* operator new(std::size_t size) {
    if (allocationsLeft >= 0 && allocationsLeft-- == 0) throw std::bad_alloc();
    if (void* memory = std::malloc(size == 0 ? 1 : size)) return memory;
    throw std::bad_alloc();
}

void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    if (allocationsLeft >= 0 && allocationsLeft-- == 0) return nullptr;
    return std::malloc(size == 0 ? 1 : size);
}

void operator delete(void* memory) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}
