// The line under a grid that says in a sentence what is worth a second look: a text that was not
// stored as it was typed, or what a command has done. Hidden while there is nothing to say.
#pragma once

#include <QLabel>

class vsFlexGrid;

namespace worksheets {

class NoteLine : public QLabel {
    Q_OBJECT

public:
    // Shows what the grid has to say.
    NoteLine(vsFlexGrid& grid, QWidget* parent);

    // Shows what a command has done, until the grid has something to say or something is typed. A
    // screen reader hears it at once.
    void Say(const QString& sentence);

private:
    void Show(const QString& sentence);
};

}  // namespace worksheets
