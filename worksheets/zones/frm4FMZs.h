// The list of Fire Management Zones with their numbers of representative locations.
//
// The zones belong to a ZoneList: one that is added is in the file at once, names and numbers that
// are typed reach it with FMZ_Update.
#pragma once

#include <memory>

#include "worksheets/WorksheetPage.h"
#include "worksheets/zones/ZoneList.h"

class QPushButton;
class vsFlexGrid;

namespace worksheets {
class NoteLine;
}

class frm4FMZs : public worksheets::WorksheetPage {
    Q_OBJECT

public:
    static constexpr const char* kID = "FMZ";  // of the worksheet

    frm4FMZs(worksheets::WorksheetHost& host, QWidget* parent);

    void SetUp() override { FMZ_Setup(); }
    void Save() override { FMZ_Update(); }
    void Unload() override;

    void FMZ_Setup();
    // Writes every zone that was changed back to the file. One that is refused does not keep the
    // others from being saved; its error is thrown at the end.
    void FMZ_Update();

protected:
    bool EndOpenEdit() override;

private:
    void Build();
    void ConnectHandlers();
    void SetupGrid();
    void FMZ_LoadGrid();
    void FMZ_CreateRecord(int row);
    void FMZ_UpdateRecord(int row);
    [[nodiscard]] bool MayDropTyped() const;
    void ShowImported();
    void DoneInList(const QString& name,
                    const std::shared_ptr<worksheets::ZoneList::Change>& change);
    void ShowChange(const undo::ListChange<worksheets::Zone>& list);
    void cmdAdd_Click();
    void cmdImport_Click();
    void grdFMZs_EnterCell();
    void grdFMZs_BeforeEdit(int row, int col);

    worksheets::ZoneList zones_;
    vsFlexGrid* grdFMZs_ = nullptr;
    worksheets::NoteLine* note_ = nullptr;
    QPushButton* cmdAdd_ = nullptr;
    QPushButton* cmdImport_ = nullptr;
};
