// The common dialog: choosing a file to open.
#pragma once

#include <QString>
#include <QStringList>

class QWidget;

namespace platform {

struct OpenFileRequest {
    QString title;
    QString initialFolder;
    QString fileName;
    QString filter;       // pairs "description|patterns|description|patterns"
    int filterIndex = 1;  // from 1
    bool mustExist = true;
};

// The pairs as the dialog wants them: "description (pattern pattern)".
QStringList NameFilters(const QString& filter);

class CommonDialog {
public:
    // The chosen path in the host's form, or an empty text when the user cancelled.
    static QString ShowOpen(const OpenFileRequest& request, QWidget* parent);
};

}  // namespace platform
