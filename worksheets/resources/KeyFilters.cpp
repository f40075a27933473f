#include "worksheets/resources/KeyFilters.h"

#include <algorithm>

namespace KeyFilters {

bool TakesDigits(QChar typed) {
    const char16_t code = typed.unicode();
    const bool printable = code >= 32 && code <= 126;
    return !printable || (code >= u'0' && code <= u'9');
}

bool TakesDigits(const QString& typed) {
    return std::all_of(typed.begin(), typed.end(), [](QChar one) { return TakesDigits(one); });
}

}  // namespace KeyFilters
