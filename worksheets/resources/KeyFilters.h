// Which typed characters a box takes.
#pragma once

#include <QChar>
#include <QString>

namespace KeyFilters {

// Of the printable ASCII characters only the digits; control characters and everything beyond
// ASCII pass.
[[nodiscard]] bool TakesDigits(QChar typed);
[[nodiscard]] bool TakesDigits(const QString& typed);

}  // namespace KeyFilters
