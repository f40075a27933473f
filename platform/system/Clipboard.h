// The clipboard's text.
#pragma once

#include <QString>

namespace platform {

QString ClipboardText();
void SetClipboardText(const QString& text);

}  // namespace platform
