// The parts of a grid that its keys, its mouse and its clipboard work with, and the little that
// these ask of the grid itself.
#pragma once

#include <QString>

class QTableView;

namespace platform {

class FlexGridEditing;
class FlexGridModel;
class FlexGridOffers;
class FlexGridSelection;

class FlexGridHost {
public:
    FlexGridHost() = default;
    FlexGridHost(const FlexGridHost&) = delete;
    FlexGridHost& operator=(const FlexGridHost&) = delete;
    virtual ~FlexGridHost() = default;

    // Whether nobody edits its cells.
    [[nodiscard]] virtual bool IsList() const = 0;
    // The user wants the current cell edited, unless it is open already.
    virtual void Enter() = 0;
    // A cell of this row was clicked.
    virtual void ClickRow(int row) = 0;
    // The keyboard goes to the next control, or the one before.
    virtual void Leave(bool forward) = 0;
};

struct FlexGridParts {
    FlexGridHost& host;
    QTableView& view;
    FlexGridModel& model;
    FlexGridSelection& selection;
    FlexGridOffers& offers;
    FlexGridEditing& editing;
};

}  // namespace platform
