// Suppression cost per acre of one zone, in up to nine classes of fire size.
//
// Values go into the table object at every keystroke and into the file with SaveChanges, which also
// runs before another zone is shown.
#pragma once

#include <memory>

#include "worksheets/WorksheetPage.h"

class QComboBox;
class c35AACTable;
class vsFlexGrid;

class frm6SuppressAcre : public WorksheetPage {
    Q_OBJECT

public:
    frm6SuppressAcre(WorksheetHost& host, QWidget* parent);
    ~frm6SuppressAcre() override;

    void SetUp() override { Setup(); }
    void Save() override { SaveChanges(); }
    void Unload() override;

    void Setup();
    void SaveChanges();

private:
    void Build();
    void ConnectHandlers();
    void FormatCostGrid();
    void DisplayData();
    void ShowNextLowerBound(int row, float top);
    void ShowStored(int row, int col);
    [[nodiscard]] float Stored(int row, int col) const;
    void Store(int row, int col, float value);
    void RequireStored(int row, int col);
    void PutBack(int row, int col);
    void ChooseZone();
    void cboFMZs_Click();
    void grdCosts_EnterCell();
    void grdCosts_BeforeEdit(int row, int col, bool* cancel);
    void grdCosts_ChangeEdit();
    void grdCosts_AfterEdit(int row, int col);

    QComboBox* cboFMZs_ = nullptr;
    vsFlexGrid* grdCosts_ = nullptr;
    std::unique_ptr<c35AACTable> table_;
    float valueBeforeEdit_ = 0;
    int zoneIndex_ = -1;
};
