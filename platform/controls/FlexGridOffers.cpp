#include "platform/controls/FlexGridOffers.h"

#include <QScopedValueRollback>
#include <utility>

#include "platform/controls/FlexGridModel.h"

namespace platform {

void FlexGridOffers::BeginAction(const QString& name) {
    if (model_.Table() != nullptr && !inAction_) {
        inAction_ = true;
        told_.clear();
        model_.Table()->BeginAction(name);
    }
}

void FlexGridOffers::EndAction() {
    if (std::exchange(inAction_, false) && model_.Table() != nullptr) {
        model_.Table()->EndAction();
    }
}

void FlexGridOffers::Within(const QString& action, const std::function<void()>& body) {
    BeginAction(action);
    try {
        body();
    } catch (...) {
        EndAction();
        throw;
    }
    EndAction();
}

GridTable::Answer FlexGridOffers::Offer(const QPersistentModelIndex& cell, const QString& text) {
    const QScopedValueRollback offering(offering_, true);
    const GridTable::Answer answer =
        model_.Table()->Offer(model_.TableRow(GridRow(cell)), cell.column(), text);
    if (cell.isValid()) {
        model_.RowsChanged(GridRow(cell), GridRow(cell));
    }
    return answer;
}

// Rows may have moved while the table took the text.
void FlexGridOffers::TakeAnswer(const QPersistentModelIndex& cell, const QString& typed,
                                const GridTable::Answer& answer) {
    if (!cell.isValid()) {
        return;
    }
    const int row = GridRow(cell);
    model_.RowsChanged(row, row);
    using Kind = GridTable::Answer::Kind;
    if (answer.kind == Kind::kRefused) {
        told_ = FlexGridNotes::Refused(Named(cell), answer.text);
        emit Refused(row, cell.column(), told_);
    } else if (answer.kind == Kind::kChanged && answer.text != typed &&
               !FlexGridNotes::SameNumber(typed, answer.text)) {
        told_ = ReadAs(cell, typed, answer.text);
    }
    if (!model_.Note(row, cell.column()).isEmpty()) {
        marked_.removeOne(cell);
        marked_.append(cell);
    }
}

QString FlexGridOffers::CellNote(const QModelIndex& cell) const {
    const State state = state_();
    return state.typed && state.edited == cell
               ? model_.Note(GridRow(cell), cell.column(), state.text)
               : model_.Note(GridRow(cell), cell.column());
}

QString FlexGridOffers::Note() const {
    if (model_.Table() == nullptr) {
        return {};
    }
    const State state = state_();
    if (state.typed && !FlexGridNotes::MayBecomeNumber(state.text)) {
        const int row = GridRow(state.edited);
        const int col = state.edited.column();
        if (!model_.Note(row, col, state.text).isEmpty()) {
            return ReadAs(state.edited, state.text,
                          model_.Table()->Stored(model_.TableRow(row), col));
        }
    }
    if (!told_.isEmpty()) {
        return told_;
    }
    const QString ofCurrent = NoteOf(state.current, state.edited);
    if (!ofCurrent.isEmpty()) {
        return ofCurrent;
    }
    for (auto cell = marked_.crbegin(); cell != marked_.crend(); ++cell) {
        const QString note = NoteOf(*cell, state.edited);
        if (!note.isEmpty()) {
            return note;
        }
    }
    return {};
}

void FlexGridOffers::UpdateNote() {
    const QString note = Note();
    if (note != shown_) {
        shown_ = note;
        emit NoteChanged(note);
    }
    const QModelIndex edited = state_().edited;
    if (edited.isValid()) {
        emit EditNoted(CellNote(edited));
    }
}

void FlexGridOffers::Forget() {
    told_.clear();
    marked_.clear();
}

QString FlexGridOffers::NoteOf(const QModelIndex& cell, const QModelIndex& edited) const {
    if (!cell.isValid() || cell == edited || model_.Note(GridRow(cell), cell.column()).isEmpty()) {
        return {};
    }
    const int row = GridRow(cell);
    return ReadAs(cell, model_.Text(row, cell.column()),
                  model_.Table()->Stored(model_.TableRow(row), cell.column()));
}

QString FlexGridOffers::ReadAs(const QModelIndex& cell, const QString& typed,
                               const QString& stored) const {
    const bool number = model_.Takes(GridRow(cell), cell.column()) == GridTable::Takes::kNumber;
    return FlexGridNotes::ReadAs(Named(cell), typed, stored, number,
                                 model_.Table()->MaxLength(cell.column()));
}

FlexGridNotes::Cell FlexGridOffers::Named(const QModelIndex& cell) const {
    const int row = model_.TableRow(GridRow(cell));
    const GridTable& table = *model_.Table();
    const QString name = row <= table.RowCount() ? table.RowName(row).trimmed() : QString();
    return {name.isEmpty() ? tr("row %1").arg(row) : name, model_.SpokenHeading(cell.column())};
}

int FlexGridOffers::GridRow(const QModelIndex& cell) const {
    return cell.row() + model_.FixedRows();
}

}  // namespace platform
