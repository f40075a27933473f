// Start-up, and the four moves between the two states of the interface: no data file open (the
// start screen fills the frame) and a data file open (the worksheet tabs are shown).
#pragma once

#include <QString>

class frm0_Prep;

namespace a1Prep {

// What the frame begins with on a screen of this height in twips: its size stays (and the user is
// warned), it is maximized, or it has its working size at the top left corner. Both limits count
// to the lower side.
enum class FirstSize { kAsItIs, kMaximized, kWorkingSize };
[[nodiscard]] FirstSize FirstSizeFor(int screenHeight);
// Sizes the frame for the screen; warns when the screen is smaller than the program is made for.
void DisplayCheck(frm0_Prep& frame);

void StartWithoutFile();
// `fileName` is the whole command line, used unchanged as a path. Throws when the file opened but
// cannot be shown; it is closed again then.
void StartWithFile(const QString& fileName);
// Shows a data file that has just been opened.
void LoadFromFile();
// Back to the start screen.
void FCD_Restart();

// The commands New and Open. A failed Open has gone back to the start screen; a failed New only
// lets go of the worksheet, and the menus stay as they were although the file is closed. Whatever
// is thrown after the former file was closed leaves the start screen and no file.
void NewDatafile();
void OpenDatafile();

// Stands behind the data file: what opening and closing files asks of the shell.
void ConnectDatafile();

}  // namespace a1Prep
