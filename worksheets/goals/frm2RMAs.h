// Resource Management Areas and their management objectives.
//
// The list shows the headings in key order; the boxes edit the selected area. What is typed is
// written when another area is selected, an area is added or deleted, and when the page is left.
//
// Undoing. What is typed into a box is one action from its first change until the box is left, a
// new line is begun in it, or something else is done.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>

#include "worksheets/WorksheetPage.h"
#include "worksheets/goals/GoalList.h"

class QPlainTextEdit;
class QPushButton;

namespace worksheets {
class AreaList;
class TextBox;
}  // namespace worksheets

class frm2RMAs : public worksheets::WorksheetPage {
    Q_OBJECT

public:
    static constexpr const char* kID = "RMA";  // of the worksheet

    frm2RMAs(worksheets::WorksheetHost& host, QWidget* parent);

    void SetUp() override { Setup(); }
    void Save() override { Update(); }
    void Unload() override;

    void Setup();
    // Writes the boxes into the area that they show, when they were changed.
    void Update();

protected:
    bool EndOpenEdit() override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    enum class Box { kHeading, kBody };
    // What is being typed into a box, until it becomes an action.
    struct Typing {
        Box box = Box::kHeading;
        QString before;
        int lines = 0;
    };

    QVBoxLayout* BuildList();
    QVBoxLayout* BuildBoxes();
    void ConnectHandlers();
    void LoadList();
    void ShowItem();
    void ShowNothing();
    void ShowArea(int row);
    void ShowAfterDelete(int row);
    void SelectShown();
    void EnableBoxes(bool enabled);
    [[nodiscard]] int ShownRow() const;
    void BeginTyping(Box box);
    void EndTyping();
    void TakeBody();
    void PutText(std::int32_t key, Box box, const QString& text);
    void DidAdd(std::int32_t key);
    void DidDelete(const worksheets::GoalList::Goal& goal);
    void TakeAway(worksheets::GoalList::Goal& goal);
    void PutBack(const worksheets::GoalList::Goal& goal);
    void lstRMAs_Click();
    void txtHeading_GotFocus();
    void txtHeading_Change();
    void txtBody_Change();
    void cmdAdd_Click();
    void cmdDelete_Click();

    worksheets::GoalList goals_;
    std::optional<Typing> typing_;
    worksheets::AreaList* lstRMAs_ = nullptr;
    QPushButton* cmdAdd_ = nullptr;
    QPushButton* cmdDelete_ = nullptr;
    worksheets::TextBox* txtHeading_ = nullptr;
    QPlainTextEdit* txtBody_ = nullptr;
    std::int32_t currentKey_ = 0;
    // The box has objectives that the list has not.
    bool bodyChanged_ = false;
};
