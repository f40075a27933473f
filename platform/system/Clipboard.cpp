#include "platform/system/Clipboard.h"

#include <QClipboard>
#include <QGuiApplication>

namespace platform {

QString ClipboardText() {
    return QGuiApplication::clipboard()->text();
}

void SetClipboardText(const QString& text) {
    QGuiApplication::clipboard()->setText(text);
}

}  // namespace platform
