// Fonts for systems that have none.
#pragma once

namespace platform {

// Where no font is installed, Qt would draw every letter as a box: then the fonts in the program
// folder's folder `fonts` are used, if there is one. Where the system names its font by a name that
// only stands for one (Windows), the font that it stands for is used.
void BringFontsWhereThereAreNone();

}  // namespace platform
