// Lays the blocks of a document out on pages.
#pragma once

#include <QSizeF>
#include <QString>
#include <deque>
#include <functional>
#include <map>
#include <vector>

#include "reportpdf/sheet.h"
#include "reportpdf/table_shape.h"
#include "review/document.h"

namespace reportpdf {

struct Page {
    QString heading;  // of the section that it shows first
    std::vector<std::function<void(Sheet&)>> parts;
};

class Layout {
public:
    Layout(const review::Document& document, QSizeF paper);

    [[nodiscard]] const std::vector<Page>& Pages() const { return pages_; }
    [[nodiscard]] const std::vector<int>& PageOfSection() const { return pageOfSection_; }
    // The running head and the page's number.
    void DrawEdges(Sheet& sheet, std::size_t page) const;

private:
    void NewPage();
    [[nodiscard]] double Room() const { return bottom_ - y_; }
    // A new page where less than this is left of one that has something on it.
    void Need(double height);
    void Put(std::function<void(Sheet&)> part);

    void PlaceTitle();
    void PlaceContents();
    void DrawContents(Sheet& sheet, std::size_t firstLine, std::size_t lines, double top) const;
    void PlaceSection(const review::Section& section);
    void PlaceHeading(const review::Section& section);
    [[nodiscard]] double HeightToKeep(const review::Section& section);
    // The shape of a table that is the section's block of this index, with the map behind it.
    const TableShape& ShapeOf(const review::Section& section, std::size_t index);
    // Places a block, and with it the one behind it where both are one; gives how many it placed.
    std::size_t PlaceBlock(const review::Section& section, std::size_t index);
    [[nodiscard]] bool StaysTogether(const TableShape& shape) const;
    void Place(const review::Paragraph& paragraph);
    std::size_t PlaceTableOf(const review::Section& section, std::size_t index);
    void PlaceTable(const TableShape& shape);
    // A narrow table and the chart of its figures, side by side.
    void PlaceBeside(const TableShape& shape, const review::CostChart& chart);
    template <typename Chart>
    void PlaceChart(const Chart& chart);
    void PlaceMap(const review::HeatMap& map);

    const review::Document& document_;
    QSizeF paper_;
    double left_;
    double width_;
    double bottom_;
    double y_ = 0;
    bool isFresh_ = true;  // nothing stands on the page
    QString heading_;
    std::vector<Page> pages_;
    std::vector<int> pageOfSection_;
    std::vector<std::size_t> contents_;  // the sections that are listed
    std::deque<TableShape> shapes_;
    std::map<const review::Table*, const TableShape*> shapeOf_;
    std::deque<review::Table> mapTables_;
};

}  // namespace reportpdf
