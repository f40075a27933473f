// Adds an outline to a finished PDF: Qt writes none. The file gets an incremental update, objects
// and a second table of places behind its end, as the format means it for changes.
#pragma once

#include <QByteArray>
#include <QString>
#include <vector>

namespace reportpdf {

struct Bookmark {
    QString title;
    int level = 2;  // a larger number stands under the smaller one before it
    int page = 0;   // counted from 0
};

// `pdf` is what QPdfWriter made, with a plain table of places. The title is shown in the window's
// caption, and the outline beside the pages. Throws std::runtime_error where it is made otherwise.
QByteArray WithBookmarks(const QByteArray& pdf, const std::vector<Bookmark>& bookmarks);

}  // namespace reportpdf
