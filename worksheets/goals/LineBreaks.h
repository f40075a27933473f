// Line breaks of long texts: carriage return and line feed in the data file, one character in a
// text box.
#pragma once

#include <QString>

namespace LineBreaks {

// The text as the file holds it. Every kind of line break becomes carriage return and line feed;
// all other characters stay as they are.
[[nodiscard]] QString ForFile(const QString& text);

}  // namespace LineBreaks
