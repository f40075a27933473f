// The program's one pointer: the hourglass over work, the ordinary one over a question.
#pragma once

namespace platform {

enum class Pointer { kDefault = 0, kHourglass = 11 };
// Not a stack.
void SetMousePointer(Pointer pointer);
Pointer MousePointer();

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
