#include "worksheets/CopyHint.h"

#include <QEvent>

#include "worksheets/NoteLine.h"
#include "worksheets/WorksheetPage.h"

namespace worksheets {

CopyHint::CopyHint(NoteLine& note, QWidget* parent)
    : QLabel(tr("Copy table: Ctrl+A, Ctrl+C"), parent) {
    setTextFormat(Qt::PlainText);
    setProperty("Caption", text());
    PageParts::Name(*this, "lblCopyHint", text());
    setToolTip(
        tr("In the table, Ctrl+A selects all cells and Ctrl+C copies them, "
           "ready to be pasted into a spreadsheet."));
    setVisible(note.isHidden());
    note.installEventFilter(this);
}

bool CopyHint::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::ShowToParent) {
        hide();
    } else if (event->type() == QEvent::HideToParent) {
        show();
    }
    return QLabel::eventFilter(watched, event);
}

}  // namespace worksheets
