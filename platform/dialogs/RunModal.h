// Runs a dialog until it is answered.
#pragma once

class QDialog;

namespace platform {

// Gives what exec() gives. The keyboard goes back to the window behind the dialog: not every window
// system does that by itself.
int RunModal(QDialog& dialog);

}  // namespace platform
