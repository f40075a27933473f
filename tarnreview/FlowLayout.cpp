#include "tarnreview/FlowLayout.h"

#include <algorithm>

namespace tarnreview {

FlowLayout::FlowLayout(QWidget* parent) : QLayout(parent) {
    setContentsMargins(0, 0, 0, 0);
}

FlowLayout::~FlowLayout() {
    for (QLayoutItem* item : items_) {
        delete item;
    }
}

void FlowLayout::addItem(QLayoutItem* item) {
    items_.push_back(item);
}

QLayoutItem* FlowLayout::itemAt(int index) const {
    return index >= 0 && index < count() ? items_[static_cast<std::size_t>(index)] : nullptr;
}

QLayoutItem* FlowLayout::takeAt(int index) {
    QLayoutItem* const item = itemAt(index);
    if (item != nullptr) {
        items_.erase(items_.begin() + index);
    }
    return item;
}

int FlowLayout::heightForWidth(int width) const {
    return Arrange(QRect(0, 0, width, 0), false);
}

QSize FlowLayout::minimumSize() const {
    QSize size;
    for (const QLayoutItem* item : items_) {
        size = size.expandedTo(item->minimumSize());
    }
    return size;
}

void FlowLayout::setGeometry(const QRect& area) {
    QLayout::setGeometry(area);
    Arrange(area, true);
}

int FlowLayout::Arrange(const QRect& area, bool place) const {
    const int gap = std::max(spacing(), 4);
    int x = area.left();
    int y = area.top();
    int line = 0;
    for (QLayoutItem* item : items_) {
        const QSize size = item->sizeHint();
        if (x > area.left() && x + size.width() > area.right() + 1) {
            x = area.left();
            y += line + gap;
            line = 0;
        }
        if (place) {
            item->setGeometry(QRect(QPoint(x, y), size));
        }
        x += size.width() + gap;
        line = std::max(line, size.height());
    }
    return y + line - area.top();
}

}  // namespace tarnreview
