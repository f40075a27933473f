#include "worksheets/NoteLine.h"

#include <QAccessible>

#include "base/Handle.h"
#include "platform/EventTrap.h"
#include "platform/controls/vsFlexGrid.h"

using worksheets::NoteLine;

NoteLine::NoteLine(vsFlexGrid& grid, QWidget* parent) : QLabel(parent) {
    setObjectName(QStringLiteral("lblNote"));
    setTextFormat(Qt::PlainText);
    setWordWrap(true);
    Show(grid.Note());
    base::Handle<&NoteLine::Show, base::Entry::kOwn>(&grid, &vsFlexGrid::NoteChanged, this);
    connect(&grid, &vsFlexGrid::ChangeEdit, this,
            platform::EventTrap::Trapped("NoteLine.Show",
                                         [this, &grid](auto&&...) { Show(grid.Note()); }));
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
