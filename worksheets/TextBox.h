// A line edit that reports when it gets the focus and can refuse typed keys.
#pragma once

#include <functional>
#include <utility>

#include "platform/controls/PasteBox.h"

namespace worksheets {

class TextBox : public platform::PasteBox {
    Q_OBJECT

public:
    using platform::PasteBox::PasteBox;

    // Asked with the text of each typed key; the key is discarded when the answer is no. Pasting
    // is not typing.
    void SetKeyFilter(std::function<bool(const QString&)> takes) { takes_ = std::move(takes); }
    // Makes pasted numbers arrive as a spreadsheet means them, "$1,450.00" as 1450. What does not
    // fit as a whole is left out, as a part of it would be another number, and `refused` is called.
    void SetPastesNumbers(std::function<void()> refused) { refused_ = std::move(refused); }

signals:
    void GotFocus();  // after the box has set its own selection

protected:
    void TakePasted(const QString& text) override;
    void focusInEvent(QFocusEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    std::function<bool(const QString&)> takes_;
    std::function<void()> refused_;
};

}  // namespace worksheets
