#include "platform/controls/FlexGridCellEdit.h"

#include <utility>

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
