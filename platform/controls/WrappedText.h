// Paragraphs of plain text that are wrapped to a width.
//
// Layouts ask a label for its height at many widths before they settle. Each paragraph is therefore
// shaped once for a font; where its lines break at a width is only arithmetic then.
#pragma once

#include <QFont>
#include <QString>
#include <functional>
#include <vector>

class QPainter;

namespace platform {

class WrappedText {
public:
    struct Paragraph {
        QString text;
        int before = 0;  // the space between it and the one above, in pixels
    };

    WrappedText() = default;
    WrappedText(const std::vector<Paragraph>& paragraphs, const QFont& font);

    [[nodiscard]] int WidestWord() const;
    [[nodiscard]] int WidestParagraph() const;  // on one line
    [[nodiscard]] int HeightFor(int width) const;
    void Paint(QPainter& painter, const QRect& room) const;

private:
    struct Word {
        qsizetype from = 0;
        qsizetype end = 0;
        double left = 0;  // where it begins and ends when the paragraph is one line
        double right = 0;
    };
    struct Measured {
        Paragraph paragraph;
        std::vector<Word> words;
    };

    void Measure(Measured& measured, const QFont& font);
    // Calls `line` with the first and the last word of each line.
    using Line = std::function<void(const Word& first, const Word& last)>;
    static void Break(const Measured& measured, int width, const Line& line);

    std::vector<Measured> paragraphs_;
    double lineHeight_ = 0;
    double ascent_ = 0;
};

}  // namespace platform
