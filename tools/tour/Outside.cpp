#include "Outside.h"

#include <QCoreApplication>
#include <QFile>
#include <QKeyEvent>
#include <QTextStream>
#include <algorithm>

namespace tour {

namespace {

constexpr int kModifiers[] = {Qt::Key_Shift, Qt::Key_Control, Qt::Key_Alt, Qt::Key_Meta,
                              Qt::Key_AltGr};

}  // namespace

Outside::Outside(const QString& pictures) : answer_(pictures + "/answered") {
    QCoreApplication::instance()->installEventFilter(this);
}

bool Outside::IsThere() {
    return qEnvironmentVariableIsSet("TARN_TOUR_OUTSIDE");
}

void Outside::AskForKeys(const QString& line, qsizetype presses) {
    asked_ += presses;
    Ask(line);
}

void Outside::Ask(const QString& line) {
    QTextStream(stdout) << line << "\n";
}

bool Outside::IsAnswered() const {
    return QFile::remove(answer_);
}

QString Outside::NameOfKeys(const QString& keys) {
    QStringList parts = keys.split('+');
    for (QString& part : parts) {
        if (part == "Esc") {
            part = "Escape";
        } else if (part.size() == 1 || part == "Alt" || part == "Ctrl" || part == "Shift") {
            part = part.toLower();
        }
    }
    return parts.join('+');
}

bool Outside::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::ShortcutOverride) {
        const auto* key = static_cast<QKeyEvent*>(event);
        const bool isModifier = std::find(std::begin(kModifiers), std::end(kModifiers),
                                          key->key()) != std::end(kModifiers);
        if (!isModifier && key->timestamp() != lastTime_) {
            lastTime_ = key->timestamp();
            ++arrived_;
        }
    }
    return QObject::eventFilter(watched, event);
}

}  // namespace tour
