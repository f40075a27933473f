#include "worksheets/ChoiceBox.h"

#include <QAbstractItemView>
#include <QScrollBar>
#include <QStyledItemDelegate>
#include <QWheelEvent>

#include <algorithm>

#include "base/Handle.h"

namespace worksheets {

namespace {

constexpr int kRowsShown = 20;
constexpr int kFewestCharacters = 12;

QString NoName() {
    return ChoiceBox::tr("(no name)");
}

class NamingDelegate : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;

protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override {
        QStyledItemDelegate::initStyleOption(option, index);
        if (option->text.trimmed().isEmpty()) {
            option->text = NoName();
        }
    }
};

}  // namespace

ChoiceBox::ChoiceBox(int characters, QWidget* parent) : QComboBox(parent) {
    setMaxVisibleItems(kRowsShown);
    setItemDelegate(new NamingDelegate(this));
    setSizeAdjustPolicy(AdjustToMinimumContentsLengthWithIcon);
    setMinimumContentsLength(characters);
    setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Fixed);
    setFocusPolicy(Qt::StrongFocus);
    base::Handle<&ChoiceBox::ShowWhole, base::Entry::kOwn>(this, &QComboBox::currentTextChanged,
                                                           this);
}

QSize ChoiceBox::minimumSizeHint() const {
    const int spared = std::max(minimumContentsLength() - kFewestCharacters, 0);
    const QSize least = QComboBox::minimumSizeHint();
    return {least.width() - spared * fontMetrics().horizontalAdvance(u'X'), least.height()};
}

void ChoiceBox::showPopup() {
    QAbstractItemView& list = *view();
    const int bar = count() > kRowsShown ? list.verticalScrollBar()->sizeHint().width() : 0;
    list.setMinimumWidth(
        std::max(list.sizeHintForColumn(0) + bar + 2 * list.frameWidth(), width()));
    QComboBox::showPopup();
}

void ChoiceBox::Step(int by) {
    const int index = currentIndex() + by;
    if (index < 0 || index >= count()) {
        return;
    }
    setCurrentIndex(index);
    emit activated(index);
}

void ChoiceBox::wheelEvent(QWheelEvent* event) {
    event->ignore();
}

void ChoiceBox::initStyleOption(QStyleOptionComboBox* option) const {
    QComboBox::initStyleOption(option);
    if (currentIndex() >= 0 && option->currentText.trimmed().isEmpty()) {
        option->currentText = NoName();
    }
}

void ChoiceBox::ShowWhole() {
    setToolTip(currentText().toHtmlEscaped());
}

}  // namespace worksheets
