// The list of suppression resources with their units and costs, and the note on the source of the
// costs.
//
// The resources belong to a ResourceList: edits and moves stay there until UpdateTable, which
// writes the rows that differ; additions and deletions are in the file at once.
#pragma once

#include <memory>
#include <optional>

#include "worksheets/WorksheetPage.h"
#include "worksheets/resources/ResourceList.h"
#include "worksheets/resources/SRDataSource.h"

class QLineEdit;
class QPushButton;
class vsFlexGrid;

namespace worksheets {
class NoteLine;
}

class frm3SRMaster : public worksheets::WorksheetPage {
    Q_OBJECT

public:
    static constexpr const char* kID = "SRM";  // of the worksheet

    frm3SRMaster(worksheets::WorksheetHost& host, QWidget* parent);

    void SetUp() override { Setup(); }
    void Save() override;
    void Unload() override;

    void Setup();
    // Writes the source of data when it was changed.
    void SaveChanges();
    // Writes every row that differs back to the file.
    void UpdateTable();

protected:
    bool EndOpenEdit() override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void Build();
    void BuildSource();
    void ConnectHandlers();
    void FormatGrid();
    void LoadGrid();
    void MoveRow(int from, int to);
    void SaveRow(int row);
    void Listen();
    void DoneInList(const QString& name,
                    const std::shared_ptr<worksheets::ResourceList::Change>& change);
    void ShowChange(const worksheets::ResourceList::Change& change);
    void EndTypingSource();
    void PutSource(const QString& text);
    void EnableDelete();
    void grdMasterList_EnterCell();
    void grdMasterList_BeforeEdit(int row, int col);
    void grdMasterList_AfterEdit();
    void txtSource_Change();
    void cmdAdd_Click();
    void cmdDelete_Click();

    worksheets::ResourceList resources_;
    SRDataSource source_;
    std::optional<QString> sourceBefore_;  // what is being typed
    vsFlexGrid* grdMasterList_ = nullptr;
    worksheets::NoteLine* note_ = nullptr;
    QLineEdit* txtSource_ = nullptr;
    QPushButton* cmdAdd_ = nullptr;
    QPushButton* cmdDelete_ = nullptr;
};
