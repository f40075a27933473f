// Net value change per acre: the table of one representative location of one zone, with a total
// for each FIL level, and the names of the fourteen resources.
//
// Values go into the table object as they are typed and into the file with SaveChanges, which also
// runs before another zone or location is shown.
#pragma once

#include <cstdint>
#include <memory>

#include "worksheets/WorksheetPage.h"
#include "worksheets/nvc/NVCResourceNames.h"

class ColumnTotals;
class QComboBox;
class QLabel;
class c34NVCTable;
class vsFlexGrid;

class frm5NVCTable : public WorksheetPage {
    Q_OBJECT

public:
    frm5NVCTable(WorksheetHost& host, QWidget* parent);
    ~frm5NVCTable() override;

    void SetUp() override { Setup(); }
    void Save() override { SaveChanges(); }
    void Unload() override;

    void Setup();
    // Writes changed resource names and the table, when it was changed.
    void SaveChanges();
    void SaveTable();

private:
    enum class Stored { kAsBefore, kChanged, kRefused };  // refused: larger than the file can hold

    void BuildChoices();
    void BuildTable();
    void ConnectHandlers();
    void SetupGrid();
    void ShowNVCTable();
    void ShowTotals();
    void ShowTotal(int level, double total);
    void SettleCell(int row, int col);
    Stored StoreCell(int row, int col, const QString& text);
    void ChooseZone();
    void ChooseLocation();
    void RestoreChoices();
    void cboFMZs_Click();
    void cboRepLocs_Click();
    void grdNVC_EnterCell();
    void grdNVC_BeforeEdit(int col, bool* cancel);
    void grdNVC_KeyPressEdit(int row, int col, QChar key);
    void grdNVC_KeyUpEdit(int row, int col);

    QComboBox* cboFMZs_ = nullptr;
    QComboBox* cboRepLocs_ = nullptr;
    vsFlexGrid* grdNVC_ = nullptr;
    ColumnTotals* totals_ = nullptr;
    QLabel* lblNoRepLocs_ = nullptr;
    QLabel* lblMinus_ = nullptr;
    NVCResourceNames names_;
    std::unique_ptr<c34NVCTable> table_;
    std::int32_t zoneKey_ = 0;
    // What the boxes show; put back when the table that is left cannot be saved.
    int zoneIndex_ = -1;
    int locationIndex_ = -1;
};
