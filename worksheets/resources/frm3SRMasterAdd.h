// The dialog that adds one suppression resource: to the file at once, and to the list at the chosen
// place, which shifts the rows below.
#pragma once

#include <QDialog>

#include <optional>

class QGridLayout;
class QPushButton;
class QRadioButton;

namespace worksheets {
class MomentLabel;
class TextBox;
class ResourceList;
}  // namespace worksheets

class frm3SRMasterAdd : public QDialog {
    Q_OBJECT

public:
    // The dialog stands over `frame`.
    frm3SRMasterAdd(worksheets::ResourceList& list, QWidget& frame);

    // The place that is offered for the new resource, counted from 1.
    void SetPosition(int position);
    // The new resource's row; nothing when none was added.
    [[nodiscard]] std::optional<int> AddedRow() const { return addedRow_; }
    // The unload handler; call it once, after the dialog has ended.
    void Unload();

    void reject() override;

private:
    void BuildTexts(QGridLayout& rows);
    void BuildCostMeasure(QGridLayout& rows);
    void BuildButtons(QGridLayout& rows);
    worksheets::TextBox* AddBox(QGridLayout& rows, int row, const char* name, const QString& label,
                                int length);
    void ConnectHandlers();
    void ConnectBox(worksheets::TextBox* box);
    void EnableOK();
    bool txtCost_KeyPress(const QString& typed);
    bool txtPosition_KeyPress(const QString& typed);
    void cmdOK_Click();
    void cmdCancel_Click();

    worksheets::ResourceList& list_;
    std::optional<int> addedRow_;
    worksheets::TextBox* txtResourceName_ = nullptr;
    worksheets::TextBox* txtShortName_ = nullptr;
    QRadioButton* optTime_ = nullptr;
    QRadioButton* optItem_ = nullptr;
    worksheets::TextBox* txtUnits_ = nullptr;
    worksheets::TextBox* txtCost_ = nullptr;
    worksheets::TextBox* txtPosition_ = nullptr;
    worksheets::MomentLabel* lblCostCue_ = nullptr;
    worksheets::MomentLabel* lblPositionCue_ = nullptr;
    QPushButton* cmdOK_ = nullptr;
    QPushButton* cmdCancel_ = nullptr;
};
