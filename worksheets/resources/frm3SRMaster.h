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

class NoteLine;
class QLineEdit;
class QPushButton;
class vsFlexGrid;

class frm3SRMaster : public WorksheetPage {
    Q_OBJECT

public:
    static constexpr const char* kID = "SRM";  // of the worksheet

    frm3SRMaster(WorksheetHost& host, QWidget* parent);

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
    void DoneInList(const QString& name, const std::shared_ptr<ResourceList::Change>& change);
    void ShowChange(const ResourceList::Change& change);
    void EndTypingSource();
    void PutSource(const QString& text);
    void EnableDelete();
    void grdMasterList_EnterCell();
    void grdMasterList_BeforeEdit(int row, int col);
    void grdMasterList_AfterEdit();
    void txtSource_Change();
    void cmdAdd_Click();
    void cmdDelete_Click();

    ResourceList resources_;
    SRDataSource source_;
    std::optional<QString> sourceBefore_;  // what is being typed
    vsFlexGrid* grdMasterList_ = nullptr;
    NoteLine* note_ = nullptr;
    QLineEdit* txtSource_ = nullptr;
    QPushButton* cmdAdd_ = nullptr;
    QPushButton* cmdDelete_ = nullptr;
};
