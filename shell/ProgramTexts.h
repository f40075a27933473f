// The program's name and version, and the notice of rights.
#pragma once

#include <QCoreApplication>
#include <QString>

namespace ProgramTexts {

inline const QString kName = QStringLiteral("TARN Prep");
inline const QString kTitle = QStringLiteral("TARN Prep 05.1");
// What of it is shown in the language of the screen.
struct Texts {
    Q_DECLARE_TR_FUNCTIONS(ProgramTexts)
};
inline QString NoticeOfRights() {
    return Texts::tr(
        "Copyright \u00a9 2026 the TARN Prep authors.  Free software under the MIT License; it "
        "comes without any warranty.");
}

}  // namespace ProgramTexts
