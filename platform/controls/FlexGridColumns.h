// The widths of a grid's columns. They are given in twips, hold for the standard font, and grow
// with larger ones; a column of numbers also grows until its longest figure shows whole, unless the
// user has set its width.
//
// Rows and columns are numbered as in the grid. The view, its model and its header must outlive
// this.
#pragma once

#include <map>

class QTableView;

namespace platform {

class FlexGridHeader;
class FlexGridModel;

class FlexGridColumns {
public:
    FlexGridColumns(QTableView& view, FlexGridModel& model, const FlexGridHeader& header);

    void SetWidth(int col, int twips);
    void SetHidden(int col, bool hidden);
    // In twips, of the columns that the user has resized.
    [[nodiscard]] std::map<int, int> WidthsByUser() const;
    void SetWidthsByUser(const std::map<int, int>& widths);
    // What something outside the grid needs at least; pixels.
    void SetRoom(int col, int pixels);
    // Each column gets the room of its heading's longest word.
    void FitHeadings();
    // This column takes what the others leave.
    void SetFills(int col);
    void FillRoom();
    // Gives the view the width of a column.
    void Apply(int col);
    // The font has changed, and with it the heights of the rows.
    void ApplyFont();

    // The view reports a new width. True when the user has set it.
    bool Resized(int col, int pixels);

private:
    [[nodiscard]] int PixelsOf(int col) const;
    [[nodiscard]] int RoomLeft() const;
    [[nodiscard]] int RoomOfFigure(int row, int col) const;
    void FitFigures(int first, int last);

    QTableView& view_;
    FlexGridModel& model_;
    const FlexGridHeader& header_;
    bool sizing_ = false;  // the program is setting widths
    double scale_ = 1;     // of sizes that are given in twips
    int digitWidth_ = 8;
    int fills_ = -1;
};

}  // namespace platform
