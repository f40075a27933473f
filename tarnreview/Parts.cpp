#include "tarnreview/Parts.h"

#include <QHeaderView>
#include <QLabel>
#include <QPushButton>

#include <algorithm>
#include <cmath>

#include "platform/controls/FontScale.h"
#include "platform/controls/vsFlexGrid.h"
#include "platform/system/Twips.h"
#include "tarnreview/TextTable.h"

using tarnreview::TextTable;

namespace Parts {

namespace {

constexpr int kLookedAt = 300;   // rows whose texts decide how wide a column is
constexpr int kAir = 16;         // pixels
constexpr double kShare = 0.45;  // of the grid's width, the most that one of its columns gets

}  // namespace

QPushButton* Button(QWidget* parent, const char* name, const QString& caption, const QString& tip) {
    auto* button = new QPushButton(caption, parent);
    Name(*button, name, platform::Spoken(caption));
    button->setToolTip(tip);
    button->setAccessibleDescription(tip);
    return button;
}

QLabel* Words(QWidget* parent, const char* name, const QString& accessibleName) {
    auto* label = new QLabel(parent);
    Name(*label, name, accessibleName);
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    return label;
}

vsFlexGrid* List(QWidget* parent, const char* name, const QString& accessibleName,
                 const QStringList& headings, TextTable& table) {
    auto* grid = new vsFlexGrid(parent);
    Name(*grid, name, accessibleName);
    grid->SetFixedRows(1);
    grid->SetCols(static_cast<int>(headings.size()));
    for (int col = 0; col < headings.size(); ++col) {
        grid->SetTextMatrix(0, col, headings[col]);
        grid->SetColAlignment(col, Qt::AlignLeft | Qt::AlignVCenter);
        grid->SetFixedAlignment(col, Qt::AlignLeft | Qt::AlignVCenter);
    }
    grid->SetTable(&table);
    grid->horizontalHeader()->setStretchLastSection(true);
    return grid;
}

void ShowRows(vsFlexGrid& grid, const TextTable& table, int most, int room) {
    const QFontMetrics metrics(grid.font());
    const int rows = std::min(table.RowCount(), kLookedAt);
    const bool stretches = grid.horizontalHeader()->stretchLastSection();
    const int share = static_cast<int>(kShare * room);
    for (int col = 0; col < grid.Cols(); ++col) {
        int width = metrics.horizontalAdvance(grid.TextMatrix(0, col));
        const bool takesTheRest = stretches && col + 1 == grid.Cols();
        for (int row = 1; row <= rows && !takesTheRest; ++row) {
            width = std::max(width, metrics.horizontalAdvance(table.Text(row, col)));
        }
        const int characters = most * metrics.averageCharWidth();
        const int limit = stretches ? std::min(characters, share) : characters;
        // The grid widens what it is given as its font is larger; this is measured in that font.
        const double narrowed = (std::min(width, limit) + kAir) / platform::FontScale(grid.font());
        grid.SetColWidth(col, platform::ToTwips(static_cast<int>(std::ceil(narrowed))));
    }
    grid.Refresh();
}

}  // namespace Parts
