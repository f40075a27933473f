// What passes between a grid and its table: actions, offered texts and the sentence about them.
//
// The table is the model's; without one actions mean nothing and nothing may be offered. The note
// is what is to be read under the grid: what is being typed comes first, then what became of the
// last action, then the cell that is current, then the latest one that is still marked.
#pragma once

#include <QList>
#include <QObject>
#include <QPersistentModelIndex>
#include <functional>

#include "platform/controls/FlexGridNotes.h"
#include "platform/controls/GridTable.h"

namespace platform {

class FlexGridModel;

class FlexGridOffers : public QObject {
    Q_OBJECT

public:
    // What is to be known for the note.
    struct State {
        QModelIndex current;
        QModelIndex edited;  // invalid: no edit is open
        bool typed = false;  // something was typed into the open edit
        QString text;        // of the open edit
    };

    FlexGridOffers(FlexGridModel& model, std::function<State()> state)
        : model_(model), state_(std::move(state)) {}

    // Actions do not nest: what a paste leads to belongs to it.
    void BeginAction(const QString& name);
    void EndAction();
    // The action ends also when the body fails.
    void Within(const QString& action, const std::function<void()>& body);

    // Gives the table a text. What else shows something new afterwards, the table's owner
    // announces.
    GridTable::Answer Offer(const QPersistentModelIndex& cell, const QString& text);
    [[nodiscard]] bool IsOffering() const { return offering_; }
    // Keeps for the note what the table answered to a text, and reports a refusal.
    void TakeAnswer(const QPersistentModelIndex& cell, const QString& typed,
                    const GridTable::Answer& answer);

    // "Stored as 1" for a cell that shows, or whose editor holds, something else; else empty.
    [[nodiscard]] QString CellNote(const QModelIndex& cell) const;
    [[nodiscard]] QString Note() const;
    // The note may be another.
    void UpdateNote();
    // What became of the cells so far no longer matters.
    void Forget();

signals:
    void Refused(int row, int col, const QString& sentence);  // rows as the grid's
    void NoteChanged(const QString& note);
    // What is said of the cell that is being edited.
    void EditNoted(const QString& note);

private:
    [[nodiscard]] QString NoteOf(const QModelIndex& cell, const QModelIndex& edited) const;
    [[nodiscard]] QString ReadAs(const QModelIndex& cell, const QString& typed,
                                 const QString& stored) const;
    [[nodiscard]] FlexGridNotes::Cell Named(const QModelIndex& cell) const;
    [[nodiscard]] int GridRow(const QModelIndex& cell) const;

    FlexGridModel& model_;
    std::function<State()> state_;
    bool inAction_ = false;  // the table knows of an action that has not ended
    bool offering_ = false;
    QString told_;                         // what became of the last action, if not as typed
    QList<QPersistentModelIndex> marked_;  // the cells that were marked, the latest last
    QString shown_;
};

}  // namespace platform
