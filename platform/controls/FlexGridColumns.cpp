#include "platform/controls/FlexGridColumns.h"

#include <QHeaderView>
#include <QScopedValueRollback>
#include <QScrollBar>
#include <QTableView>
#include <algorithm>
#include <cmath>

#include "platform/controls/FlexGridDelegate.h"
#include "platform/controls/FlexGridHeader.h"
#include "platform/controls/FlexGridModel.h"
#include "platform/controls/FontScale.h"
#include "platform/system/Twips.h"

namespace platform {

namespace {

constexpr int kCellPadding = 4;
constexpr int kMostGrowth = 3;     // times the width that was set
constexpr int kAddedByFormat = 5;  // characters: "$", commas, two decimals
constexpr double kTwips = platform::kTwipsPerPixel;

}  // namespace

FlexGridColumns::FlexGridColumns(QTableView& view, FlexGridModel& model,
                                 const FlexGridHeader& header)
    : view_(view), model_(model), header_(header) {
    QObject::connect(&model, &QAbstractItemModel::rowsInserted, &view,
                     [this](const QModelIndex&, int first, int last) {
                         FitFigures(first + model_.FixedRows(), last + model_.FixedRows());
                     });
    QObject::connect(&model, &QAbstractItemModel::dataChanged, &view,
                     [this](const QModelIndex& first, const QModelIndex& last) {
                         FitFigures(first.row() + model_.FixedRows(),
                                    last.row() + model_.FixedRows());
                     });
}

void FlexGridColumns::SetWidth(int col, int twips) {
    FlexGridColumn& column = model_.Column(col);
    column.byUser = false;
    column.twips = std::max(twips, 0);
    Apply(col);
}

void FlexGridColumns::SetHidden(int col, bool hidden) {
    model_.Column(col).hidden = hidden;
    Apply(col);
}

std::map<int, int> FlexGridColumns::WidthsByUser() const {
    std::map<int, int> widths;
    for (int col = 0; col < model_.Cols(); ++col) {
        if (model_.Column(col).byUser) {
            widths[col] = model_.Column(col).twips;
        }
    }
    return widths;
}

void FlexGridColumns::SetWidthsByUser(const std::map<int, int>& widths) {
    for (const auto& [col, twips] : widths) {
        if (col < model_.Cols()) {
            SetWidth(col, twips);
            model_.Column(col).byUser = true;
        }
    }
}

bool FlexGridColumns::Resized(int col, int pixels) {
    FlexGridColumn& column = model_.Column(col);
    if (sizing_ || column.hidden) {
        return false;
    }
    column.twips = static_cast<int>(std::lround(pixels * kTwips / scale_));
    column.byUser = true;
    FillRoom();
    return true;
}

// Twips need not be whole pixels: the nearest are shown, the twips are kept.
int FlexGridColumns::PixelsOf(int col) const {
    const FlexGridColumn& column = model_.Column(col);
    const auto wanted = static_cast<int>(std::lround(column.twips * scale_ / kTwips));
    if (column.byUser) {
        return wanted;
    }
    const int filled = col == fills_ ? RoomLeft() : 0;
    return std::max({wanted, std::min(column.room, kMostGrowth * wanted), filled});
}

// What the other columns leave of the grid's width.
int FlexGridColumns::RoomLeft() const {
    int room = view_.viewport()->width();
    for (int col = 0; col < model_.Cols(); ++col) {
        room -= col == fills_ || model_.Column(col).hidden ? 0 : PixelsOf(col);
    }
    return room;
}

void FlexGridColumns::SetFills(int col) {
    fills_ = col;
    FillRoom();
}

void FlexGridColumns::FillRoom() {
    if (fills_ >= 0 && fills_ < model_.Cols()) {
        Apply(fills_);
    }
}

void FlexGridColumns::Apply(int col) {
    const bool hidden = model_.Column(col).hidden;
    const QScopedValueRollback sizing(sizing_, true);
    view_.setColumnHidden(col, hidden);
    if (!hidden && view_.columnWidth(col) != PixelsOf(col)) {
        view_.setColumnWidth(col, PixelsOf(col));
    }
}

void FlexGridColumns::SetRoom(int col, int pixels) {
    FlexGridColumn& column = model_.Column(col);
    if (pixels > column.given) {
        column.given = pixels;
        column.room = std::max(column.room, pixels);
        Apply(col);
    }
}

void FlexGridColumns::FitHeadings() {
    for (int col = 0; col < model_.Cols(); ++col) {
        SetRoom(col, header_.RoomForWords(col));
    }
}

// Columns of figures grow until the longest shows whole; they shrink again when all is shown anew.
void FlexGridColumns::FitFigures(int first, int last) {
    const int top = model_.FixedRows();
    const int bottom = model_.Rows() - 1;
    const bool all = first <= top && last >= bottom;
    for (int col = 0; col < model_.Cols(); ++col) {
        FlexGridColumn& column = model_.Column(col);
        if (!column.number || column.hidden) {
            continue;
        }
        int room = std::max(column.given, all ? 0 : column.room);
        for (int row = std::max(first, top); row <= std::min(last, bottom); ++row) {
            room = std::max(room, RoomOfFigure(row, col));
        }
        if (room != column.room) {
            column.room = room;
            Apply(col);
        }
    }
}

// Most figures are far too short to matter; only the others are measured.
int FlexGridColumns::RoomOfFigure(int row, int col) const {
    const auto characters = static_cast<int>(model_.Text(row, col).size());
    const int least = static_cast<int>(model_.Column(col).twips * scale_ / kTwips);
    if ((characters + kAddedByFormat) * digitWidth_ + FlexGridDelegate::kMargins <= least) {
        return 0;
    }
    const QFontMetrics metrics = view_.fontMetrics();
    return metrics.horizontalAdvance(model_.Shown(row, col)) + FlexGridDelegate::kMargins;
}

void FlexGridColumns::ApplyFont() {
    const QFontMetrics metrics = view_.fontMetrics();
    scale_ = platform::FontScale(view_.font());
    digitWidth_ = metrics.horizontalAdvance(u'0');
    const int height = metrics.height() + 2 * kCellPadding;
    view_.verticalHeader()->setMinimumSectionSize(1);
    view_.verticalHeader()->setDefaultSectionSize(height);
    view_.verticalScrollBar()->setSingleStep(height);
    view_.horizontalScrollBar()->setSingleStep(2 * height);
    for (int col = 0; col < model_.Cols(); ++col) {
        Apply(col);
    }
    FitFigures(model_.FixedRows(), model_.Rows() - 1);
}

}  // namespace platform
