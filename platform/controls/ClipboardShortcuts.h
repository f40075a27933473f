// Cut, Copy and Paste by keyboard reach the program's menu, and undo and redo the worksheet; in
// other text boxes Ctrl+Y redoes.
//
// Text boxes claim these keys for themselves before any menu entry or shortcut sees them. The
// filter takes the claim away; where nothing else wants the key (in a dialog, or while the entry is
// disabled) the text box gets it after all. It also keeps a text box's selection while a menu is
// opened by keyboard, so that the menu's Cut and Copy have something to work on.
#pragma once

#include <QKeyEvent>

namespace platform {

// Whether the key is one of the system's for Cut, Copy or Paste.
bool IsClipboardKey(const QKeyEvent& key);

// Installs the filter for the whole application; a second call does nothing.
void InstallClipboardShortcutFilter();

}  // namespace platform
