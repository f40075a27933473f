#include "worksheets/ChoicesRow.h"

#include <QEvent>
#include <QGridLayout>

#include <algorithm>

namespace worksheets {

namespace {

constexpr int kBetween = 24;  // between a box and the label of the next

}  // namespace

ChoicesRow::ChoicesRow(QWidget* parent) : QWidget(parent), grid_(new QGridLayout(this)) {
    setObjectName(QStringLiteral("rowChoices"));
    setAccessibleName(tr("What is shown"));
    grid_->setContentsMargins(0, 0, 0, 0);
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
}

void ChoicesRow::Add(QWidget& label, QWidget& box) {
    label.setParent(this);
    box.setParent(this);
    choices_.push_back({&label, &box});
    Arrange();
}

int ChoicesRow::WidthSideBySide() const {
    int width = 0;
    for (const Choice& choice : choices_) {
        width += choice.label->sizeHint().width() + grid_->horizontalSpacing() +
                 choice.box->sizeHint().width() + kBetween;
    }
    return width - kBetween;
}

QSize ChoicesRow::minimumSizeHint() const {
    int width = 0;
    for (const Choice& choice : choices_) {
        width = std::max(width, choice.label->sizeHint().width() + grid_->horizontalSpacing() +
                                    choice.box->minimumSizeHint().width());
    }
    return {width, grid_->minimumSize().height()};
}

void ChoicesRow::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    Arrange();
}

// Other letters need another width.
bool ChoicesRow::event(QEvent* event) {
    const bool handled = QWidget::event(event);
    if (event->type() == QEvent::LayoutRequest) {
        Arrange();
    }
    return handled;
}

void ChoicesRow::Arrange() {
    const bool sideBySide = WidthSideBySide() <= width();
    const int count = static_cast<int>(choices_.size());
    if (sideBySide == sideBySide_ && arranged_ == count) {
        return;
    }
    sideBySide_ = sideBySide;
    arranged_ = count;
    for (int i = 0; i < count; ++i) {
        const Choice& choice = choices_[std::size_t(i)];
        const int row = sideBySide ? 0 : i;
        const int col = sideBySide ? 3 * i : 0;
        grid_->addWidget(choice.label, row, col);
        grid_->addWidget(choice.box, row, col + 1);
        grid_->setColumnMinimumWidth(3 * i + 2, sideBySide && i + 1 < count ? kBetween : 0);
    }
    for (int col = 0; col <= 3 * count; ++col) {
        grid_->setColumnStretch(col, 0);
    }
    grid_->setColumnStretch(sideBySide ? 3 * count - 1 : 2, 1);
    updateGeometry();
}

}  // namespace worksheets
