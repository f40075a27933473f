// The zones of the open file as the zone worksheet lists them: their names and numbers of
// representative locations, without a window.
//
// A zone that is added is in the file at once, with the rows that depend on it. Names and numbers
// that are typed stay here, their zones marked as changed, until they are saved.
#pragma once

#include <QString>
#include <QStringList>

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <unordered_map>
#include <vector>

#include "platform/controls/GridTable.h"
#include "worksheets/ListRows.h"
#include "worksheets/undo/ListChange.h"
#include "worksheets/zones/ZoneRecords.h"

namespace worksheets {

class ZoneList : public platform::GridTable {
public:
    enum Column { kName, kLocations, kColumns };

    // What an action changed, with what it takes to put back a zone that the action had added.
    struct Change {
        undo::ListChange<Zone> list;
        std::map<std::int32_t, ZoneRecords::Dependents> removed;
    };
    // Called with each action that changed something, when it has ended.
    using Listener =
        std::function<void(const QString& name, const std::shared_ptr<Change>& change)>;
    void SetListener(Listener listener) { listener_ = std::move(listener); }

    // Takes what the file has. That something typed and not saved is dropped by it is an action
    // too, so that the actions before it are taken back from what they led to.
    void Load(const QString& actionName);
    // Rows count from 1.
    [[nodiscard]] const Zone& At(int row) const { return ListRows::At(zones_, row); }
    // The row of a zone, or nothing.
    [[nodiscard]] std::optional<int> RowOf(std::int32_t key) const {
        return ListRows::Of(zones_, key);
    }
    // Whether something is typed and not saved.
    [[nodiscard]] bool IsChanged(int row) const { return unsaved_.count(At(row).key) > 0; }
    [[nodiscard]] bool IsChanged() const { return !unsaved_.empty(); }
    // The names of the zones of which something is.
    [[nodiscard]] QStringList ChangedNames() const;

    // Saves in one transaction. `saveRow` is called for each row in turn and calls SaveRow. A row
    // that is refused (no such record, other zones in the way) does not keep the others from being
    // saved; its error is thrown at the end and the row stays marked. After any other error
    // nothing is saved.
    void Save(const std::function<void(int row)>& saveRow);
    void Save() {
        Save([this](int row) { SaveRow(row); });
    }
    void SaveRow(int row);
    // Adds a zone without a name and with one location at the end of the list; one action.
    void Add(const QString& actionName);

    // Takes an action back or repeats it, here and in the file, in one transaction.
    void TakeBack(Change& change) { Carry(change, change.list.Reversed()); }
    void Repeat(Change& change) { Carry(change, change.list); }

    [[nodiscard]] int RowCount() const override { return static_cast<int>(zones_.size()); }
    [[nodiscard]] QString Text(int row, int col) const override;
    [[nodiscard]] QString RowName(int row) const override { return At(row).name; }
    [[nodiscard]] int RowData(int row) const override { return At(row).key; }
    [[nodiscard]] Takes CellTakes(int row, int col) const override;
    [[nodiscard]] int MaxLength(int col) const override;
    Answer Offer(int row, int col, const QString& typed) override;
    void BeginAction(const QString& name) override;
    void EndAction() override;

private:
    // How an unsaved zone differs from what the file has.
    struct Unsaved {
        bool lowered = false;  // a number below 1 was typed, which the log gets a warning of
    };

    [[nodiscard]] Zone& Row(int row) { return ListRows::At(zones_, row); }
    Answer OfferLocations(Zone& zone, const QString& typed);
    void Carry(Change& change, const undo::ListChange<Zone>& list);
    static void CarryToFile(Change& change, const undo::ListChange<Zone>& list);
    static void CarryStep(Change& change, const undo::ListChange<Zone>::Step& step);
    void SaveAll(const std::function<void(int row)>& saveRow);
    void Done(const QString& name, const std::vector<Zone>& before, const std::vector<Zone>& after);

    std::vector<Zone> zones_;
    std::unordered_map<std::int32_t, Unsaved> unsaved_;
    std::vector<std::int32_t> saved_;  // by the save that is running
    QString actionName_;
    std::vector<Zone> before_;  // the action that is running
    Listener listener_;
};

}  // namespace worksheets
