// What the grid's cells and its fixed rows have in common when they are drawn.
#pragma once

#include <QColor>
#include <QPalette>

class QPainter;

namespace FlexGridPaint {

// The lines between cells: visible on any palette, loud on none.
QColor LineColor(const QPalette& palette, QPalette::ColorRole ground, QPalette::ColorRole text);
// Draws a line along the right and one along the bottom edge, inside the rectangle.
void DrawEdges(QPainter& painter, const QRect& rect, const QColor& color);
// Marks a cell that shows another value than the stored one: a frame and a filled corner, so that
// it shows without colors too.
void DrawMark(QPainter& painter, const QRect& rect, const QPalette& palette, bool selected);
// The frame of the current cell; thick where the keyboard is.
void DrawCurrent(QPainter& painter, const QRect& rect, const QPalette& palette, bool keyboard);
// The ground of a marked cell.
QColor MarkGround(const QPalette& palette);

}  // namespace FlexGridPaint
