// Rows that a table's owner finds missing in the file when it saves.
#pragma once

#include <functional>

namespace MissingRows {

// Runs a save. That rows are missing (3021) is told and logged, but does not keep the user on the
// worksheet: what has its row is stored by then. Every other error is passed on. `handler` is the
// qualified name for the log, a string literal.
void Told(const char* handler, const std::function<void()>& save);

}  // namespace MissingRows
