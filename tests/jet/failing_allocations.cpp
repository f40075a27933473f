#include "jet/failing_allocations.h"

#include <cstdlib>
#include <new>

namespace {

thread_local long allocationsLeft = -1;
thread_local tarn_test::Shortage kind = tarn_test::Shortage::kOnce;

bool IsToFail() {
    if (allocationsLeft < 0) return false;
    if (allocationsLeft > 0) {
        --allocationsLeft;
        return false;
    }
    if (kind == tarn_test::Shortage::kOnce) allocationsLeft = -1;
    return true;
}

}  // namespace

namespace tarn_test {

void FailAllocation(long nth, Shortage shortage) {
    allocationsLeft = nth;
    kind = shortage;
}

}  // namespace tarn_test

void* operator new(std::size_t size) {
    if (IsToFail()) throw std::bad_alloc();
    if (void* memory = std::malloc(size == 0 ? 1 : size)) return memory;
    throw std::bad_alloc();
}

void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    if (IsToFail()) return nullptr;
    return std::malloc(size == 0 ? 1 : size);
}

void operator delete(void* memory) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}
