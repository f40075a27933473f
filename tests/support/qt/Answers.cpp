#include "support/Answers.h"

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QPushButton>

namespace support {

ModalWatch::ModalWatch(std::function<void(QWidget&)> look) {
    connect(&timer_, &QTimer::timeout, this, [look = std::move(look)] {
        QWidget* modal = QApplication::activeModalWidget();
        if (modal != nullptr) {
            look(*modal);
        }
    });
    timer_.start(1);
}

Answers::Answers(std::deque<QMessageBox::StandardButton> buttons) : buttons_(std::move(buttons)) {}

void Answers::Press(const std::vector<QMessageBox::StandardButton>& buttons) {
    buttons_.insert(buttons_.end(), buttons.begin(), buttons.end());
}

QStringList Answers::Texts() const {
    QStringList texts;
    for (const Message& message : messages_) {
        texts << message.text;
    }
    return texts;
}

void Answers::Look(QWidget& modal) {
    if (look_ && modal.isVisible()) {
        look_(modal);
    }
    if (auto* box = qobject_cast<QMessageBox*>(&modal)) {
        Press(*box);
    } else if (modal.isVisible() && !steps_.empty()) {
        const auto step = std::move(steps_.front());
        steps_.pop_front();
        // In an event of its own: the step may open a box, which this watch has to answer.
        QTimer::singleShot(0, &modal, [step, &modal] { step(modal); });
    }
}

void Answers::Press(QMessageBox& box) {
    auto* isDefault = box.defaultButton();
    messages_.push_back(
        {box.windowTitle(), box.text(), box.icon(), box.standardButtons(),
         isDefault == nullptr ? QMessageBox::NoButton : box.standardButton(isDefault),
         box.informativeText(), box.detailedText()});
    QMessageBox::StandardButton answer =
        (box.standardButtons() & QMessageBox::Ok) != 0 ? QMessageBox::Ok : QMessageBox::No;
    // What a box does not offer is kept for the next one.
    if (!buttons_.empty() && (box.standardButtons() & buttons_.front()) != 0) {
        answer = buttons_.front();
        buttons_.pop_front();
    }
    QAbstractButton* button = box.button(answer);
    ASSERT_NE(button, nullptr) << box.text().toStdString();
    button->click();
}

}  // namespace support
