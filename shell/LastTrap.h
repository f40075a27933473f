// What becomes of an error that no procedure caught: both logs, a message box, busy mode and
// pointer as they were when the handler began.
#pragma once

namespace LastTrap {

void Install();

}  // namespace LastTrap
