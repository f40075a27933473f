// The fixed rows of a grid, drawn above its columns; equal neighboring texts may share one cell.
#pragma once

#include <QHeaderView>
#include <vector>

namespace platform {

class FlexGridModel;

class FlexGridHeader : public QHeaderView {
    Q_OBJECT

public:
    FlexGridHeader(FlexGridModel& model, QWidget* parent);

    void SetMerged(bool merged);
    // Where a fixed cell lies in this header, a shared one only with its own part.
    [[nodiscard]] QRect CellRect(int row, int col) const;
    [[nodiscard]] QSize sizeHint() const override;

    // What the longest word of a column's own headings takes.
    [[nodiscard]] int RoomForWords(int col) const;

signals:
    void Clicked();

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    bool viewportEvent(QEvent* event) override;
    // What the column's own headings need; those that it shares with others do not count.
    [[nodiscard]] QSize sectionSizeFromContents(int col) const override;

private:
    // A cell as it is drawn: the fixed cells from the first row and column to the last.
    struct Block {
        int top = 0;
        int left = 0;
        int bottom = 0;
        int right = 0;
    };

    [[nodiscard]] std::vector<Block> Blocks() const;
    [[nodiscard]] Block BlockAt(int row, int col) const;
    [[nodiscard]] QRect BlockRect(const Block& block) const;
    [[nodiscard]] int TextRoom(const Block& block) const;
    [[nodiscard]] QStringList BlockLines(const Block& block) const;
    [[nodiscard]] std::vector<int> RowHeights() const;
    [[nodiscard]] QStringList ShownLines(const Block& block) const;
    void PaintBlock(QPainter& painter, const Block& block) const;

    FlexGridModel& model_;
    bool merged_ = false;
    QPoint pressed_;
};

}  // namespace platform
