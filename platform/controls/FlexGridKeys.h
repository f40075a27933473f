// What the keys do in a grid and in its open editor.
#pragma once

#include "platform/controls/FlexGridNavigation.h"
#include "platform/controls/FlexGridParts.h"

class QKeyEvent;

namespace platform {

class FlexGridPaste;

class FlexGridKeys {
public:
    FlexGridKeys(const FlexGridParts& parts, FlexGridPaste& paste)
        : parts_(parts), paste_(paste), ground_(parts) {}

    [[nodiscard]] static bool IsTab(const QKeyEvent& key);

    // A key that was pressed while no edit is open.
    void Press(QKeyEvent* event);
    void PressTab(const QKeyEvent& event);
    // A key in the open editor; true for one that is not the editor's own.
    bool PressInEditor(QKeyEvent* event);
    // The mouse went elsewhere: a run of Tabs is over.
    void EndRun() { navigation_.EndRun(); }

private:
    // What keys move over.
    class Ground : public FlexGridNavigation::Ground {
    public:
        explicit Ground(const FlexGridParts& parts) : parts_(parts) {}
        [[nodiscard]] int FirstRow() const override;
        [[nodiscard]] int LastRow() const override;
        [[nodiscard]] int Cols() const override;
        [[nodiscard]] bool IsShown(int col) const override;
        [[nodiscard]] bool TabStops(int row, int col) const override;
        [[nodiscard]] int PageRows() const override;

    private:
        FlexGridParts parts_;
    };

    void PressInCell(QKeyEvent* event);
    bool PressInList(const QKeyEvent& event);
    bool PressClipboardKey(const QKeyEvent& event);
    void PressF2InEditor();
    [[nodiscard]] bool LeavesCell(const QKeyEvent& event) const;
    bool Move(const QKeyEvent& event);
    bool MoveByTab(bool forward);
    [[nodiscard]] FlexGridNavigation::Place Current() const;

    FlexGridParts parts_;
    FlexGridPaste& paste_;
    Ground ground_;
    FlexGridNavigation navigation_{ground_};
};

}  // namespace platform
