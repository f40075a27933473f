// A line edit that tells when it gets the focus and can refuse typed keys.
#pragma once

#include <QLineEdit>

#include <functional>

class TextBox : public QLineEdit {
    Q_OBJECT

public:
    using QLineEdit::QLineEdit;

    // Asked with the text of each typed key; the key is discarded when the answer is no. Pasting
    // is not typing.
    void SetKeyFilter(std::function<bool(const QString&)> takes) { takes_ = std::move(takes); }

signals:
    void GotFocus();  // after the box has set its own selection

protected:
    void focusInEvent(QFocusEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    std::function<bool(const QString&)> takes_;
};
