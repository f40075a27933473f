// What the operating system tells about who reads the output.
#pragma once

namespace fcdtool {

bool ErrorsGoToTerminal();

}  // namespace fcdtool
