// A page that scrolls where its window has less room than its controls need, and dialogs that are
// no larger than the screen. Letters keep their size: who chose large ones needs them.
#pragma once

#include <QScrollArea>
#include <QSize>

class QDialog;

namespace platform {

class ScrolledPage : public QScrollArea {
    Q_OBJECT

public:
    // An empty page, named for the program and for people who hear the screen.
    ScrolledPage(QWidget* parent, const char* name, const QString& accessibleName);

    // What the controls are laid out on.
    [[nodiscard]] QWidget& Page() const { return *widget(); }

    // What the whole page takes, without scroll bars.
    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;
    [[nodiscard]] bool hasHeightForWidth() const override;
    [[nodiscard]] int heightForWidth(int width) const override;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
};

// The height that a widget's layout needs at a width, with the fonts as they are at this moment.
int HeightAtWidth(QWidget& widget, int width);

// Gives a dialog that is not shown yet the size that its controls need, and no less than `wanted`,
// as far as the screen has room; a ScrolledPage in it scrolls where that is not enough.
void FitToScreen(QDialog& dialog, QSize wanted);

}  // namespace platform
