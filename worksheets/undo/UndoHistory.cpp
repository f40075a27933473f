#include "worksheets/undo/UndoHistory.h"

#include <QScopedValueRollback>
#include <QUndoCommand>

#include <exception>
#include <map>
#include <memory>
#include <utility>

#include "datafile/PrepDatatables.h"

using worksheets::WorksheetPage;

namespace undo {
namespace {

// What one step is run with, and what became of it: nothing may be thrown through the stack.
struct Running {
    WorksheetPage* form = nullptr;  // null: nothing is to be done, the stack only moves on
    std::exception_ptr error;
};

Running now;

class Command : public QUndoCommand {
public:
    explicit Command(Action action)
        : QUndoCommand(action.name),
          takeBack_(std::move(action.takeBack)),
          repeat_(std::move(action.repeat)) {}

    void undo() override { Carry(takeBack_); }
    void redo() override { Carry(repeat_); }

private:
    void Carry(const Step& step) {
        if (now.form == nullptr) {
            return;
        }
        try {
            step(*now.form);
        } catch (const GoneError&) {
            setObsolete(true);
            now.error = std::current_exception();
        } catch (...) {
            now.error = std::current_exception();
        }
    }

    Step takeBack_;
    Step repeat_;
};

bool Drops(const std::exception_ptr& error) {
    try {
        std::rethrow_exception(error);
    } catch (const GoneError&) {
        return true;
    } catch (...) {
        return false;
    }
}

}  // namespace

GoneError::GoneError(const QString& sentence)
    : platform::RuntimeError(platform::kNoCurrentRecord, sentence) {}

void History::Add(Action action) {
    if (running_) {
        return;
    }
    // The stack begins with repeating what it is given, but this has been done.
    now = {};
    stack_.push(new Command(std::move(action)));
}

void History::Undo(WorksheetPage& form) {
    if (CanUndo()) {
        Run(form, &QUndoStack::undo);
    }
}

void History::Redo(WorksheetPage& form) {
    if (CanRedo()) {
        Run(form, &QUndoStack::redo);
    }
}

void History::Run(WorksheetPage& form, void (QUndoStack::*step)()) {
    if (running_) {
        return;
    }
    const QScopedValueRollback running(running_, true);
    now = {.form = &form, .error = nullptr};
    (stack_.*step)();
    const std::exception_ptr error = std::exchange(now, {}).error;
    if (!error) {
        return;
    }
    if (!Drops(error)) {
        // The step did nothing, so the stack goes back to where it was.
        (stack_.*(step == &QUndoStack::undo ? &QUndoStack::redo : &QUndoStack::undo))();
    }
    std::rethrow_exception(error);
}

History& HistoryOf(const QString& worksheetID) {
    static std::map<QString, std::unique_ptr<History>> histories;
    static int opening = 0;
    if (opening != PrepDatatables::Openings()) {
        opening = PrepDatatables::Openings();
        histories.clear();
    }
    std::unique_ptr<History>& history = histories[worksheetID];
    if (!history) {
        history = std::make_unique<History>();
    }
    return *history;
}

}  // namespace undo
