#include "platform/controls/FlexGridCellEdit.h"

#include <utility>

namespace platform {

void FlexGridCellEdit::Begin(const QString& text) {
    *this = FlexGridCellEdit();
    before_ = text;
}

bool FlexGridCellEdit::Change() {
    unreported_ = true;
    return !std::exchange(changed_, true);
}

void FlexGridCellEdit::Offered(const QString& text, const GridTable::Answer& answer) {
    offered_ = text;
    answer_ = answer;
}

bool FlexGridCellEdit::MustOffer(const QString& text) const {
    return changed_ && offered_ != text;
}

bool FlexGridCellEdit::Allows(const QString& from, const QString& to, int longest) {
    if (longest <= 0 || to.size() <= longest) {
        return true;
    }
    qsizetype kept = 0;
    for (qsizetype at = 0; at < from.size() && kept < to.size(); ++at) {
        kept += from[at] == to[kept] ? 1 : 0;
    }
    return kept == to.size();
}

}  // namespace platform
