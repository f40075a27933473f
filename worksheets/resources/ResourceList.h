// The suppression resources of the open file as their worksheet lists them, without a window.
//
// Resources that are added or deleted are so in the file at once, together with the numbers of all
// others. Texts, costs and places that are typed stay here, their resources marked as changed,
// until they are saved.
//
// Places. Whatever number is typed in front of a row, the list is numbered from 1 on afterwards.
// The rows stay where they are until the action ends, so that a block that is pasted stays with the
// rows that it began in; then they are moved, one after the other.
#pragma once

#include <QString>

#include <functional>
#include <memory>
#include <optional>
#include <unordered_set>
#include <utility>
#include <vector>

#include "platform/controls/GridTable.h"
#include "worksheets/ListRows.h"
#include "worksheets/resources/ResourceRecords.h"
#include "worksheets/undo/ListChange.h"

namespace worksheets {

class ResourceList : public platform::GridTable {
public:
    // The last column is hidden in the grid and gives the record's key.
    enum Column { kNumber, kName, kShortName, kUnits, kCost, kKey, kColumns };

    using Change = undo::ListChange<Resource>;
    // Called with each action that changed something, when it has ended.
    using Listener =
        std::function<void(const QString& name, const std::shared_ptr<Change>& change)>;
    void SetListener(Listener listener) { listener_ = std::move(listener); }
    // Called for each row that is to be moved when an action ends, to call MoveRow.
    using Mover = std::function<void(int from, int to)>;
    void SetMover(Mover mover) { mover_ = std::move(mover); }

    // Called when the file did not take rows that were appended, and they are gone again.
    void SetDropListener(std::function<void()> listener) { dropListener_ = std::move(listener); }

    // Takes what the file has; what was typed and not saved is dropped.
    void Load();
    // Rows count from 1.
    [[nodiscard]] const Resource& At(int row) const { return ListRows::At(rows_, row); }
    // The row of a resource, or nothing.
    [[nodiscard]] std::optional<int> RowOf(std::int32_t key) const {
        return ListRows::Of(rows_, key);
    }

    // Saves in one transaction. `saveRow` is called for each row in turn and calls SaveRow. A row
    // without a record (3021) does not keep the others from being saved; its error is thrown at the
    // end and the row stays marked. After any other error nothing is saved.
    void Save(const std::function<void(int row)>& saveRow);
    void Save() {
        Save([this](int row) { SaveRow(row); });
    }
    void SaveRow(int row);

    // Each of these is one action and one transaction, the new numbers of the rows below included.
    // Adds a resource at a row, within 1 to RowCount() + 1.
    void Insert(const QString& actionName, Resource resource, int row);
    // False when there is no such record; the list then stays as it is.
    bool Delete(const QString& actionName, int row);

    // Moves a row and renumbers those that it passes; the list was numbered from 1 on.
    void MoveRow(int from, int to);

    // Takes an action back or repeats it, here and in the file, in one transaction.
    void TakeBack(const Change& change) { Carry(change.Reversed()); }
    void Repeat(const Change& change) { Carry(change); }

    [[nodiscard]] int RowCount() const override { return static_cast<int>(rows_.size()); }
    [[nodiscard]] QString Text(int row, int col) const override;
    [[nodiscard]] QString RowName(int row) const override { return At(row).longName; }
    [[nodiscard]] int RowData(int row) const override { return At(row).key; }
    [[nodiscard]] Takes CellTakes(int row, int col) const override;
    [[nodiscard]] int MaxLength(int col) const override;
    Answer Offer(int row, int col, const QString& typed) override;
    [[nodiscard]] int RoomForRows() const override;
    void AppendRows(int count) override;
    void BeginAction(const QString& name) override;
    void EndAction() override;

private:
    [[nodiscard]] Resource& Row(int row) { return ListRows::At(rows_, row); }
    Answer OfferText(int row, int col, const QString& typed);
    Answer OfferNumber(int row, const QString& typed);
    Answer OfferCost(Resource& resource, const QString& typed);
    void InFile(const QString& actionName, const std::function<void()>& body);
    void AddAppended();
    void CarryOutMoves();
    void NumberRows();
    void Carry(const Change& change);
    static void CarryStep(const Change::Step& step);
    void SaveAll(const std::function<void(int row)>& saveRow);
    [[nodiscard]] QStringList ChangedNames() const;

    std::vector<Resource> rows_;
    std::unordered_set<std::int32_t> unsaved_;
    std::vector<std::int32_t> saved_;  // by the save that is running
    // The action that is running: the list before it, and for each number that was typed the key of
    // its resource and the row that it asks for.
    QString actionName_;
    std::vector<Resource> before_;
    std::vector<std::pair<std::int32_t, int>> moves_;
    int appended_ = 0;  // rows at the end that have no record and no key yet
    Listener listener_;
    Mover mover_;
    std::function<void()> dropListener_;
};

}  // namespace worksheets
