// Answers the message boxes that come up while a test runs, in order, and keeps what they said.
#pragma once

#include <QApplication>
#include <QMessageBox>
#include <QObject>
#include <QStringList>
#include <QTimer>

#include <deque>
#include <functional>
#include <utility>
#include <vector>

namespace support {

// Looks for modal windows all the time and hands over the one that is in front.
class ModalWatch : public QObject {
public:
    explicit ModalWatch(std::function<void(QWidget&)> look);
    void Stop() { timer_.stop(); }

private:
    QTimer timer_;
};

// Does something with the next modal window of a kind, once.
template <typename Dialog>
class OnNext {
public:
    explicit OnNext(std::function<void(Dialog&)> step)
        : watch_([this, step = std::move(step)](QWidget& modal) {
              if (auto* dialog = qobject_cast<Dialog*>(&modal)) {
                  watch_.Stop();
                  step(*dialog);
              }
          }) {}

private:
    ModalWatch watch_;
};

struct Message {
    QString title;
    QString text;
    QMessageBox::Icon icon = QMessageBox::NoIcon;
    QMessageBox::StandardButtons buttons = QMessageBox::NoButton;
    QMessageBox::StandardButton defaultButton = QMessageBox::NoButton;
    QString informative;
    QString details;
};

class Answers {
public:
    // The buttons to press, one for each box; OK (or No) when there are more boxes than answers.
    explicit Answers(std::deque<QMessageBox::StandardButton> buttons = {});

    // More buttons to press, after those that are left.
    void Press(const std::vector<QMessageBox::StandardButton>& buttons);
    // What to do with a modal window that is no message box, once for each.
    void Then(std::function<void(QWidget&)> step) { steps_.push_back(std::move(step)); }

    // What looks at each modal window before it is answered.
    void See(std::function<void(QWidget&)> look) { look_ = std::move(look); }

    [[nodiscard]] const std::vector<Message>& Messages() const { return messages_; }
    [[nodiscard]] QStringList Texts() const;

private:
    void Look(QWidget& modal);
    void Press(QMessageBox& box);

    std::deque<QMessageBox::StandardButton> buttons_;
    std::deque<std::function<void(QWidget&)>> steps_;
    std::function<void(QWidget&)> look_;
    std::vector<Message> messages_;
    ModalWatch watch_{[this](QWidget& modal) { Look(modal); }};
};

}  // namespace support
