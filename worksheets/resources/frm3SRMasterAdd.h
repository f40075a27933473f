// The dialog that adds one suppression resource: to the table at once, and to the list's grid at
// the chosen place, which shifts the rows below.
#pragma once

#include <QDialog>

class QGridLayout;
class QPushButton;
class QRadioButton;
class TextBox;
class vsFlexGrid;
struct Resource;

class frm3SRMasterAdd : public QDialog {
    Q_OBJECT

public:
    // `list` is the grid of the resources' page; the dialog stands over `frame`.
    frm3SRMasterAdd(vsFlexGrid& list, QWidget& frame);

    // The place that is offered for the new resource, counted from 1.
    void SetPosition(int position);
    // The unload handler; call it once, after the dialog has ended.
    void Unload();

    void reject() override;

private:
    void BuildTexts(QGridLayout& rows);
    void BuildCostMeasure(QGridLayout& rows);
    void BuildButtons(QGridLayout& rows);
    TextBox* AddBox(QGridLayout& rows, int row, const char* name, const QString& label, int length);
    void ConnectHandlers();
    void ConnectBox(TextBox* box);
    void EnableOK();
    void InsertRow(const Resource& resource);
    void cmdOK_Click();
    void cmdCancel_Click();

    vsFlexGrid& list_;
    TextBox* txtResourceName_ = nullptr;
    TextBox* txtShortName_ = nullptr;
    QRadioButton* optTime_ = nullptr;
    QRadioButton* optItem_ = nullptr;
    TextBox* txtUnits_ = nullptr;
    TextBox* txtCost_ = nullptr;
    TextBox* txtPosition_ = nullptr;
    QPushButton* cmdOK_ = nullptr;
    QPushButton* cmdCancel_ = nullptr;
};
