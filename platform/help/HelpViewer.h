// The help file in a window of the program's own.
#pragma once

#include <QString>

class QWidget;

namespace platform {

class HelpViewer {
public:
    // The file from which the topics come; it is read at the first request.
    static void SetHelpFile(const QString& path);
    // Shows the topic of this context id, or the contents. A missing or damaged file is shown to
    // the user in a message box, nothing worse.
    static void ShowContext(int contextId);
    static void ShowContents();
    static void Close();
};

// A form's help context id, kept as the dynamic property "HelpContextID" of its widget.
void SetHelpContextId(QWidget& form, int contextId);
// That of the nearest widget upwards that has one; 0 when none has.
int HelpContextId(const QWidget* widget);

}  // namespace platform
