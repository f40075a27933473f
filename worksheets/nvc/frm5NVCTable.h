// The net value change table of one representative location at a time, its totals, and the names of
// the fourteen resources.
//
// What the grid shows and takes is NVCGridTable's business. Values are stored in the table object
// at each key and in the file with SaveChanges, which also runs before another zone or location is
// shown.
#pragma once

#include <cstdint>

#include "worksheets/WorksheetPage.h"
#include "worksheets/nvc/NVCGridTable.h"

class QLabel;
class vsFlexGrid;

namespace platform {
class LivePlot;
}

namespace worksheets {
class ColumnTotals;
class PlotBeside;
}  // namespace worksheets

class frm5NVCTable : public worksheets::WorksheetPage {
    Q_OBJECT

public:
    static constexpr const char* kID = "NVC";  // of the worksheet

    frm5NVCTable(worksheets::WorksheetHost& host, QWidget* parent);
    ~frm5NVCTable() override;

    void SetUp() override { Setup(); }
    void Save() override { SaveChanges(); }
    void Unload() override;

    void Setup();
    void SaveChanges();

protected:
    bool EndOpenEdit() override;

private:
    struct Place {
        std::int32_t zoneKey = 0;
        std::int32_t location = 0;
    };
    using CellState =
        worksheets::NVCGridTable::Cell undo::CellChange<worksheets::NVCGridTable::Cell>::*;

    void BuildChoices();
    void BuildTable();
    void BuildTotals();
    void BuildNotes();
    void ConnectHandlers();
    void SetupGrid();
    void ShowNVCTable();
    void ShowTotals();
    void ShowTotal(int level, double total);
    void ShowPlot(platform::LivePlot& plot) const;

    void ActionDone(const QString& name, const worksheets::NVCGridTable::Changes& changes);
    void PutBack(const Place& place, const worksheets::NVCGridTable::Changes& changes,
                 CellState state);
    void GoTo(const Place& place);

    void ShowZone();
    void ShowLocation();
    void OrRestoreChoices(const std::function<void()>& choose);
    void RestoreChoices();
    void cboFMZs_Click();
    void cboRepLocs_Click();
    void grdNVC_EnterCell();
    void grdNVC_BeforeEdit();
    void grdNVC_KeyPressEdit(int row, int col, QChar key);
    void grdNVC_KeyUpEdit(int row, int col);
    // Whose table the grid shows, for messages: "North, location 2".
    [[nodiscard]] QString ShownTable() const;

    worksheets::NVCGridTable table_;
    worksheets::ChoiceBox* cboFMZs_ = nullptr;
    worksheets::ChoiceBox* cboRepLocs_ = nullptr;
    QLabel* lblNoRepLocs_ = nullptr;
    vsFlexGrid* grdNVC_ = nullptr;
    worksheets::PlotBeside* plot_ = nullptr;
    worksheets::ColumnTotals* totals_ = nullptr;
    QLabel* lblMinus_ = nullptr;
    // What the boxes chose last; location -1: none.
    int zoneIndex_ = -1;
    int locationIndex_ = -1;
    std::int32_t zoneKey_ = 0;
};
