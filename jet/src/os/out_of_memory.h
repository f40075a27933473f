// Memory that runs out, reported as an Error like everything else.
#pragma once

#include <new>

namespace jet {

// Needs no memory itself.
[[noreturn]] void ThrowOutOfMemory();

// What every function of the public face does its work in: std::bad_alloc becomes an Error. What
// the work had begun is undone by its owners on the way.
template <typename Work>
auto Guarded(const Work& work) {
    try {
        return work();
    } catch (const std::bad_alloc&) {
        ThrowOutOfMemory();
    }
}

}  // namespace jet
