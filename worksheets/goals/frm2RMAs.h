// Resource Management Areas and their management objectives.
//
// The list shows the headings in key order; the boxes edit the selected area. What is typed is
// written when another area is selected, an area is added or deleted, and when the page is left.
#pragma once

#include <cstdint>

#include "worksheets/WorksheetPage.h"

class QListWidget;
class QPlainTextEdit;
class QPushButton;
class TextBox;

class frm2RMAs : public WorksheetPage {
    Q_OBJECT

public:
    frm2RMAs(WorksheetHost& host, QWidget* parent);

    void SetUp() override { Setup(); }
    void Save() override { Update(); }
    void Unload() override;

    void Setup();
    // Writes the boxes into the area that they show, when they were changed.
    void Update();

private:
    QVBoxLayout* BuildList();
    QVBoxLayout* BuildBoxes();
    void ConnectHandlers();
    void LoadList();
    void ShowItem();
    void ShowNothing();
    void SelectShown();
    void EnableBoxes(bool enabled);
    void AddEntry(const QString& heading, std::int32_t key);
    void lstRMAs_Click();
    void txtHeading_Change();
    void txtBody_Change();
    void cmdAdd_Click();
    void cmdDelete_Click();

    QListWidget* lstRMAs_ = nullptr;
    QPushButton* cmdAdd_ = nullptr;
    QPushButton* cmdDelete_ = nullptr;
    TextBox* txtHeading_ = nullptr;
    QPlainTextEdit* txtBody_ = nullptr;
    std::int32_t currentKey_ = 0;
    bool changed_ = false;
    // The objectives as the file has them: written back to the letter unless the user edits them.
    QString storedBody_;
    bool bodyChanged_ = false;
};
