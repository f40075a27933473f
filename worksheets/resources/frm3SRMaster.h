// The list of suppression resources with their units and costs, and the note on the source of the
// costs.
//
// Edits, moves and renumbering live in the grid until UpdateTable, which rewrites the rows that
// differ; additions and deletions are in the file at once.
#pragma once

#include <cstdint>

#include "worksheets/WorksheetPage.h"
#include "worksheets/resources/SRDataSource.h"

class QLineEdit;
class QPushButton;
class vsFlexGrid;

class frm3SRMaster : public WorksheetPage {
    Q_OBJECT

public:
    frm3SRMaster(WorksheetHost& host, QWidget* parent);

    void SetUp() override { Setup(); }
    void Save() override;
    void Unload() override;

    void Setup();
    // Writes the source of data when it was changed.
    void SaveChanges();
    // Writes every row that differs back to the file.
    void UpdateTable();

private:
    void Build();
    void BuildSource();
    void FormatGrid();
    void LoadGrid();
    void MoveRow(int from, int to);
    void SaveRow(int row);
    void LoadRow(int row);
    void RequireCost(int row);
    [[nodiscard]] std::int32_t Number(int row) const;
    void grdMasterList_EnterCell();
    void grdMasterList_BeforeEdit(int row, int col);
    void grdMasterList_AfterEdit(int row, int col);
    void txtSource_Change();
    void cmdAdd_Click();
    void cmdDelete_Click();

    vsFlexGrid* grdMasterList_ = nullptr;
    QLineEdit* txtSource_ = nullptr;
    QPushButton* cmdAdd_ = nullptr;
    QPushButton* cmdDelete_ = nullptr;
    SRDataSource source_;
    QString textBeforeEdit_;
};
