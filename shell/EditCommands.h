// Cut, Copy and Paste for whatever control has the keyboard.
#pragma once

#include <cstdint>

class QWidget;

namespace EditCommands {

// The numbers of the items of the Edit menu.
enum Command : std::int16_t { kCut = 2, kCopy = 3, kPaste = 4 };

// Works on text boxes and grids, a grid's cell editor included; anything else is ignored, and so is
// a control with nothing selected.
void Execute(std::int16_t command, QWidget* activeControl);

}  // namespace EditCommands
