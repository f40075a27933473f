#include "worksheets/NoteLine.h"

#include <QAccessible>

#include "platform/controls/vsFlexGrid.h"

NoteLine::NoteLine(vsFlexGrid& grid, QWidget* parent) : QLabel(parent) {
    setObjectName(QStringLiteral("lblNote"));
    setTextFormat(Qt::PlainText);
    setWordWrap(true);
    Show(grid.Note());
    connect(&grid, &vsFlexGrid::NoteChanged, this, &NoteLine::Show);
    connect(&grid, &vsFlexGrid::ChangeEdit, this, [this, &grid] { Show(grid.Note()); });
}

void NoteLine::Say(const QString& sentence) {
    Show(sentence);
    QAccessibleEvent alert(this, QAccessible::Alert);
    QAccessible::updateAccessibility(&alert);
}

void NoteLine::Show(const QString& sentence) {
    setText(sentence);
    setProperty("Caption", sentence);
    setAccessibleName(sentence.isEmpty() ? tr("Note") : sentence);
    setVisible(!sentence.isEmpty());
}
