// What a person did on a worksheet, action by action, so that it can be taken back and repeated.
//
// A history belongs to a worksheet's id and to the data file that is open: it outlives the form,
// which is unloaded whenever another worksheet is chosen, and ends with the file. Saving makes no
// difference to it.
//
// An action is added once it has been done. Its two steps are given the form that shows when they
// run, seldom the one that was there when the action was done, so they hold plain values only: the
// zone's key, the location, the row, the texts and numbers before and after. Never hold a widget or
// a table object in them. A step leaves screen and table object the same, so that what is saved
// next is what shows; a step that changes the file itself does so in one transaction. What was done
// on another zone or location, the step first has the form show, which saves what was there before.
//
//     void frm5NVCTable::EditDone(const CellChange& change) {
//         Did<frm5NVCTable>(tr("Typing"),
//                           [change](frm5NVCTable& form) { form.PutBack(change, change.before); },
//                           [change](frm5NVCTable& form) { form.PutBack(change, change.after); });
//     }
//
// Errors. A step that throws must leave things as they were before it: the action then still counts
// as done (or as taken back), and Undo and Redo pass the error on. A step that finds what it speaks
// of no longer there throws GoneError: the action is then dropped, so that those before it can
// still be reached.
#pragma once

#include <QString>
#include <QUndoStack>

#include <functional>

#include "platform/RuntimeError.h"

namespace worksheets {
class WorksheetPage;
}

namespace undo {

// What an action changed is gone from the file; `sentence` says so to the user.
class GoneError : public platform::RuntimeError {
public:
    explicit GoneError(const QString& sentence);
};

using Step = std::function<void(worksheets::WorksheetPage&)>;

struct Action {
    QString name;  // such as "Paste"
    Step takeBack;
    Step repeat;
};

class History {
public:
    // Adds what has just been done; what had been taken back can no longer be repeated. An action
    // that is added while a step runs is left out: the step is no action of a person.
    void Add(Action action);

    [[nodiscard]] bool CanUndo() const { return stack_.canUndo(); }
    [[nodiscard]] bool CanRedo() const { return stack_.canRedo(); }
    // How many actions are done and can be taken back.
    [[nodiscard]] int Done() const { return stack_.index(); }
    // The name of the action that Undo would take back, or Redo repeat; empty when there is none.
    [[nodiscard]] QString UndoName() const { return stack_.undoText(); }
    [[nodiscard]] QString RedoName() const { return stack_.redoText(); }
    // Nothing when there is nothing to take back or to repeat.
    void Undo(worksheets::WorksheetPage& form);
    void Redo(worksheets::WorksheetPage& form);
    // Whether a step is running.
    [[nodiscard]] bool IsRunning() const { return running_; }

private:
    void Run(worksheets::WorksheetPage& form, void (QUndoStack::*step)());

    QUndoStack stack_;
    bool running_ = false;
};

// The history of a worksheet in the file that is open; empty at first, and again after another file
// was opened. The reference holds until the file is closed.
History& HistoryOf(const QString& worksheetID);

}  // namespace undo
