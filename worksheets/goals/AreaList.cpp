#include "worksheets/goals/AreaList.h"

#include <QMouseEvent>
#include <QSignalBlocker>
#include <QStyledItemDelegate>

#include <utility>

namespace worksheets {

namespace {

constexpr int kCellPadding = 4;

class Delegate : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& option,
                                 const QModelIndex& index) const override {
        return {QStyledItemDelegate::sizeHint(option, index).width(),
                option.fontMetrics.height() + 2 * kCellPadding};
    }

protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override {
        QStyledItemDelegate::initStyleOption(option, index);
        if (option->text.isEmpty()) {
            option->text = AreaList::tr("(no name)");
            option->font.setItalic(true);
            option->features |= QStyleOptionViewItem::HasDisplay;
        }
    }
};

// What a screen reader says of an entry.
class Entry : public QListWidgetItem {
public:
    using QListWidgetItem::QListWidgetItem;

    [[nodiscard]] QVariant data(int role) const override {
        const QVariant value = QListWidgetItem::data(role);
        if (role == Qt::AccessibleTextRole) {
            return text().isEmpty() ? AreaList::tr("(no name)") : text();
        }
        return value;
    }
};

}  // namespace

AreaList::AreaList(QWidget* parent) : QListWidget(parent) {
    setItemDelegate(new Delegate(this));
    setUniformItemSizes(true);
}

void AreaList::Append(const QString& heading, std::int32_t key) {
    auto* entry = new Entry(heading, this);
    entry->setData(Qt::UserRole, key);
}

void AreaList::SelectSilently(int row) {
    const QSignalBlocker blocker(this);
    setCurrentRow(row);
}

void AreaList::mousePressEvent(QMouseEvent* event) {
    const int selected = currentRow();
    QListWidget::mousePressEvent(event);
    pressed_ = indexAt(event->pos()).row() == selected ? selected : -1;
}

void AreaList::mouseReleaseEvent(QMouseEvent* event) {
    QListWidget::mouseReleaseEvent(event);
    const int pressed = std::exchange(pressed_, -1);
    if (pressed >= 0 && event->button() == Qt::LeftButton &&
        indexAt(event->pos()).row() == pressed) {
        emit ClickedAgain();
    }
}

}  // namespace worksheets
