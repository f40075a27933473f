// The combo box in which a page's zone, or location, is chosen.
//
// The wheel passes over it while it is closed, without changing it, so that scrolling a page never
// chooses another item. Its list shows some twenty rows and a scroll bar, as wide as the longest
// item; the box itself keeps the width that it was given, less only where the page has no room for
// that, and a text that is cut there is shown by a tip. An item without a text shows as "(no
// name)"; the item's own text stays empty.
#pragma once

#include <QComboBox>

namespace worksheets {

class ChoiceBox : public QComboBox {
    Q_OBJECT

public:
    // `characters`: how many the box has room for.
    ChoiceBox(int characters, QWidget* parent);

    [[nodiscard]] QSize minimumSizeHint() const override;
    void showPopup() override;
    // Chooses the item `by` places further down, or up when it is negative, as a person does: it
    // emits `activated`. Nothing beyond the ends.
    void Step(int by);

protected:
    void wheelEvent(QWheelEvent* event) override;
    void initStyleOption(QStyleOptionComboBox* option) const override;

private:
    void ShowWhole();
};

}  // namespace worksheets
