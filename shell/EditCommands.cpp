#include "shell/EditCommands.h"

#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTextDocumentFragment>

#include <functional>

#include "base/u91Trace.h"
#include "platform/controls/vsFlexGrid.h"
#include "platform/system/Clipboard.h"

namespace {

using namespace EditCommands;

vsFlexGrid* GridOf(QWidget* control) {
    for (; control != nullptr; control = control->parentWidget()) {
        if (auto* grid = qobject_cast<vsFlexGrid*>(control)) {
            return grid;
        }
    }
    return nullptr;
}

void RunOnGrid(std::int16_t command, vsFlexGrid& grid) {
    if (command == kPaste) {
        const QString text = platform::ClipboardText();
        u91Trace::Procedure(QStringLiteral("Paste ") + text);
        grid.SetEditSelText(text);
        return;
    }
    const QString clip = grid.Clip();
    if (clip.isEmpty()) {
        return;
    }
    platform::SetClipboardText(clip);
    if (command == kCut) {
        grid.ClearClip();
    }
}

// The same for boxes of one line and of several, which differ in how they speak of the selection.
void RunOnText(std::int16_t command, const QString& selected, bool readOnly,
               const std::function<void(const QString&)>& replaceSelection) {
    if (command == kPaste) {
        const QString text = platform::ClipboardText();
        if (!readOnly && !text.isEmpty()) {
            replaceSelection(text);
        }
        return;
    }
    if (selected.isEmpty()) {
        return;
    }
    platform::SetClipboardText(selected);
    if (command == kCut && !readOnly) {
        replaceSelection(QString());
    }
}

}  // namespace

namespace EditCommands {

void Execute(std::int16_t command, QWidget* activeControl) {
    if (command != kCut && command != kCopy && command != kPaste) {
        return;
    }
    if (vsFlexGrid* grid = GridOf(activeControl)) {
        RunOnGrid(command, *grid);
    } else if (auto* line = qobject_cast<QLineEdit*>(activeControl)) {
        RunOnText(command, line->selectedText(), line->isReadOnly(),
                  [line](const QString& text) { line->insert(text); });
    } else if (auto* lines = qobject_cast<QPlainTextEdit*>(activeControl)) {
        RunOnText(command, lines->textCursor().selection().toPlainText(), lines->isReadOnly(),
                  [lines](const QString& text) { lines->insertPlainText(text); });
    }
}

}  // namespace EditCommands
