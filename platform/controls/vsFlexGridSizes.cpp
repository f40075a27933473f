// The grid's sizes: columns that are given in twips and grow with large fonts and long figures.
#include <QEvent>
#include <QHeaderView>
#include <QScrollBar>
#include <algorithm>
#include <cmath>

#include "platform/controls/FlexGridDelegate.h"
#include "platform/controls/FontScale.h"
#include "platform/controls/vsFlexGridImpl.h"
#include "platform/system/Host.h"

namespace {

constexpr int kCellPadding = 4;
constexpr int kMostGrowth = 3;     // times the width that was set
constexpr int kAddedByFormat = 5;  // characters: "$", commas, two decimals
constexpr double kTwips = platform::kTwipsPerPixel;

}  // namespace

int vsFlexGrid::ColWidth(int col) const {
    CheckCol(col);
    return impl_->model->Column(col).twips;
}

void vsFlexGrid::SetColWidth(int col, int twips) {
    CheckCol(col);
    FlexGridColumn& column = impl_->model->Column(col);
    column.byUser = false;
    column.twips = std::max(twips, 0);
    ApplyColumn(col);
}

std::map<int, int> vsFlexGrid::WidthsByUser() const {
    std::map<int, int> widths;
    for (int col = 0; col < Cols(); ++col) {
        if (impl_->model->Column(col).byUser) {
            widths[col] = ColWidth(col);
        }
    }
    return widths;
}

void vsFlexGrid::SetWidthsByUser(const std::map<int, int>& widths) {
    for (const auto& [col, twips] : widths) {
        if (col < Cols()) {
            SetColWidth(col, twips);
            impl_->model->Column(col).byUser = true;
        }
    }
}

void vsFlexGrid::OnColumnResized(int col, int pixels) {
    if (!impl_->sizing && !ColHidden(col)) {
        FlexGridColumn& column = impl_->model->Column(col);
        column.twips = static_cast<int>(std::lround(pixels * kTwips / impl_->scale));
        column.byUser = true;
        FillRoom();
        emit WidthSetByUser();
    }
    PlaceEditor();
    emit ColumnResized(col);
}

// Twips need not be whole pixels: the nearest are shown, the twips are kept.
int vsFlexGrid::PixelsOf(int col) const {
    const FlexGridColumn& column = impl_->model->Column(col);
    const auto wanted = static_cast<int>(std::lround(column.twips * impl_->scale / kTwips));
    if (column.byUser) {
        return wanted;
    }
    const int filled = col == impl_->fills ? RoomLeft() : 0;
    return std::max({wanted, std::min(column.room, kMostGrowth * wanted), filled});
}

// What the other columns leave of the grid's width.
int vsFlexGrid::RoomLeft() const {
    int room = viewport()->width();
    for (int col = 0; col < Cols(); ++col) {
        room -= col == impl_->fills || ColHidden(col) ? 0 : PixelsOf(col);
    }
    return room;
}

void vsFlexGrid::SetColFills(int col) {
    CheckCol(col);
    impl_->fills = col;
    FillRoom();
}

void vsFlexGrid::FillRoom() {
    if (impl_->fills >= 0 && impl_->fills < Cols()) {
        ApplyColumn(impl_->fills);
    }
}

void vsFlexGrid::resizeEvent(QResizeEvent* event) {
    QTableView::resizeEvent(event);
    FillRoom();
}

void vsFlexGrid::ApplyColumn(int col) {
    const FlexGridColumn& column = impl_->model->Column(col);
    const QScopedValueRollback sizing(impl_->sizing, true);
    setColumnHidden(col, column.hidden);
    if (!column.hidden && columnWidth(col) != PixelsOf(col)) {
        setColumnWidth(col, PixelsOf(col));
    }
}

void vsFlexGrid::SetColRoom(int col, int pixels) {
    CheckCol(col);
    FlexGridColumn& column = impl_->model->Column(col);
    if (pixels > column.given) {
        column.given = pixels;
        column.room = std::max(column.room, pixels);
        ApplyColumn(col);
    }
}

void vsFlexGrid::FitHeadings() {
    for (int col = 0; col < Cols(); ++col) {
        SetColRoom(col, impl_->header->RoomForWords(col));
    }
}

// Columns of figures grow until the longest shows whole; they shrink again when all is shown anew.
void vsFlexGrid::FitFigures(int first, int last) {
    const bool all = first <= FixedRows() && last >= Rows() - 1;
    for (int col = 0; col < Cols(); ++col) {
        FlexGridColumn& column = impl_->model->Column(col);
        if (!column.number || column.hidden) {
            continue;
        }
        int room = std::max(column.given, all ? 0 : column.room);
        for (int row = std::max(first, FixedRows()); row <= std::min(last, Rows() - 1); ++row) {
            room = std::max(room, RoomOfFigure(row, col));
        }
        if (room != column.room) {
            column.room = room;
            ApplyColumn(col);
        }
    }
}

// Most figures are far too short to matter; only the others are measured.
int vsFlexGrid::RoomOfFigure(int row, int col) const {
    const QFontMetrics metrics = fontMetrics();
    const auto characters = static_cast<int>(impl_->model->Text(row, col).size());
    const int least = static_cast<int>(impl_->model->Column(col).twips * impl_->scale / kTwips);
    if ((characters + kAddedByFormat) * impl_->digitWidth + FlexGridDelegate::kMargins <= least) {
        return 0;
    }
    return metrics.horizontalAdvance(impl_->model->Shown(row, col)) + FlexGridDelegate::kMargins;
}

void vsFlexGrid::ApplyFont() {
    impl_->scale = platform::FontScale(font());
    impl_->digitWidth = fontMetrics().horizontalAdvance(u'0');
    const int height = fontMetrics().height() + 2 * kCellPadding;
    verticalHeader()->setMinimumSectionSize(1);
    verticalHeader()->setDefaultSectionSize(height);
    verticalScrollBar()->setSingleStep(height);
    horizontalScrollBar()->setSingleStep(2 * height);
    for (int col = 0; col < Cols(); ++col) {
        ApplyColumn(col);
    }
    FitFigures(FixedRows(), Rows() - 1);
}

void vsFlexGrid::changeEvent(QEvent* event) {
    QTableView::changeEvent(event);
    if (event->type() == QEvent::FontChange && impl_ != nullptr && impl_->header != nullptr) {
        ApplyFont();
    }
}

QSize vsFlexGrid::minimumSizeHint() const {
    constexpr int kLeastRows = 2;
    const int headings =
        horizontalHeader()->isVisibleTo(this) ? horizontalHeader()->sizeHint().height() : 0;
    const int rows = kLeastRows * verticalHeader()->defaultSectionSize();
    const QSize least = QTableView::minimumSizeHint();
    return {least.width(), std::max(least.height(), headings + rows + 2 * frameWidth())};
}
