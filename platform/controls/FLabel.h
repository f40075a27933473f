// The formatted label: plain text with two marks. "|CR|" starts a new line; "|BEFORE:n|" sets the
// space before the paragraphs that follow to n twips.
#pragma once

#include <QLabel>
#include <optional>

#include "platform/controls/WrappedText.h"

class FLabel : public QLabel {
    Q_OBJECT
    Q_PROPERTY(QString Caption READ Caption WRITE SetCaption)

public:
    explicit FLabel(QWidget* parent = nullptr);
    [[nodiscard]] QString Caption() const { return caption_; }
    void SetCaption(const QString& caption);

    // The marks turned into paragraphs.
    static std::vector<platform::WrappedText::Paragraph> Paragraphs(const QString& caption);
    // What a screen reader says: the text without its marks.
    static QString ToPlainText(const QString& caption);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;
    [[nodiscard]] int heightForWidth(int width) const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    [[nodiscard]] const platform::WrappedText& Text() const;

    QString caption_;
    // Measured when it is asked for, and in which font.
    mutable std::optional<platform::WrappedText> text_;
    mutable QFont measured_;
};
