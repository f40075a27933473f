// Asks where to save, with Qt's own file dialog.
#pragma once

#include <QString>
#include <QStringList>

class QWidget;

namespace SaveDialog {

struct Request {
    QString title;
    QString folder;
    QString name;
    QStringList filters;     // "Report (*.html)"; the first ending is added to a bare name
    bool mayReplace = true;  // a file that is there, after a question
    qsizetype filter = 0;    // the one that is chosen at first
};

struct Answer {
    QString path;  // empty when the user cancelled
    qsizetype filter = 0;
};

Answer Ask(QWidget* parent, const Request& request);

}  // namespace SaveDialog
