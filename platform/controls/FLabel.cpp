#include "platform/controls/FLabel.h"

#include <QRegularExpression>
#include <vector>

#include "platform/system/Host.h"

namespace {

struct Paragraph {
    QString text;
    int before = 0;  // twips
};

// Cuts the caption at its marks. A paragraph takes the space that is set when its text begins.
std::vector<Paragraph> Paragraphs(const QString& caption) {
    static const QRegularExpression kMark(QStringLiteral("\\|CR\\||\\|BEFORE:(\\d{1,5})\\|"));
    std::vector<Paragraph> result(1);
    int before = 0;
    qsizetype from = 0;
    const auto take = [&](qsizetype to) {
        if (to > from) {
            Paragraph& last = result.back();
            last.before = last.text.isEmpty() ? before : last.before;
            last.text += caption.mid(from, to - from);
        }
    };
    auto marks = kMark.globalMatch(caption);
    while (marks.hasNext()) {
        const QRegularExpressionMatch mark = marks.next();
        take(mark.capturedStart());
        from = mark.capturedEnd();
        if (mark.hasCaptured(1)) {
            before = mark.captured(1).toInt();
        } else {
            result.emplace_back();
        }
    }
    take(caption.size());
    return result;
}

}  // namespace

FLabel::FLabel(QWidget* parent) : QLabel(parent) {
    setTextFormat(Qt::RichText);
    setWordWrap(true);
    setAlignment(Qt::AlignLeft | Qt::AlignTop);
}

void FLabel::SetCaption(const QString& caption) {
    const bool namedByCaption =
        accessibleName().isEmpty() || accessibleName() == ToPlainText(caption_);
    caption_ = caption;
    setText(ToRichText(caption));
    if (namedByCaption) {
        setAccessibleName(ToPlainText(caption));
    }
}

QString FLabel::ToRichText(const QString& caption) {
    QString html;
    for (const Paragraph& paragraph : Paragraphs(caption)) {
        html += QStringLiteral("<p style=\"margin:%1px 0 0 0; white-space:pre-wrap\">%2</p>")
                    .arg(platform::ToPixels(paragraph.before))
                    .arg(paragraph.text.toHtmlEscaped());
    }
    return html;
}

QString FLabel::ToPlainText(const QString& caption) {
    QStringList lines;
    for (const Paragraph& paragraph : Paragraphs(caption)) {
        lines += paragraph.text;
    }
    return lines.join(u'\n');
}
