// Blocks of cells as text, the way spreadsheets exchange them: a line for each row, tabs between
// the cells, and quotation marks around a cell that holds a tab, a line end or a quotation mark.
#pragma once

#include <QString>
#include <QStringList>
#include <vector>

namespace FlexGridClip {

using Block = std::vector<QStringList>;

// A single cell stands as it is.
QString ToText(const Block& block);
// Lines end with CR LF or either of them; the end of the last line is optional.
Block FromText(const QString& text);
// A number with a spreadsheet's dollar sign, thousands commas or brackets for a loss, without them:
// "($1,250.50)" is "-1250.50". Any other text stands as it is.
QString PlainNumber(const QString& text);

}  // namespace FlexGridClip
