// What becomes of an error that nothing nearer caught: the error log beside the program and a
// message box; the program carries on.
#pragma once

namespace Failures {

void Install();

}  // namespace Failures
