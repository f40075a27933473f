// Buttons that act the moment their mnemonic is pressed.
#pragma once

namespace platform {

// Qt shows a button pressed for a tenth of a second before it clicks it. What somebody types in
// that time still goes to the former place: "Alt+A, new name" would end in the cell that was just
// edited. Installed once for the application; later calls change nothing.
void InstallImmediateMnemonics();

}  // namespace platform
