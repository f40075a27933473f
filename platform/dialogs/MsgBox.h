// The message box: plain text, the application's title unless another is given.
#pragma once

#include <QString>

namespace platform {

// The application's title, as message boxes show it.
inline const QString kApplicationTitle = QStringLiteral("TARN Prep");
// Another program of the same parts sets its own.
void SetMsgBoxTitle(const QString& title);

enum class MsgIcon { kNone, kStop, kQuestion, kExclamation, kInformation };
enum class MsgButtons { kOk, kYesNo };
enum class MsgAnswer { kOk, kYes, kNo };

struct MsgOptions {
    QString title;  // empty: the application's title
    MsgIcon icon = MsgIcon::kNone;
    MsgButtons buttons = MsgButtons::kOk;
    bool secondIsDefault = false;  // No is the default button; Esc and the close button mean No
    // Below the text in the same box, always to be seen: the reason, and what can be done about it.
    QString informative;
    // What support staff ask for (procedures, numbers): shown when the user asks for details.
    QString details;
};

// Shows the text modally over the active window. "\r\n" starts a new line.
MsgAnswer MsgBox(const QString& text, const MsgOptions& options = {});

// The text that stands between the lines of a message.
inline const QString kNewLine = QStringLiteral("\r\n");

}  // namespace platform
