// A table on paper: how wide its columns are, how high its rows, and where it may be divided.
#pragma once

#include <cstddef>
#include <vector>

#include "reportpdf/sheet.h"
#include "review/document.h"

namespace reportpdf {

class TableShape {
public:
    // `map`, where there is one, shades the figures of the table; its legend stands below.
    TableShape(const review::Table& table, const review::HeatMap* map, double width);

    // Body rows, then those with totals. A row that is higher than `most` counts as several pieces.
    struct Piece {
        std::size_t row = 0;
        std::size_t firstLine = 0;
        std::size_t lines = 0;
        double height = 0;
    };
    [[nodiscard]] std::vector<Piece> PiecesFor(double most) const;
    [[nodiscard]] double CaptionHeight() const;  // the head's row included
    [[nodiscard]] double Height() const;         // of all, where it is not divided
    [[nodiscard]] double Width() const { return width_; }
    [[nodiscard]] std::size_t Rows() const { return lineCounts_.size(); }
    [[nodiscard]] double LegendHeight() const;
    // Draws these pieces under the caption and the head; gives where they end.
    double Draw(Sheet& sheet, double left, double top, const Piece* first, const Piece* last,
                bool goesOn) const;

private:
    [[nodiscard]] const std::vector<review::Cell>& Row(std::size_t index) const;
    [[nodiscard]] Style StyleOf(const review::Cell& cell, bool isBold) const;
    [[nodiscard]] std::vector<QString> LinesIn(const review::Cell& cell, std::size_t column,
                                               bool isBold) const;
    [[nodiscard]] double Span(std::size_t column, int columns) const;
    [[nodiscard]] std::size_t LineCount(const std::vector<review::Cell>& row, bool isBold) const;
    [[nodiscard]] double RowHeight(std::size_t lines) const;
    void MeasureColumns(double width);
    void Stretch(double width);
    void DrawShades(Sheet& sheet, double left, double top, const Piece* first,
                    const Piece* last) const;
    void DrawRow(Sheet& sheet, double left, double top, const std::vector<review::Cell>& row,
                 const Piece& piece, bool isWhole, bool isBold) const;
    void DrawLegend(Sheet& sheet, double left, double top) const;

    const review::Table& table_;
    const review::HeatMap* map_;
    double size_;
    bool breaksFigures_ = false;
    std::vector<double> widths_;
    std::vector<std::size_t> lineCounts_;
    std::size_t headLines_ = 1;
    double pageWidth_;
    double width_ = 0;
    std::vector<QString> captionLines_;
};

}  // namespace reportpdf
