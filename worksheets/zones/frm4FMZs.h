// The list of Fire Management Zones with their numbers of representative locations.
//
// A zone that is added here is in the file at once, with its nine cost rows and the fourteen rows
// of its first location. Names and numbers that are typed reach the file with FMZ_Update.
#pragma once

#include "worksheets/WorksheetPage.h"

class QPushButton;
class vsFlexGrid;

class frm4FMZs : public WorksheetPage {
    Q_OBJECT

public:
    frm4FMZs(WorksheetHost& host, QWidget* parent);

    void SetUp() override { FMZ_Setup(); }
    void Save() override { FMZ_Update(); }
    void Unload() override;

    void FMZ_Setup();
    // Writes every row that differs back to the file. A row that is refused does not keep the
    // others from being saved; its error is thrown at the end.
    void FMZ_Update();

private:
    void Build();
    void SetupGrid();
    void FMZ_LoadGrid();
    void FMZ_CreateRecord(int row);
    void FMZ_UpdateRecord(int row);
    void cmdAdd_Click();
    void cmdImport_Click();
    void grdFMZs_EnterCell();
    void grdFMZs_BeforeEdit(int col);

    vsFlexGrid* grdFMZs_ = nullptr;
    QPushButton* cmdAdd_ = nullptr;
    QPushButton* cmdImport_ = nullptr;
};
