#include "reportpdf/layout.h"

#include <algorithm>
#include <utility>

#include "review/tables.h"

namespace reportpdf {

namespace {

constexpr double kSide = 51;
constexpr double kHead = 56;  // from the paper's edge to what a page shows
constexpr double kFoot = 48;
constexpr double kGap = 8;
constexpr Style kTitle{Face::kBold, 19};
constexpr Style kSection{Face::kBold, 14};
constexpr Style kSubsection{Face::kBold, 10.5};
constexpr Style kText{Face::kPlain, 9.5};
constexpr Style kFactName{Face::kBold, 9.5};
constexpr Style kCaption{Face::kBold, 9};
constexpr Style kEdge{Face::kPlain, 8};
constexpr std::size_t kShort = 25;  // rows of a table that stays together

Style StyleOf(const review::Section& section) {
    return section.level <= 2 ? kSection : kSubsection;
}

// A map whose values stand in the table before it shades that table.
const review::HeatMap* MapFor(const review::Section& section, std::size_t index) {
    const auto* const table = std::get_if<review::Table>(&section.blocks[index]);
    const auto* const map = index + 1 < section.blocks.size()
                                ? std::get_if<review::HeatMap>(&section.blocks[index + 1])
                                : nullptr;
    const bool belongs = table != nullptr && map != nullptr &&
                         table->rows.size() == map->rows.size() && table->head.size() == 7;
    return belongs ? map : nullptr;
}

}  // namespace

Layout::Layout(const review::Document& document, QSizeF paper)
    : document_(document),
      paper_(paper),
      left_(kSide),
      width_(paper.width() - 2 * kSide),
      bottom_(paper.height() - kFoot) {
    NewPage();
    PlaceTitle();
    PlaceContents();
    for (const review::Section& section : document.sections) {
        PlaceSection(section);
    }
}

void Layout::NewPage() {
    pages_.push_back({heading_, {}});
    y_ = kHead;
    isFresh_ = true;
}

void Layout::Need(double height) {
    if (!isFresh_ && Room() < height) {
        NewPage();
    }
}

void Layout::Put(std::function<void(Sheet&)> part) {
    pages_.back().parts.push_back(std::move(part));
    isFresh_ = false;
}

void Layout::DrawEdges(Sheet& sheet, std::size_t page) const {
    const QString number =
        QStringLiteral("Page %1 of %2").arg(page + 1).arg(static_cast<qulonglong>(pages_.size()));
    const double base = paper_.height() - kFoot + 20;
    sheet.TextToRight(left_ + width_, base, number, kEdge);
    if (page == 0) {
        return;
    }
    constexpr double kLine = 36;
    sheet.Text(left_, kLine, Elided(CleanLine(document_.title), kEdge, width_ / 2 - 10), kEdge);
    sheet.TextToRight(left_ + width_, kLine, Elided(pages_[page].heading, kEdge, width_ / 2 - 10),
                      kEdge);
    sheet.Lines({{left_, kLine + 5, left_ + width_, kLine + 5}}, 0.5, kFine);
}

void Layout::PlaceTitle() {
    for (const QString& line : LinesOf(document_.title, kTitle, width_)) {
        y_ += LineHeight(kTitle);
        Put([=, this, y = y_](Sheet& sheet) { sheet.Text(left_, y - 6, line, kTitle); });
    }
    y_ += kGap;
    double names = 0;
    for (const auto& [name, text] : document_.facts) {
        names = std::max(names, WidthOf(CleanLine(name), kFactName) + 12);
    }
    for (const auto& [name, text] : document_.facts) {
        bool isFirst = true;
        for (const QString& line : LinesOf(text, kText, width_ - names)) {
            Need(LineHeight(kText));
            y_ += LineHeight(kText);
            const QString before = isFirst ? CleanLine(name) : QString();
            Put([=, this, y = y_](Sheet& sheet) {
                sheet.Text(left_, y - 3, before, kFactName);
                sheet.Text(left_ + names, y - 3, line, kText);
            });
            isFirst = false;
        }
    }
    y_ += kGap;
}

// Two columns of headings with their pages, which are known when all is laid out.
void Layout::PlaceContents() {
    for (std::size_t i = 0; i < document_.sections.size(); ++i) {
        if (document_.sections[i].level <= 2) {
            contents_.push_back(i);
        }
    }
    if (contents_.size() < 3) {
        return;
    }
    heading_ = QStringLiteral("Contents");
    Need(4 * LineHeight(kText));
    y_ += LineHeight(kSubsection) + 4;
    Put([this, y = y_](Sheet& sheet) {
        sheet.Text(left_, y - 5, QStringLiteral("Contents"), kSubsection);
    });
    for (std::size_t done = 0; done < contents_.size();) {
        Need(LineHeight(kEdge));
        const auto fits = static_cast<std::size_t>(std::max(1.0, Room() / LineHeight(kEdge)));
        const std::size_t left = contents_.size() - done;
        const std::size_t rows = std::min(fits, (left + 1) / 2);
        Put([this, done, rows, top = y_](Sheet& sheet) { DrawContents(sheet, done, rows, top); });
        y_ += static_cast<double>(rows) * LineHeight(kEdge);
        done += std::min(left, 2 * rows);
    }
    y_ += kGap;
}

void Layout::DrawContents(Sheet& sheet, std::size_t firstLine, std::size_t lines,
                          double top) const {
    const double column = (width_ - 20) / 2;
    const std::size_t end = std::min(contents_.size(), firstLine + 2 * lines);
    for (std::size_t i = firstLine; i < end; ++i) {
        const std::size_t line = (i - firstLine) % lines;
        const double x = left_ + (i - firstLine >= lines ? column + 20 : 0);
        const double base = top + LineHeight(kEdge) * (static_cast<double>(line) + 0.8);
        const std::size_t section = contents_[i];
        sheet.Text(x, base,
                   Elided(CleanLine(document_.sections[section].heading), kEdge, column - 30),
                   kEdge);
        sheet.TextToRight(x + column, base, QString::number(pageOfSection_[section] + 1), kEdge);
    }
}

const TableShape& Layout::ShapeOf(const review::Section& section, std::size_t index) {
    const review::Table& table = std::get<review::Table>(section.blocks[index]);
    const TableShape*& shape = shapeOf_[&table];
    if (shape == nullptr) {
        shape = &shapes_.emplace_back(table, MapFor(section, index), width_);
    }
    return *shape;
}

// A heading never stands at the end of a page without what it is the heading of.
double Layout::HeightToKeep(const review::Section& section) {
    const double heading = LineHeight(StyleOf(section)) * 2 + 3 * kGap;
    if (section.blocks.empty() ||
        std::holds_alternative<review::Paragraph>(section.blocks.front())) {
        return heading + 2 * LineHeight(kText);
    }
    if (std::holds_alternative<review::Table>(section.blocks.front())) {
        const TableShape& shape = ShapeOf(section, 0);
        return heading + (StaysTogether(shape) ? shape.Height() : shape.CaptionHeight() + 40);
    }
    return heading + 80;
}

bool Layout::StaysTogether(const TableShape& shape) const {
    return shape.Rows() <= kShort && shape.Height() <= bottom_ - kHead - 60;
}

void Layout::PlaceHeading(const review::Section& section) {
    const Style style = StyleOf(section);
    const bool isMain = section.level <= 2;
    if (!isFresh_) {
        y_ += isMain ? 2 * kGap : kGap;
    }
    for (const QString& line : LinesOf(section.heading, style, width_)) {
        Need(LineHeight(style));
        y_ += LineHeight(style);
        Put([=, this, y = y_](Sheet& sheet) {
            sheet.Text(left_, y - 0.3 * style.size, line, style);
        });
    }
    if (isMain) {
        Put([this, y = y_ + 1](Sheet& sheet) {
            sheet.Lines({{left_, y, left_ + width_, y}}, 1.2, kRule);
        });
        y_ += kGap;
    } else {
        y_ += 2;
    }
}

void Layout::PlaceSection(const review::Section& section) {
    if (section.level <= 2) {
        heading_ = CleanLine(section.heading);
    }
    if (section.onNewPage && !isFresh_) {
        NewPage();
    }
    Need(HeightToKeep(section));
    if (isFresh_) {
        pages_.back().heading = heading_;
    }
    pageOfSection_.push_back(static_cast<int>(pages_.size()) - 1);
    PlaceHeading(section);
    for (std::size_t i = 0; i < section.blocks.size();) {
        i += PlaceBlock(section, i);
    }
}

std::size_t Layout::PlaceBlock(const review::Section& section, std::size_t index) {
    const review::Block& block = section.blocks[index];
    if (const auto* const paragraph = std::get_if<review::Paragraph>(&block)) {
        Place(*paragraph);
    } else if (std::holds_alternative<review::Table>(block)) {
        return PlaceTableOf(section, index);
    } else if (const auto* const map = std::get_if<review::HeatMap>(&block)) {
        PlaceMap(*map);
    } else if (const auto* const costs = std::get_if<review::CostChart>(&block)) {
        PlaceChart(*costs);
    } else if (const auto* const totals = std::get_if<review::TotalsChart>(&block)) {
        PlaceChart(*totals);
    } else {
        PlaceChart(std::get<review::BarChart>(block));
    }
    return 1;
}

void Layout::Place(const review::Paragraph& paragraph) {
    const std::vector<QString> lines = LinesOf(paragraph.text, kText, width_);
    // No line alone at a page's end.
    Need(LineHeight(kText) * static_cast<double>(std::min<std::size_t>(lines.size(), 2)));
    for (const QString& line : lines) {
        Need(LineHeight(kText));
        y_ += LineHeight(kText);
        Put([=, this, y = y_](Sheet& sheet) { sheet.Text(left_, y - 3, line, kText); });
    }
    y_ += kGap;
}

std::size_t Layout::PlaceTableOf(const review::Section& section, std::size_t index) {
    const TableShape& shape = ShapeOf(section, index);
    const review::CostChart* const chart =
        index + 1 < section.blocks.size()
            ? std::get_if<review::CostChart>(&section.blocks[index + 1])
            : nullptr;
    if (chart != nullptr && StaysTogether(shape) && shape.Width() <= width_ * 0.45) {
        PlaceBeside(shape, *chart);
        return 2;
    }
    PlaceTable(shape);
    return MapFor(section, index) != nullptr ? 2 : 1;
}

void Layout::PlaceBeside(const TableShape& shape, const review::CostChart& chart) {
    constexpr double kBetween = 18;
    const double left = left_ + shape.Width() + kBetween;
    const double room = width_ - shape.Width() - kBetween;
    const review::Extent extent = ExtentOf(chart, 1);
    const double scale = room / extent.width;
    const double height =
        std::max(shape.Height(), LineHeight(kCaption) + 2 + extent.height * scale);
    Need(height);
    Put([=, this, &shape, pieces = shape.PiecesFor(bottom_ - kHead), y = y_](Sheet& sheet) {
        shape.Draw(sheet, left_, y, pieces.data(), pieces.data() + pieces.size(), false);
    });
    Put([=, &chart, y = y_](Sheet& sheet) {
        const QString caption = Elided(CleanLine(chart.words.caption), kCaption, room);
        sheet.Text(left, y + LineHeight(kCaption) * 0.8, caption, kCaption);
        SheetCanvas canvas(sheet, {left, y + LineHeight(kCaption) + 2}, scale);
        Draw(canvas, chart, 0, 1);
    });
    y_ += height + kGap;
}

void Layout::PlaceTable(const TableShape& shape) {
    const double page = bottom_ - kHead;
    const std::vector<TableShape::Piece> pieces =
        shape.PiecesFor(page - shape.LegendHeight() - kGap);
    if (StaysTogether(shape)) {
        Need(shape.Height());
    }
    for (std::size_t first = 0; first < pieces.size();) {
        Need(shape.CaptionHeight() + pieces[first].height + shape.LegendHeight());
        double height = shape.CaptionHeight();
        std::size_t last = first;
        while (last < pieces.size() &&
               (last == first || height + pieces[last].height + shape.LegendHeight() <= Room())) {
            height += pieces[last++].height;
        }
        const bool goesOn = last < pieces.size();
        std::vector<TableShape::Piece> shown(pieces.begin() + static_cast<std::ptrdiff_t>(first),
                                             pieces.begin() + static_cast<std::ptrdiff_t>(last));
        Put([this, &shape, shown = std::move(shown), goesOn, top = y_](Sheet& sheet) {
            shape.Draw(sheet, left_, top, shown.data(), shown.data() + shown.size(), goesOn);
        });
        y_ += height + (goesOn ? 0 : shape.LegendHeight() + kGap);
        first = last;
    }
}

template <typename Chart>
void Layout::PlaceChart(const Chart& chart) {
    const std::size_t bands = BandsOf(chart);
    const double scale = std::min(0.72, width_ / ExtentOf(chart, 1).width);
    const double most = bottom_ - kHead - LineHeight(kCaption) - kGap;
    const auto heightOf = [&](std::size_t count) { return ExtentOf(chart, count).height * scale; };
    for (std::size_t first = 0; first < bands;) {
        std::size_t count = bands - first;
        while (count > 1 && heightOf(count) > most) {
            --count;
        }
        Need(LineHeight(kCaption) + heightOf(count));
        const QString caption = CleanLine(chart.words.caption) +
                                (first > 0 ? QStringLiteral(" (continued)") : QString());
        Put([=, this, &chart, y = y_](Sheet& sheet) {
            sheet.Text(left_, y + LineHeight(kCaption) * 0.8, caption, kCaption);
            SheetCanvas canvas(sheet, {left_, y + LineHeight(kCaption) + 2}, scale);
            Draw(canvas, chart, first, first + count);
        });
        y_ += LineHeight(kCaption) + 2 + heightOf(count);
        first += count;
    }
    y_ += kGap;
}

// A map by itself: its values are not in a table yet.
void Layout::PlaceMap(const review::HeatMap& map) {
    review::Table& table = mapTables_.emplace_back();
    table.caption = map.words.caption;
    table.head = {review::HeadCell("")};
    for (int fil = 1; fil <= 6; ++fil) {
        table.head.push_back(review::NumberCell("FIL " + std::to_string(fil)));
    }
    for (std::size_t row = 0; row < map.rows.size(); ++row) {
        auto& cells = table.rows.emplace_back();
        cells.push_back(review::HeadCell(map.rows[row]));
        for (const double value : map.values[row]) {
            cells.push_back(review::NumberCell(review::ValueText(static_cast<float>(value))));
        }
    }
    PlaceTable(shapes_.emplace_back(table, &map, width_));
}

}  // namespace reportpdf
