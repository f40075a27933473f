#include "platform/controls/WrappedText.h"

#include <QPainter>
#include <QTextLayout>
#include <algorithm>
#include <cmath>

namespace platform {

WrappedText::WrappedText(const std::vector<Paragraph>& paragraphs, const QFont& font) {
    for (const Paragraph& paragraph : paragraphs) {
        Measure(paragraphs_.emplace_back(Measured{paragraph, {}}), font);
    }
    if (!paragraphs_.empty()) {
        paragraphs_.front().paragraph.before = 0;
    }
}

// Lines break after blanks; those before a word belong to it, so that indents are kept.
void WrappedText::Measure(Measured& measured, const QFont& font) {
    const QString& text = measured.paragraph.text;
    QTextLayout layout(text, font);
    QTextOption option;
    option.setWrapMode(QTextOption::NoWrap);
    option.setFlags(QTextOption::IncludeTrailingSpaces);
    layout.setTextOption(option);
    layout.beginLayout();
    QTextLine line = layout.createLine();
    line.setLeadingIncluded(true);
    layout.endLayout();
    lineHeight_ = line.height();
    ascent_ = line.ascent();
    qsizetype from = 0;
    do {
        qsizetype end = from;
        const bool indented = from == 0;
        while (indented && end < text.size() && text[end] == u' ') {
            ++end;
        }
        while (end < text.size() && text[end] != u' ') {
            ++end;
        }
        measured.words.push_back({from, end, line.cursorToX(static_cast<int>(from)),
                                  line.cursorToX(static_cast<int>(end))});
        from = end;
        while (from < text.size() && text[from] == u' ') {
            ++from;
        }
    } while (from < text.size());
}

int WrappedText::WidestWord() const {
    double widest = 0;
    for (const Measured& measured : paragraphs_) {
        for (const Word& word : measured.words) {
            widest = std::max(widest, word.right - word.left);
        }
    }
    return static_cast<int>(std::ceil(widest));
}

int WrappedText::WidestParagraph() const {
    double widest = 0;
    for (const Measured& measured : paragraphs_) {
        widest = std::max(widest, measured.words.back().right);
    }
    return static_cast<int>(std::ceil(widest));
}

int WrappedText::HeightFor(int width) const {
    double height = 0;
    for (const Measured& measured : paragraphs_) {
        height += measured.paragraph.before;
        Break(measured, width, [&](const Word&, const Word&) { height += lineHeight_; });
    }
    return static_cast<int>(std::ceil(height));
}

void WrappedText::Paint(QPainter& painter, const QRect& room) const {
    double top = room.top();
    for (const Measured& measured : paragraphs_) {
        top += measured.paragraph.before;
        Break(measured, room.width(), [&](const Word& first, const Word& last) {
            painter.drawText(QPointF(room.left(), top + ascent_),
                             measured.paragraph.text.mid(first.from, last.end - first.from));
            top += lineHeight_;
        });
    }
}

void WrappedText::Break(const Measured& measured, int width, const Line& line) {
    const Word* first = &measured.words.front();
    const Word* last = first;
    for (const Word& word : measured.words) {
        if (&word != first && word.right - first->left > width) {
            line(*first, *last);
            first = &word;
        }
        last = &word;
    }
    line(*first, *last);
}

}  // namespace platform
