#include "reportpdf/table_shape.h"

#include <algorithm>
#include <array>
#include <map>
#include <numeric>

#include "review/figures.h"

namespace reportpdf {

namespace {

using review::Cell;

constexpr double kUsualSize = 8;
constexpr double kLeastSize = 4;
constexpr double kPadding = 3;
constexpr double kAbove = 1.05;  // and below a row's lines
constexpr double kLegend = 15;
constexpr Style kCaption{Face::kBold, 9};

QString TextOf(const Cell& cell) {
    const QString text = CleanLine(cell.text);
    return cell.isChanged ? text + QStringLiteral(" (was ") + CleanLine(cell.before) + u')' : text;
}

// Light enough for black figures in any place.
QColor ShadeColor(int shade, bool isLoss) {
    const std::array<int, 3> darkest =
        isLoss ? std::array<int, 3>{205, 125, 60} : std::array<int, 3>{110, 150, 215};
    const auto mixed = [shade](int channel) {
        return 255 + (channel - 255) * shade / review::kDarkestShade;
    };
    return {mixed(darkest[0]), mixed(darkest[1]), mixed(darkest[2])};
}

}  // namespace

TableShape::TableShape(const review::Table& table, const review::HeatMap* map, double width)
    : table_(table), map_(map), size_(kUsualSize), pageWidth_(width) {
    MeasureColumns(width);
    while (width_ > width && size_ > kLeastSize) {
        size_ -= 0.5;
        MeasureColumns(width);
    }
    // Figures of dozens of digits, which nobody typed on purpose.
    if (width_ > width) {
        breaksFigures_ = true;
        MeasureColumns(width);
    }
    if (map_ != nullptr) {
        Stretch(width);
    }
    headLines_ = LineCount(table_.head, true);
    for (std::size_t row = 0; row < table_.rows.size() + table_.totals.size(); ++row) {
        lineCounts_.push_back(LineCount(Row(row), row >= table_.rows.size()));
    }
    captionLines_ = LinesOf(table_.caption, kCaption, width);
}

const std::vector<Cell>& TableShape::Row(std::size_t index) const {
    return index < table_.rows.size() ? table_.rows[index]
                                      : table_.totals[index - table_.rows.size()];
}

Style TableShape::StyleOf(const Cell& cell, bool isBold) const {
    return {isBold || cell.isChanged ? Face::kBold : Face::kPlain, size_};
}

// Each column as wide as its widest text where there is room for that. Else columns of text share
// what figures and the longest words leave.
void TableShape::MeasureColumns(double width) {
    const std::size_t columns = table_.head.size();
    std::vector<double> natural(columns, 0);
    std::vector<double> least(columns, 0);
    const auto look = [&](const std::vector<Cell>& row, bool isBold) {
        std::size_t column = 0;
        for (const Cell& cell : row) {
            if (cell.columns == 1 && column < columns) {
                const Style style = StyleOf(cell, isBold);
                const double whole = WidthOf(TextOf(cell), style) + 2 * kPadding;
                natural[column] = std::max(natural[column], whole);
                const double word = cell.isNumber && !breaksFigures_
                                        ? whole
                                        : std::min(WidestWord(cell.text, style),
                                                   width / (breaksFigures_ ? 10 : 4)) +
                                              2 * kPadding;
                least[column] = std::max(least[column], word);
            }
            column += static_cast<std::size_t>(cell.columns);
        }
    };
    look(table_.head, true);
    for (const auto& row : table_.rows) {
        look(row, false);
    }
    for (const auto& row : table_.totals) {
        look(row, true);
    }
    if (map_ != nullptr && columns > 0) {
        // Long names leave the figures their room.
        natural[0] = std::max(least[0], std::min(natural[0], width * 0.36));
    }
    const double all = std::accumulate(natural.begin(), natural.end(), 0.0);
    const double atLeast = std::accumulate(least.begin(), least.end(), 0.0);
    widths_ = natural;
    if (all > width) {
        const double part = all > atLeast ? std::max(0.0, width - atLeast) / (all - atLeast) : 0;
        for (std::size_t i = 0; i < columns; ++i) {
            widths_[i] = least[i] + (natural[i] - least[i]) * part;
        }
    }
    width_ = std::accumulate(widths_.begin(), widths_.end(), 0.0);
}

// The figures' columns share the rest of the width, so that all maps are alike.
void TableShape::Stretch(double width) {
    if (widths_.size() < 2 || width_ >= width) {
        return;
    }
    constexpr double kNames = 130;
    const double names = std::max(widths_[0], kNames);
    const double each = (width - names) / static_cast<double>(widths_.size() - 1);
    if (each >= *std::max_element(widths_.begin() + 1, widths_.end())) {
        std::fill(widths_.begin() + 1, widths_.end(), each);
        widths_[0] = names;
        width_ = width;
    }
}

double TableShape::Span(std::size_t column, int columns) const {
    const auto first = widths_.begin() + static_cast<std::ptrdiff_t>(column);
    return std::accumulate(first, std::min(first + columns, widths_.end()), 0.0);
}

std::vector<QString> TableShape::LinesIn(const Cell& cell, std::size_t column, bool isBold) const {
    const Style style = StyleOf(cell, isBold);
    const double room = Span(column, cell.columns) - 2 * kPadding;
    if (cell.isChanged) {
        return LinesOf(TextOf(cell).toStdString(), style, room);
    }
    return LinesOf(cell.text, style, room);
}

std::size_t TableShape::LineCount(const std::vector<Cell>& row, bool isBold) const {
    std::size_t lines = 1;
    std::size_t column = 0;
    for (const Cell& cell : row) {
        const bool fits = (cell.isNumber && !breaksFigures_) ||
                          (cell.text.find('\n') == std::string::npos &&
                           WidthOf(TextOf(cell), StyleOf(cell, isBold)) <=
                               Span(column, cell.columns) - 2 * kPadding + 1e-6);
        if (!fits) {
            lines = std::max(lines, LinesIn(cell, column, isBold).size());
        }
        column += static_cast<std::size_t>(cell.columns);
    }
    return lines;
}

double TableShape::RowHeight(std::size_t lines) const {
    return static_cast<double>(lines) * LineHeight({Face::kPlain, size_}) + 2 * kAbove;
}

double TableShape::CaptionHeight() const {
    return static_cast<double>(captionLines_.size()) * LineHeight(kCaption) + 3 +
           RowHeight(headLines_);
}

double TableShape::Height() const {
    double height = CaptionHeight() + LegendHeight();
    for (const std::size_t lines : lineCounts_) {
        height += RowHeight(lines);
    }
    return height;
}

double TableShape::LegendHeight() const {
    return map_ != nullptr ? kLegend : 0;
}

std::vector<TableShape::Piece> TableShape::PiecesFor(double most) const {
    std::vector<Piece> pieces;
    const double line = LineHeight({Face::kPlain, size_});
    const auto mostLines =
        static_cast<std::size_t>(std::max(1.0, (most - CaptionHeight() - 2 * kAbove) / line));
    for (std::size_t row = 0; row < lineCounts_.size(); ++row) {
        for (std::size_t first = 0; first < lineCounts_[row]; first += mostLines) {
            const std::size_t lines = std::min(mostLines, lineCounts_[row] - first);
            pieces.push_back({row, first, lines, RowHeight(lines)});
        }
    }
    return pieces;
}

void TableShape::DrawRow(Sheet& sheet, double left, double top, const std::vector<Cell>& row,
                         const Piece& piece, bool isWhole, bool isBold) const {
    std::size_t column = 0;
    double x = left;
    const double line = LineHeight({Face::kPlain, size_});
    const double base = top + kAbove + line / 2 + BaseBelowMiddle({Face::kPlain, size_});
    for (const Cell& cell : row) {
        const double width = Span(column, cell.columns);
        const Style style = StyleOf(cell, isBold);
        if (cell.isNumber && !breaksFigures_) {
            if (piece.firstLine == 0) {
                sheet.TextToRight(x + width - kPadding, base, TextOf(cell), style);
            }
        } else if (piece.lines == 1 && isWhole) {
            sheet.Text(x + kPadding, base, TextOf(cell), style);
        } else {
            const std::vector<QString> lines = LinesIn(cell, column, isBold);
            const std::size_t end = std::min(lines.size(), piece.firstLine + piece.lines);
            for (std::size_t i = piece.firstLine; i < end; ++i) {
                sheet.Text(x + kPadding, base + line * static_cast<double>(i - piece.firstLine),
                           lines[i], style);
            }
        }
        x += width;
        column += static_cast<std::size_t>(cell.columns);
    }
}

void TableShape::DrawShades(Sheet& sheet, double left, double top, const Piece* first,
                            const Piece* last) const {
    std::map<int, std::vector<QRectF>> shades;  // losses below 0
    std::vector<QRectF> gains;
    double y = top;
    for (const Piece* piece = first; piece != last; y += piece->height, ++piece) {
        if (piece->row >= map_->values.size()) {
            continue;
        }
        double x = left + widths_[0];
        for (std::size_t i = 0; i + 1 < widths_.size() && i < map_->values[piece->row].size();
             ++i) {
            const double value = map_->values[piece->row][i];
            const int shade = review::ShadeOf(value, map_->largest);
            const QRectF box(x, y, widths_[i + 1], piece->height);
            if (shade != 0) {
                shades[value < 0 ? -shade : shade].push_back(box);
            }
            if (value > 0) {
                gains.push_back(box.adjusted(1.5, 1.5, -1.5, -1.5));
            }
            x += widths_[i + 1];
        }
    }
    for (const auto& [shade, boxes] : shades) {
        sheet.Boxes(boxes, ShadeColor(std::abs(shade), shade < 0));
    }
    sheet.DashedBoxes(gains, QColor(0x1a, 0x3a, 0x7a));
}

void TableShape::DrawLegend(Sheet& sheet, double left, double top) const {
    // As wide as small paper has room for.
    const double box = std::min(10.0, pageWidth_ * 0.02);
    constexpr Style kSmall{Face::kPlain, 7};
    const double base = top + 4 + box / 2 + BaseBelowMiddle(kSmall);
    double x = left;
    const auto write = [&](const QString& words) {
        sheet.Text(x, base, words, kSmall);
        x += WidthOf(words, kSmall) + 4;
    };
    const auto scale = [&](bool isLoss) {
        for (int i = 1; i <= review::kDarkestShade; ++i) {
            const int shade = isLoss ? review::kDarkestShade + 1 - i : i;
            sheet.Boxes({{x, top + 4, box, box}}, ShadeColor(shade, isLoss));
            x += box;
        }
        x += 4;
    };
    write(QStringLiteral("Heat map: "));
    write(CleanLine(review::ShortFigure(-map_->largest)));
    scale(true);
    write(QStringLiteral("0"));
    const double begin = x;
    scale(false);
    sheet.DashedBoxes({{begin + 1, top + 5, x - begin - 6, box - 2}}, QColor(0x1a, 0x3a, 0x7a));
    write(CleanLine(review::ShortFigure(map_->largest)));
    const double room = left + std::max(width_, pageWidth_) - x;
    const QString gains = QStringLiteral("  gains have a dashed border");
    const QString all = gains + QStringLiteral("; a digit more is a shade more");
    write(WidthOf(all, kSmall) <= room ? all : Elided(gains, kSmall, room));
}

double TableShape::Draw(Sheet& sheet, double left, double top, const Piece* first,
                        const Piece* last, bool goesOn) const {
    std::vector<QString> caption = captionLines_;
    if (first->row > 0 || first->firstLine > 0) {
        caption.back() += QStringLiteral(" (continued)");
    }
    double y = top;
    for (const QString& line : caption) {
        sheet.Text(left, y + LineHeight(kCaption) * 0.8, line, kCaption);
        y += LineHeight(kCaption);
    }
    y += 3;
    const double headTop = y;
    const double bodyTop = y + RowHeight(headLines_);
    double end = bodyTop;
    std::vector<QLineF> lines{{left, headTop, left + width_, headTop}};
    for (const Piece* piece = first; piece != last; ++piece) {
        lines.emplace_back(left, end, left + width_, end);
        end += piece->height;
    }
    lines.emplace_back(left, end, left + width_, end);
    for (double x = left; const double width : widths_) {
        lines.emplace_back(x, headTop, x, end);
        x += width;
    }
    lines.emplace_back(left + width_, headTop, left + width_, end);
    sheet.Boxes({{left, headTop, width_, bodyTop - headTop}}, kHeadFill);
    if (map_ != nullptr) {
        DrawShades(sheet, left, bodyTop, first, last);
    }
    sheet.Lines(lines, 0.4, kFine);
    DrawRow(sheet, left, headTop, table_.head, {0, 0, headLines_, 0}, true, true);
    y = bodyTop;
    for (const Piece* piece = first; piece != last; y += piece->height, ++piece) {
        const bool isTotal = piece->row >= table_.rows.size();
        if (isTotal) {
            sheet.Lines({{left, y, left + width_, y}}, 1, kRule);
        }
        DrawRow(sheet, left, y, Row(piece->row), *piece, piece->lines == lineCounts_[piece->row],
                isTotal);
    }
    if (map_ != nullptr && !goesOn) {
        DrawLegend(sheet, left, end);
        end += kLegend;
    }
    return end;
}

}  // namespace reportpdf
