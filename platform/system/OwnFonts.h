// Fonts for systems that have none.
#pragma once

namespace platform {

// Where no font is installed, Qt would draw every letter as a box: then the fonts in the program
// folder's folder `fonts` are used, if there is one.
void BringFontsWhereThereAreNone();

}  // namespace platform
