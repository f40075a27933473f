#include "platform/controls/FlexGridEditing.h"

#include <QAccessible>
#include <QApplication>
#include <QItemSelectionModel>
#include <QScopedValueRollback>
#include <QTableView>

#include "platform/EventTrap.h"
#include "platform/controls/FlexGridEditor.h"
#include "platform/controls/FlexGridModel.h"

namespace platform {

namespace {

constexpr int kUnlimited = 32767;  // characters: the limit of every line edit

}  // namespace

FlexGridEditing::FlexGridEditing(QTableView& view, FlexGridModel& model, FlexGridOffers& offers)
    : view_(view), model_(model), offers_(offers), editor_(new FlexGridEditor(view.viewport())) {
    editor_->hide();
    editor_->setObjectName(QStringLiteral("txtCellEditor"));
    editor_->setAccessibleName(tr("Cell"));
    connect(editor_, &FlexGridEditor::Edited, this, &FlexGridEditing::OnEdited);
    connect(editor_, &FlexGridEditor::KeyTyped, this, [this](QChar key) {
        if (IsOpen()) {
            emit KeyPressEdit(Row(), cell_.column(), key);
        }
    });
    connect(editor_, &FlexGridEditor::KeyReleased, this, &FlexGridEditing::ReportKeyUp);
    connect(editor_, &FlexGridEditor::FocusLost, this, &FlexGridEditing::OnFocusLost);
    connect(editor_, &FlexGridEditor::Dropped, this, &FlexGridEditing::Dropped);
    connect(&offers, &FlexGridOffers::EditNoted, editor_, &FlexGridEditor::SetNote);
}

int FlexGridEditing::Row() const {
    return cell_.row() + model_.FixedRows();
}

void FlexGridEditing::Begin() {
    const QModelIndex index = view_.currentIndex();
    if (!index.isValid() || cell_ == index) {
        return;
    }
    Finish();
    const int row = index.row() + model_.FixedRows();
    bool cancel = false;
    emit BeforeEdit(row, index.column(), &cancel);
    if (cancel || view_.currentIndex() != index || !model_.TakesText(row, index.column())) {
        return;
    }
    const QString text = model_.Text(row, index.column());
    cell_ = index;
    edit_.Begin(text);
    editor_->setAlignment(model_.Column(index.column()).alignment);
    editor_->setAccessibleName(model_.CellName(row, index.column()));
    editor_->Load(text, Longest(index.column()));
    view_.selectionModel()->select(index, QItemSelectionModel::ClearAndSelect);
    view_.scrollTo(index);
    Place();
    editor_->show();
    editor_->setFocus();
    offers_.UpdateNote();
}

void FlexGridEditing::Finish() {
    if (!IsOpen() || finishing_) {
        return;
    }
    const QScopedValueRollback finishing(finishing_, true);
    if (edit_.IsUnreported()) {
        ReportKeyUp(0);
    }
    if (!IsOpen()) {
        return;
    }
    const QPersistentModelIndex cell = cell_;
    const QString text = editor_->text();
    Close();
    if (model_.Table() == nullptr) {
        model_.SetText(cell.row() + model_.FixedRows(), cell.column(), text);
    } else if (edit_.IsChanged()) {
        Settle(cell, text);
    }
    if (cell.isValid()) {
        emit AfterEdit(cell.row() + model_.FixedRows(), cell.column());
    }
    offers_.EndAction();
    offers_.UpdateNote();
}

// The edit has ended with this text.
void FlexGridEditing::Settle(const QPersistentModelIndex& cell, const QString& text) {
    if (edit_.MustOffer(text)) {
        edit_.Offered(text, offers_.Offer(cell, text));
    }
    offers_.TakeAnswer(cell, text, edit_.LastAnswer());
}

void FlexGridEditing::Trapped(const std::function<void()>& body) {
    platform::EventTrap::Run("vsFlexGrid.FinishEdit", body);
}

void FlexGridEditing::End() {
    if (IsOpen()) {
        Trapped([this] { Finish(); });
    }
}

void FlexGridEditing::Cancel() {
    const QPersistentModelIndex cell = cell_;
    const QString before = edit_.TextBefore();
    Close();
    if (model_.Table() == nullptr) {
        model_.SetText(cell.row() + model_.FixedRows(), cell.column(), before);
    } else if (edit_.WasOffered()) {
        (void)offers_.Offer(cell, before);
    }
    if (edit_.IsChanged() && cell.isValid()) {
        emit EditCancelled(cell.row() + model_.FixedRows(), cell.column());
    }
    offers_.EndAction();
    offers_.UpdateNote();
}

void FlexGridEditing::Close() {
    const QScopedValueRollback closing(closing_, true);
    cell_ = QPersistentModelIndex();
    if (editor_->hasFocus()) {
        view_.setFocus();
    }
    editor_->hide();
}

QString FlexGridEditing::Text() const {
    return IsOpen() ? editor_->text() : QString();
}

void FlexGridEditing::SetText(const QString& text) {
    if (IsOpen() && text != editor_->text()) {
        editor_->setText(text);
        OnEdited();
    }
}

void FlexGridEditing::Show(const QString& text) {
    if (editor_->text() != text) {
        editor_->Load(text, Longest(cell_.column()));
        Place();
    }
}

void FlexGridEditing::SetLongest(int characters) {
    longest_ = characters;
    if (IsOpen()) {
        editor_->SetLongest(Longest(cell_.column()));
    }
}

int FlexGridEditing::Longest(int col) const {
    const int length = model_.Table() != nullptr ? model_.Table()->MaxLength(col) : longest_;
    return length > 0 ? length : kUnlimited;
}

GridTable::Answer FlexGridEditing::Offer() {
    GridTable::Answer answer;
    if (model_.Table() == nullptr || !IsChanged()) {
        return answer;
    }
    const QString text = editor_->text();
    answer = offers_.Offer(cell_, text);
    edit_.Offered(text, answer);
    offers_.UpdateNote();
    return answer;
}

void FlexGridEditing::Place() {
    if (IsOpen()) {
        // Inside the grid lines.
        editor_->LieOver(view_.visualRect(cell_).adjusted(0, 0, -1, -1), view_.viewport()->rect());
    }
}

// Announce the focus only after whoever gave it to the grid has announced the grid.
void FlexGridEditing::TakeFocus() {
    editor_->setFocus();
    const auto announce = [this] {
        if (editor_->hasFocus()) {
            QAccessibleEvent focus(editor_, QAccessible::Focus);
            QAccessible::updateAccessibility(&focus);
        }
    };
    if (QAccessible::isActive()) {
        QMetaObject::invokeMethod(this, announce, Qt::QueuedConnection);
    }
}

void FlexGridEditing::OnEdited() {
    if (!IsOpen()) {
        return;
    }
    if (edit_.Change()) {
        offers_.BeginAction(tr("Typing"));
    }
    Place();
    emit ChangeEdit();
    offers_.UpdateNote();
    if (IsOpen() && !editor_->KeyIsDown()) {
        ReportKeyUp(0);
    }
}

// The grid itself hands the focus back.
void FlexGridEditing::OnFocusLost() {
    if (!closing_ && QApplication::focusWidget() != &view_) {
        End();
    }
}

void FlexGridEditing::ReportKeyUp(int key) {
    if (IsOpen()) {
        edit_.Report();
        emit KeyUpEdit(Row(), cell_.column(), key);
    }
}

}  // namespace platform
