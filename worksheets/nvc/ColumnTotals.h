// The row of panels below a grid, each exactly under its column: it follows resizing of columns
// and scrolling sideways.
#pragma once

#include <QWidget>

#include <vector>

class SSPanel;
class vsFlexGrid;

namespace worksheets {

class ColumnTotals : public QWidget {
    Q_OBJECT

public:
    // Panel n stands under column n; the first one is the label of the row.
    ColumnTotals(vsFlexGrid& grid, std::vector<SSPanel*> panels, QWidget* parent);

    [[nodiscard]] SSPanel& Panel(int column) const { return *panels_.at(std::size_t(column)); }
    [[nodiscard]] QSize sizeHint() const override;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void Arrange();

    vsFlexGrid& grid_;
    std::vector<SSPanel*> panels_;
};

}  // namespace worksheets
