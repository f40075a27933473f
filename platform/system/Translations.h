// The texts of the program in the language of the screen.
//
// The texts in the source are English. A language is a file `translations/tarnprep_LANGUAGE.qm`
// beside the executable; where there is none for the user's language, the source's texts are shown.
#pragma once

#include <QLocale>
#include <QString>

namespace platform {

// Loads the first of the locale's languages that the folder has, and the toolkit's own texts in it.
// False when there is none. Needs the application object; what is shown already does not change.
bool LoadTranslations(const QString& folder, const QLocale& locale);
// The program's own folder, the user's language; nothing where that is English.
bool LoadTranslations();

}  // namespace platform
