#include "platform/controls/FlexGridHeader.h"

#include <QApplication>
#include <QHelpEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QStyleOptionHeader>
#include <QToolTip>
#include <algorithm>
#include <numeric>

#include "platform/controls/FlexGridModel.h"
#include "platform/controls/FlexGridPaint.h"

namespace platform {

namespace {

constexpr int kPadding = 4;
constexpr int kMargin = kPadding / 2;

QStringList Lines(QString text) {
    text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    return text.replace(u'\r', u'\n').split(u'\n');
}

QStringList BrokenAtBlanks(const QString& line, const QFontMetrics& metrics, int room) {
    QStringList lines;
    for (const QString& word : line.split(u' ')) {
        const QString longer = lines.isEmpty() ? word : lines.last() + u' ' + word;
        if (!lines.isEmpty() && metrics.horizontalAdvance(longer) <= room) {
            lines.last() = longer;
        } else {
            lines += word;
        }
    }
    return lines;
}

}  // namespace

FlexGridHeader::FlexGridHeader(FlexGridModel& model, QWidget* parent)
    : QHeaderView(Qt::Horizontal, parent), model_(model) {
    setSectionsClickable(false);
    setSectionsMovable(false);
    setHighlightSections(false);
    setSectionResizeMode(QHeaderView::Interactive);
    setMinimumSectionSize(1);
    const auto changed = [this] {
        emit geometriesChanged();
        viewport()->update();
    };
    connect(&model, &QAbstractItemModel::headerDataChanged, this, changed);
    connect(&model, &QAbstractItemModel::modelReset, this, changed);
    connect(this, &QHeaderView::sectionResized, this, [this] {
        viewport()->update();
        // In a wider column a heading may need fewer lines.
        if (sizeHint().height() != height()) {
            emit geometriesChanged();
        }
    });
}

void FlexGridHeader::SetMerged(bool merged) {
    merged_ = merged;
    emit geometriesChanged();
    viewport()->update();
}

QRect FlexGridHeader::CellRect(int row, int col) const {
    return BlockRect({row, col, row, col});
}

QSize FlexGridHeader::sizeHint() const {
    const std::vector<int> heights = RowHeights();
    return {QHeaderView::sizeHint().width(), std::accumulate(heights.begin(), heights.end(), 0)};
}

void FlexGridHeader::paintEvent(QPaintEvent*) {
    QPainter painter(viewport());
    QStyleOptionHeader rest;
    initStyleOption(&rest);
    rest.rect = viewport()->rect();
    style()->drawControl(QStyle::CE_HeaderEmptyArea, &rest, &painter, this);
    for (const Block& block : Blocks()) {
        PaintBlock(painter, block);
    }
}

void FlexGridHeader::mousePressEvent(QMouseEvent* event) {
    pressed_ = event->pos();
    QHeaderView::mousePressEvent(event);
}

void FlexGridHeader::mouseReleaseEvent(QMouseEvent* event) {
    QHeaderView::mouseReleaseEvent(event);
    const int moved = (event->pos() - pressed_).manhattanLength();
    if (event->button() == Qt::LeftButton && moved < QApplication::startDragDistance()) {
        emit Clicked();
    }
}

bool FlexGridHeader::viewportEvent(QEvent* event) {
    if (event->type() != QEvent::ToolTip) {
        return QHeaderView::viewportEvent(event);
    }
    const auto* help = static_cast<QHelpEvent*>(event);
    QString tip;
    for (const Block& block : Blocks()) {
        if (BlockRect(block).contains(help->pos()) && ShownLines(block) != BlockLines(block)) {
            tip = model_.Text(block.top, block.left).toHtmlEscaped();
        }
    }
    // An empty text takes a tip away.
    QToolTip::showText(help->globalPos(), tip, this);
    return true;
}

QSize FlexGridHeader::sectionSizeFromContents(int col) const {
    int widest = 0;
    for (const Block& block : Blocks()) {
        if (block.left != col || block.right != col) {
            continue;
        }
        for (const QString& line : Lines(model_.Text(block.top, block.left))) {
            widest = std::max(widest, fontMetrics().horizontalAdvance(line));
        }
    }
    return {widest + 2 * kPadding, sizeHint().height()};
}

int FlexGridHeader::RoomForWords(int col) const {
    int widest = 0;
    for (const Block& block : Blocks()) {
        if (block.left != col || block.right != col) {
            continue;
        }
        for (const QString& line : Lines(model_.Text(block.top, block.left))) {
            for (const QString& word : line.split(u' ')) {
                widest = std::max(widest, fontMetrics().horizontalAdvance(word));
            }
        }
    }
    return widest + 2 * kMargin + 1;
}

std::vector<FlexGridHeader::Block> FlexGridHeader::Blocks() const {
    const int rows = model_.FixedRows();
    const int cols = model_.Cols();
    std::vector<bool> covered(static_cast<std::size_t>(rows) * static_cast<std::size_t>(cols));
    std::vector<Block> blocks;
    for (int row = 0; row < rows; ++row) {
        for (int col = 0; col < cols; ++col) {
            if (covered[static_cast<std::size_t>(row * cols + col)] || isSectionHidden(col)) {
                continue;
            }
            const Block block = BlockAt(row, col);
            for (int r = block.top; r <= block.bottom; ++r) {
                for (int c = block.left; c <= block.right; ++c) {
                    covered[static_cast<std::size_t>(r * cols + c)] = true;
                }
            }
            blocks.push_back(block);
        }
    }
    return blocks;
}

// Grows a cell to the right and then down, as far as the texts are equal.
FlexGridHeader::Block FlexGridHeader::BlockAt(int row, int col) const {
    Block block{row, col, row, col};
    const QString& text = model_.Text(row, col);
    if (!merged_ || text.isEmpty()) {
        return block;
    }
    const auto equal = [&](int r, int c) {
        return isSectionHidden(c) || model_.Text(r, c) == text;
    };
    while (block.right + 1 < model_.Cols() && equal(row, block.right + 1)) {
        ++block.right;
    }
    const auto rowIsEqual = [&](int r) {
        for (int c = block.left; c <= block.right; ++c) {
            if (!equal(r, c)) {
                return false;
            }
        }
        return true;
    };
    while (block.bottom + 1 < model_.FixedRows() && rowIsEqual(block.bottom + 1)) {
        ++block.bottom;
    }
    return block;
}

QRect FlexGridHeader::BlockRect(const Block& block) const {
    const std::vector<int> heights = RowHeights();
    const auto sum = [&](int from, int to) {
        return std::accumulate(heights.begin() + from, heights.begin() + to, 0);
    };
    QRect rect;
    for (int col = block.left; col <= block.right; ++col) {
        if (!isSectionHidden(col)) {
            rect |= QRect(sectionViewportPosition(col), sum(0, block.top), sectionSize(col),
                          sum(block.top, block.bottom + 1));
        }
    }
    return rect;
}

std::vector<int> FlexGridHeader::RowHeights() const {
    const int line = fontMetrics().lineSpacing();
    std::vector<int> heights(static_cast<std::size_t>(model_.FixedRows()), line + 2 * kPadding);
    for (const Block& block : Blocks()) {
        const auto lines = static_cast<int>(BlockLines(block).size());
        const auto first = heights.begin() + block.top;
        const auto last = heights.begin() + block.bottom;
        const int missing = lines * line + 2 * kPadding - std::accumulate(first, last + 1, 0);
        *last += std::max(missing, 0);
    }
    return heights;
}

int FlexGridHeader::TextRoom(const Block& block) const {
    int width = 0;
    for (int col = block.left; col <= block.right; ++col) {
        width += isSectionHidden(col) ? 0 : sectionSize(col);
    }
    // The width of a text is rounded up before it is cut.
    return width - 2 * kMargin - 1;
}

// A heading that is wider than its columns is broken into more lines. Where its own lines do not
// fit, it is broken anew as a whole if that takes fewer.
QStringList FlexGridHeader::BlockLines(const Block& block) const {
    QStringList lines;
    const int room = TextRoom(block);
    const QStringList own = Lines(model_.Text(block.top, block.left));
    for (const QString& line : own) {
        if (fontMetrics().horizontalAdvance(line) <= room) {
            lines += line;
        } else {
            lines += BrokenAtBlanks(line, fontMetrics(), room);
        }
    }
    if (lines == own) {
        return lines;
    }
    const QStringList anew = BrokenAtBlanks(own.join(u' '), fontMetrics(), room);
    return anew.size() < lines.size() ? anew : lines;
}

QStringList FlexGridHeader::ShownLines(const Block& block) const {
    QStringList shown;
    const QFontMetrics metrics = fontMetrics();
    for (const QString& line : BlockLines(block)) {
        shown += metrics.elidedText(line, Qt::ElideRight, TextRoom(block) + 1);
    }
    return shown;
}

void FlexGridHeader::PaintBlock(QPainter& painter, const Block& block) const {
    QStyleOptionHeader option;
    initStyleOption(&option);
    option.rect = BlockRect(block);
    option.section = block.left;
    option.position = QStyleOptionHeader::Middle;
    style()->drawControl(QStyle::CE_HeaderSection, &option, &painter, this);
    FlexGridPaint::DrawEdges(
        painter, option.rect,
        FlexGridPaint::LineColor(palette(), QPalette::Button, QPalette::ButtonText));
    const Qt::Alignment alignment = model_.Column(block.left).fixedAlignment;
    painter.setFont(font());
    style()->drawItemText(&painter, option.rect.adjusted(kMargin, 0, -kMargin, 0),
                          static_cast<int>(alignment), palette(), isEnabled(),
                          ShownLines(block).join(u'\n'), QPalette::ButtonText);
}

}  // namespace platform
