// Answers the message boxes that come up while a test runs, in order, and keeps what they said.
#pragma once

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QMessageBox>
#include <QObject>
#include <QPushButton>
#include <QStringList>
#include <QTimer>

#include <deque>
#include <functional>
#include <utility>
#include <vector>

namespace support {

struct Message {
    QString title;
    QString text;
    QMessageBox::Icon icon = QMessageBox::NoIcon;
    QMessageBox::StandardButtons buttons = QMessageBox::NoButton;
    QMessageBox::StandardButton defaultButton = QMessageBox::NoButton;
    QString informative;
    QString details;
};

class Answers : public QObject {
public:
    // The buttons to press, one for each box; OK (or No) when there are more boxes than answers.
    explicit Answers(std::deque<QMessageBox::StandardButton> buttons = {})
        : buttons_(std::move(buttons)) {
        QObject::connect(&timer_, &QTimer::timeout, this, [this] { Look(); });
        timer_.start(1);
    }

    // More buttons to press, after those that are left.
    void Press(const std::vector<QMessageBox::StandardButton>& buttons) {
        buttons_.insert(buttons_.end(), buttons.begin(), buttons.end());
    }
    // What to do with a modal window that is no message box, once for each.
    void Then(std::function<void(QWidget&)> step) { steps_.push_back(std::move(step)); }

    // What looks at each modal window before it is answered.
    void See(std::function<void(QWidget&)> look) { look_ = std::move(look); }

    [[nodiscard]] const std::vector<Message>& Messages() const { return messages_; }
    [[nodiscard]] QStringList Texts() const {
        QStringList texts;
        for (const Message& message : messages_) {
            texts << message.text;
        }
        return texts;
    }

private:
    void Look() {
        QWidget* modal = QApplication::activeModalWidget();
        if (look_ && modal != nullptr && modal->isVisible()) {
            look_(*modal);
        }
        if (auto* box = qobject_cast<QMessageBox*>(modal)) {
            Press(*box);
        } else if (modal != nullptr && modal->isVisible() && !steps_.empty()) {
            const auto step = std::move(steps_.front());
            steps_.pop_front();
            // In an event of its own: the step may open a box, which this timer has to answer.
            QTimer::singleShot(0, modal, [step, modal] { step(*modal); });
        }
    }
    void Press(QMessageBox& box) {
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

    QTimer timer_;
    std::deque<QMessageBox::StandardButton> buttons_;
    std::deque<std::function<void(QWidget&)>> steps_;
    std::function<void(QWidget&)> look_;
    std::vector<Message> messages_;
};

}  // namespace support
