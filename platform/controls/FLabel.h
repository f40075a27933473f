// The formatted label: plain text with two marks. "|CR|" starts a new line; "|BEFORE:n|" sets the
// space before the paragraphs that follow to n twips.
#pragma once

#include <QLabel>

class FLabel : public QLabel {
    Q_OBJECT
    Q_PROPERTY(QString Caption READ Caption WRITE SetCaption)

public:
    explicit FLabel(QWidget* parent = nullptr);
    [[nodiscard]] QString Caption() const { return caption_; }
    void SetCaption(const QString& caption);

    // The marks turned into rich text; data characters are escaped.
    static QString ToRichText(const QString& caption);
    // What a screen reader says: the text without its marks.
    static QString ToPlainText(const QString& caption);

private:
    QString caption_;
};
