#include "Player.h"

#include <QApplication>
#include <QFile>
#include <QKeySequence>
#include <QPixmap>
#include <QScopedValueRollback>
#include <QScreen>
#include <QTest>
#include <QTextStream>
#include <QTimer>
#include <QWidget>
#include <QWindow>
#include <cstdlib>

namespace tour {

namespace {

constexpr int kPause = 60;        // between two steps, in milliseconds
constexpr int kPatience = 30000;  // for one step

// The window that a person's keys go to: a menu, else a dialog, else the main frame.
QWidget* KeyWindow() {
    if (QWidget* popup = QApplication::activePopupWidget()) {
        return popup->window();
    }
    if (QWidget* modal = QApplication::activeModalWidget()) {
        return modal;
    }
    const QWidgetList windows = QApplication::topLevelWidgets();
    for (QWidget* window : windows) {
        if (window->isVisible() && window->objectName() == "frm0_Prep") {
            return window;
        }
    }
    return nullptr;
}

QWidget* Find(const QString& name) {
    const QWidgetList widgets = QApplication::allWidgets();
    for (QWidget* widget : widgets) {
        if (widget->objectName() == name && widget->isVisible()) {
            return widget;
        }
    }
    return nullptr;
}

bool Activate(QWidget* window) {
    if (window == nullptr || window->windowHandle() == nullptr) {
        return false;
    }
    if (QApplication::activePopupWidget() == nullptr && !window->isActiveWindow()) {
        window->activateWindow();
        return false;
    }
    return true;
}

bool HasFocus(const QWidget* widget) {
    const QWidget* focus = QApplication::focusWidget();
    return focus != nullptr && (focus == widget || widget->isAncestorOf(focus));
}

}  // namespace

Player::Player(const QString& script, const QString& pictures)
    : outside_(pictures), pictures_(pictures) {
    QFile file(script);
    if (!file.open(QIODevice::ReadOnly)) {
        Fail("cannot read the script " + script);
    }
    const QStringList lines = QString::fromUtf8(file.readAll()).split('\n');
    for (const QString& line : lines) {
        if (!line.trimmed().isEmpty() && !line.startsWith('#')) {
            steps_ << line.trimmed();
        }
    }
}

void Player::Start() {
    sinceStep_.start();
    QTimer::singleShot(kPause, this, &Player::Next);
}

void Player::Next() {
    if (step_ >= steps_.size()) {
        return;
    }
    const QString step = steps_[step_];
    const QString verb = step.section(' ', 0, 0);
    const bool needsKeys = verb == "key" || verb == "type";
    if (isTyping_ || !outside_.AreKeysHere() || (needsKeys && !Activate(KeyWindow()))) {
        if (sinceStep_.elapsed() > kPatience) {
            Fail("no window takes the keys for: " + step);
        }
        QTimer::singleShot(kPause, this, &Player::Next);
        return;
    }
    ++step_;
    QTimer::singleShot(kPause, this, &Player::Next);
    const qsizetype taken = step_;
    const Outcome outcome = Take(verb, step.section(' ', 1));
    if (outcome == Outcome::kWrong ||
        (outcome == Outcome::kNotYet && sinceStep_.elapsed() > kPatience)) {
        Fail(step);
    }
    if (outcome == Outcome::kNotYet) {
        step_ = taken - 1;
    } else {
        sinceStep_.start();
    }
}

Player::Outcome Player::Take(const QString& verb, const QString& rest) {
    const auto when = [](bool met) { return met ? Outcome::kDone : Outcome::kNotYet; };
    if (verb == "wait") {
        return when(Find(rest) != nullptr);
    }
    if (verb == "gone") {
        return when(Find(rest) == nullptr);
    }
    if (verb == "focus") {
        const QWidget* widget = Find(rest);
        return when(widget != nullptr && HasFocus(widget));
    }
    if (verb == "type" && Outside::IsThere()) {
        outside_.AskForKeys("type " + rest, rest.size());
        return Outcome::kDone;
    }
    if (verb == "type") {
        // Each letter lets the program's events run, the next step's too, which has to wait.
        const QScopedValueRollback typing(isTyping_, true);
        for (const QChar letter : rest) {
            QTest::keyClick(KeyWindow()->windowHandle(), letter.toLatin1());
        }
        return Outcome::kDone;
    }
    if (verb == "key" && Outside::IsThere()) {
        outside_.AskForKeys("key " + Outside::NameOfKeys(rest), 1);
        return Outcome::kDone;
    }
    if (verb == "key") {
        const QKeyCombination keys = QKeySequence(rest)[0];
        QTest::keyClick(KeyWindow()->windowHandle(), keys.key(), keys.keyboardModifiers());
        return Outcome::kDone;
    }
    if (verb == "click") {
        return Click(rest.split(' '));
    }
    if (verb == "expect") {
        return Expect(rest);
    }
    if (verb == "outside") {
        if (!asked_) {
            Outside::Ask(rest);
        }
        asked_ = !outside_.IsAnswered();
        return when(!asked_);
    }
    return verb == "picture" ? Picture(rest.split(' ')) : Outcome::kWrong;
}

Player::Outcome Player::Click(const QStringList& words) {
    QWidget* widget = Find(words[0]);
    if (widget == nullptr) {
        return Outcome::kNotYet;
    }
    QPoint at = widget->rect().center();
    if (words.size() == 3) {
        QRect cell;
        QWidget* viewport = widget->findChild<QWidget*>("qt_scrollarea_viewport");
        QMetaObject::invokeMethod(widget, "CellRect", Q_RETURN_ARG(QRect, cell),
                                  Q_ARG(int, words[1].toInt()), Q_ARG(int, words[2].toInt()));
        at = viewport->mapTo(widget, cell.center());
    }
    QTest::mouseClick(widget->window()->windowHandle(), Qt::LeftButton, {},
                      widget->mapTo(widget->window(), at));
    return Outcome::kDone;
}

Player::Outcome Player::Expect(const QString& rest) {
    QWidget* grid = Find(rest.section(' ', 0, 0));
    if (grid == nullptr) {
        return Outcome::kNotYet;
    }
    QString text;
    QMetaObject::invokeMethod(grid, "DisplayText", Q_RETURN_ARG(QString, text),
                              Q_ARG(int, rest.section(' ', 1, 1).toInt()),
                              Q_ARG(int, rest.section(' ', 2, 2).toInt()));
    return text == rest.section(' ', 3) ? Outcome::kDone : Outcome::kWrong;
}

Player::Outcome Player::Picture(const QStringList& words) {
    QPixmap picture;
    if (words.size() > 1) {
        QWidget* widget = Find(words[1]);
        if (widget == nullptr) {
            return Outcome::kNotYet;
        }
        picture = widget->grab();
    } else if (QGuiApplication::platformName() == "xcb") {
        picture = QGuiApplication::primaryScreen()->grabWindow(0);
    } else if (QWidget* window = KeyWindow()) {
        picture = window->grab();
    }
    const QString path = pictures_ + "/" + words[0];
    if (!picture.save(path, "PNG")) {
        return Outcome::kWrong;
    }
    QTextStream(stdout) << "  " << path << "\n";
    return Outcome::kDone;
}

void Player::Fail(const QString& why) const {
    QTextStream(stderr) << "The tour stops at: " << why << "\n";
    std::_Exit(3);
}

}  // namespace tour
