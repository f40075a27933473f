// A pointer for a while: the hourglass over work, the ordinary one over a question.
#pragma once

#include "platform/system/Host.h"

namespace platform {

// That pointer while it exists, and then the one that was there.
class PointerScope {
public:
    explicit PointerScope(Pointer pointer) : before_(MousePointer()) { SetMousePointer(pointer); }
    ~PointerScope() { SetMousePointer(before_); }
    PointerScope(const PointerScope&) = delete;
    PointerScope& operator=(const PointerScope&) = delete;

private:
    Pointer before_;
};

}  // namespace platform
