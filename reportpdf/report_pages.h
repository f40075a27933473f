// A document on pages: as PDF, on a printer, and in a print preview, all by the same painter.
//
// The library needs Qt Gui, not Qt Widgets, and a QGuiApplication that exists. Sizes are in points,
// 72 to an inch. The document must outlive its pages.
#pragma once

#include <QByteArray>
#include <QPagedPaintDevice>
#include <QSizeF>
#include <memory>

#include "review/document.h"

class QPainter;

namespace reportpdf {

enum class Paper { kA4, kLetter };

// Letter where people print on it, by the locale of the user; else A4.
Paper UsualPaper();
QSizeF SizeOf(Paper paper);

// Throws std::runtime_error where no font is installed.
class Pages {
public:
    // Lays the document out for paper of this size, its edges included; the margins are the
    // document's own. Paper that is too small for a page is taken as A6.
    Pages(const review::Document& document, QSizeF paper);
    Pages(const Pages&) = delete;
    Pages& operator=(const Pages&) = delete;
    ~Pages();

    [[nodiscard]] int Count() const;
    // The page, counted from 0, on which a section begins.
    [[nodiscard]] int PageOf(std::size_t section) const;
    // Draws a page, counted from 0, with the paper's corner at the painter's origin and one unit
    // of the painter to a point.
    void Draw(QPainter& painter, int page) const;

private:
    class Body;
    std::unique_ptr<const Body> body_;
};

// Prints all pages on a device whose page layout is set, or those of its page ranges: a QPrinter,
// also that of a print preview, or a QPdfWriter. Throws std::runtime_error with a sentence when it
// cannot be printed.
void Print(const review::Document& document, QPagedPaintDevice& device);

// The document as a file of PDF, with title, bookmarks and searchable text. Throws
// std::runtime_error with a sentence.
QByteArray PdfOf(const review::Document& document, Paper paper);

}  // namespace reportpdf
