// Memory that runs out, told as an Error like everything else. The functions of the public face
// catch std::bad_alloc and call this; what they had begun is undone by its owners on the way.
#pragma once

namespace jet {

// Needs no memory itself.
[[noreturn]] void ThrowOutOfMemory();

}  // namespace jet
