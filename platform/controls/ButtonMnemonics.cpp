#include "platform/controls/ButtonMnemonics.h"

#include <QCoreApplication>
#include <QPushButton>
#include <QShortcutEvent>

namespace platform {

namespace {

class MnemonicFilter : public QObject {
public:
    using QObject::QObject;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() != QEvent::Shortcut) {
            return false;
        }
        auto* button = qobject_cast<QPushButton*>(watched);
        if (button == nullptr || static_cast<QShortcutEvent*>(event)->isAmbiguous()) {
            return false;
        }
        button->click();
        return true;
    }
};

}  // namespace

void InstallImmediateMnemonics() {
    static bool installed = false;
    if (!installed) {
        QCoreApplication::instance()->installEventFilter(
            new MnemonicFilter(QCoreApplication::instance()));
        installed = true;
    }
}

}  // namespace platform
