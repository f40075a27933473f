#include "platform/dialogs/RunModal.h"

#include <QApplication>
#include <QDialog>
#include <QPointer>

namespace platform {

int RunModal(QDialog& dialog) {
    const QWidget* const parent = dialog.parentWidget();
    const QPointer<QWidget> behind =
        parent != nullptr ? parent->window() : QApplication::activeWindow();
    const int answer = dialog.exec();
    if (behind != nullptr) {
        behind->activateWindow();
    }
    return answer;
}

}  // namespace platform
