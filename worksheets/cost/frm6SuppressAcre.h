// Suppression cost per acre of one zone, in up to nine classes of fire size.
//
// What the grid shows and takes is CostGridTable's business. Values go into the table object at
// each change of an edit and into the file with SaveChanges, which also runs before another zone is
// shown.
#pragma once

#include <cstdint>

#include "worksheets/WorksheetPage.h"
#include "worksheets/cost/CostGridTable.h"

class vsFlexGrid;

namespace platform {
class LivePlot;
}

namespace worksheets {
class PlotBeside;
}

class frm6SuppressAcre : public worksheets::WorksheetPage {
    Q_OBJECT

public:
    static constexpr const char* kID = "SCA";  // of the worksheet

    frm6SuppressAcre(worksheets::WorksheetHost& host, QWidget* parent);
    ~frm6SuppressAcre() override;

    void SetUp() override { Setup(); }
    void Save() override { SaveChanges(); }
    void Unload() override;

    void Setup();
    void SaveChanges();

protected:
    bool EndOpenEdit() override;

private:
    using CellState = float undo::CellChange<float>::*;

    void Build();
    void ConnectHandlers();
    void FormatCostGrid();
    void DisplayData();
    void ShowNextLowerBound(int row, float top);
    void ShowPlot(platform::LivePlot& plot) const;

    void ActionDone(const QString& name, const worksheets::CostGridTable::Changes& changes);
    void PutBack(std::int32_t zoneKey, const worksheets::CostGridTable::Changes& changes,
                 CellState state);
    void GoTo(std::int32_t zoneKey);

    void ShowZone();
    void cboFMZs_Click();
    void grdCosts_EnterCell();
    void grdCosts_BeforeEdit();
    void grdCosts_ChangeEdit();
    void grdCosts_AfterEdit(int row, int col);

    worksheets::CostGridTable table_;
    worksheets::ChoiceBox* cboFMZs_ = nullptr;
    vsFlexGrid* grdCosts_ = nullptr;
    worksheets::PlotBeside* plot_ = nullptr;
    int zoneIndex_ = -1;
};
