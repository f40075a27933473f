// A chart in a window.
//
// It draws whatever content it is given in the colors and the font of the window, says which
// figure is under the pointer or was reached with the arrow keys, and marks one when asked to.
// Losses are hatched, gains are plain: colors are never all that tells them apart.
#pragma once

#include <qcustomplot.h>

#include <QRectF>

#include <optional>
#include <vector>

#include "plots/ChartLibrary.h"
#include "plots/Figures.h"

namespace plots {

// What things are drawn with under a palette.
struct Ink {
    QColor ground;
    QColor text;
    QColor axis;
    QColor grid;
    QColor loss;
    QColor gain;
    QColor mark;
};
Ink InkOf(const QPalette& palette);

class Chart : public QCustomPlot, public ChartView {
    Q_OBJECT

public:
    explicit Chart(QWidget* parent);

    QWidget& Widget() override { return *this; }
    void Show(const ChartContent& content, const QString& title, const QString& place) override;
    void Mark(std::optional<ChartSpot> spot) override;
    void SetListener(Listener listener) override { listener_ = std::move(listener); }

    // The figure at a point of the widget; null where there is none.
    [[nodiscard]] const Figure* FigureAt(QPointF point) const;
    [[nodiscard]] QSize minimumSizeHint() const override { return least_; }
    [[nodiscard]] QSize sizeHint() const override { return least_; }

    // For those who draw. -----------------------------------------------------------------------

    [[nodiscard]] const Ink& Colors() const { return ink_; }
    // Puts all axes in their place, for those who need to know what lies where.
    void LayOut();
    // An empty place for axes, in the chart's font and colors.
    QCPAxisRect& AddAxes(int row, int column);
    // Where a figure is, in the coordinates of its axes; in the order of FiguresOf.
    void AddSpot(QCPAxisRect& axes, const QRectF& area) { spots_.push_back({&axes, area}); }
    // A text that does not move with anything; `alignment` is of the text at its point.
    void AddText(QCPAxisRect& axes, QPointF at, const QString& text, Qt::Alignment alignment,
                 const QColor& color);
    // Says in the middle that there is nothing.
    void AddNothing(const QString& why);
    // How loss and gain are filled.
    [[nodiscard]] QBrush Fill(double value) const;
    // A frame around a figure, in the coordinates of its axes.
    void AddFrame(QCPAxisRect& axes, const QRectF& area, const QPen& pen);
    // The least room in which the chart can be read.
    void SetLeast(QSize least);
    [[nodiscard]] const std::optional<ChartSpot>& Marked() const { return marked_; }
    // For axes that begin and end in line with each other.
    [[nodiscard]] QCPMarginGroup& Sides() const { return *sides_; }
    // The place for small multiples and the like.
    [[nodiscard]] QCPLayoutGrid& Body() const { return *body_; }

protected:
    bool event(QEvent* event) override;
    void changeEvent(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    struct Spot {
        QCPAxisRect* axes;
        QRectF area;
    };

    void Redraw();
    void DrawFrames();
    [[nodiscard]] QRectF OnScreen(const Spot& spot) const;
    [[nodiscard]] std::optional<std::size_t> SpotAt(QPointF point) const;
    void GoTo(std::optional<std::size_t> figure);
    void Say(const QString& words);
    [[nodiscard]] std::optional<std::size_t> Neighbor(int key) const;

    ChartContent content_;
    QString title_;
    QString place_;
    std::optional<ChartSpot> marked_;
    std::vector<Figure> figures_;
    std::vector<Spot> spots_;
    std::optional<std::size_t> current_;  // the figure that the arrow keys have reached
    QString said_;
    Listener listener_;
    Ink ink_;
    QSize least_{200, 150};
    QSize drawnSize_;
    bool isDrawing_ = false;
    QCPLayoutGrid* body_ = nullptr;
    QCPMarginGroup* sides_;
};

// One for each kind.
void Draw(Chart& chart, std::monostate nothing);
void Draw(Chart& chart, const review::CostChart& content);
void Draw(Chart& chart, const review::TotalsChart& content);
void Draw(Chart& chart, const review::HeatMap& content);
void Draw(Chart& chart, const review::BarChart& content);

}  // namespace plots
