// Rows that a table's owner finds missing in the file when it saves.
#pragma once

#include <QStringList>

#include <functional>

namespace MissingRows {

// Stores rows 1 to `rows` in one transaction; `store` says whether the file has the row. Gives the
// numbers of those that it does not have.
QStringList StoreOthers(int rows, const std::function<bool(int row)>& store);

// Runs a save. That rows are missing (3021) is shown and logged, but does not keep the user on the
// worksheet: what has its row is stored by then. Every other error is passed on. `handler` is the
// qualified name for the log, a string literal.
void Shown(const char* handler, const std::function<void()>& save);

}  // namespace MissingRows
