// Small steps that the pages of the window share.
#pragma once

#include <QString>

#include <string>
#include <vector>

#include "platform/controls/Named.h"

class QLabel;
class QPushButton;
class QWidget;
class vsFlexGrid;

namespace tarnreview {
class TextTable;
}

namespace Parts {

inline QString Text(const std::string& text) {
    return QString::fromStdString(text);
}

using platform::Name;
QPushButton* Button(QWidget* parent, const char* name, const QString& caption, const QString& tip);
// Plain text that wraps and can be copied.
QLabel* Words(QWidget* parent, const char* name, const QString& accessibleName);

// A grid to read: headings, and the room that each column's texts need, the last one the rest.
vsFlexGrid* List(QWidget* parent, const char* name, const QString& accessibleName,
                 const QStringList& headings, tarnreview::TextTable& table);
// After the rows of its table have changed. `most`: no column gets more characters; the last one,
// where it holds texts, gets what the others leave.
// `room`: the width that the grid is going to have, in pixels.
void ShowRows(vsFlexGrid& grid, const tarnreview::TextTable& table, int most, int room);

}  // namespace Parts
