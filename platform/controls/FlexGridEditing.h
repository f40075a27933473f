// The open edit of a grid: one text box that lies over the edited cell.
//
// It opens and closes the box, follows what is typed, and brings the text into the cell or to the
// table. The signals are the grid's of the same names; rows are numbered as in the grid.
#pragma once

#include <QObject>
#include <QPersistentModelIndex>
#include <functional>

#include "platform/controls/FlexGridCellEdit.h"
#include "platform/controls/FlexGridOffers.h"

class QTableView;

namespace platform {

class FlexGridEditor;
class FlexGridModel;

class FlexGridEditing : public QObject {
    Q_OBJECT

public:
    FlexGridEditing(QTableView& view, FlexGridModel& model, FlexGridOffers& offers);

    // Opens an edit of the current cell, unless a handler of BeforeEdit does not want it or the
    // table takes nothing there.
    void Begin();
    // Ends the edit: the text goes into the cell.
    void Finish();
    // The same for a key or a click, which goes on although storing failed: the error is reported.
    void End();
    // Ends the edit and puts back what the cell held before.
    void Cancel();
    // The edit ends and its text is dropped.
    void Close();
    // Runs a body whose errors are reported here.
    static void Trapped(const std::function<void()>& body);

    [[nodiscard]] bool IsOpen() const { return cell_.isValid(); }
    [[nodiscard]] const QPersistentModelIndex& Cell() const { return cell_; }
    [[nodiscard]] bool IsChanged() const { return IsOpen() && edit_.IsChanged(); }
    [[nodiscard]] bool IsClosing() const { return closing_; }
    [[nodiscard]] QString Text() const;
    // As if it were typed.
    void SetText(const QString& text);
    // The program has given the edited cell another text.
    void Show(const QString& text);
    // The most characters that the columns of a grid without a table take; 0: any length.
    void SetLongest(int characters);
    [[nodiscard]] int Longest(int col) const;
    // Gives the table the text as it stands, if it was changed.
    GridTable::Answer Offer();

    // The cell may lie elsewhere now.
    void Place();
    // Gives the text box the keyboard and announces it to assistive technology.
    void TakeFocus();
    [[nodiscard]] FlexGridEditor& Editor() const { return *editor_; }

signals:
    void BeforeEdit(int row, int col, bool* cancel);
    void ChangeEdit();
    void AfterEdit(int row, int col);
    void EditCancelled(int row, int col);
    void KeyPressEdit(int row, int col, QChar key);
    void KeyUpEdit(int row, int col, int key);
    void Dropped(const QString& text);

private:
    void OnEdited();
    void OnFocusLost();
    void ReportKeyUp(int key);
    void Settle(const QPersistentModelIndex& cell, const QString& text);
    [[nodiscard]] int Row() const;

    QTableView& view_;
    FlexGridModel& model_;
    FlexGridOffers& offers_;
    FlexGridEditor* editor_;
    QPersistentModelIndex cell_;  // invalid: no edit is open
    FlexGridCellEdit edit_;
    int longest_ = 0;
    bool finishing_ = false;
    bool closing_ = false;
};

}  // namespace platform
