#include "platform/controls/FLabel.h"

#include <QPainter>
#include <algorithm>
#include <cmath>

#include "platform/system/Twips.h"

using platform::WrappedText;

namespace {

// A label of many words is given about this shape when nothing else decides it.
constexpr double kWidthToHeight = 5.0 / 3.0;
constexpr int kMostLetters = 80;  // in a line

const QLatin1String kNewLineMark("|CR|");
const QLatin1String kBeforeMark("|BEFORE:");
constexpr qsizetype kMostDigits = 5;

struct Mark {
    qsizetype length = 0;  // 0: there is none
    std::optional<int> twips;
};

Mark MarkAt(const QString& caption, qsizetype at) {
    const QStringView rest = QStringView(caption).mid(at);
    if (rest.startsWith(kNewLineMark)) {
        return {kNewLineMark.size(), {}};
    }
    if (!rest.startsWith(kBeforeMark)) {
        return {};
    }
    const QStringView number = rest.mid(kBeforeMark.size(), kMostDigits + 1);
    const qsizetype digits = number.indexOf(u'|');
    const auto isDigit = [](QChar c) { return c >= u'0' && c <= u'9'; };
    if (digits < 1 || !std::all_of(number.begin(), number.begin() + digits, isDigit)) {
        return {};
    }
    return {kBeforeMark.size() + digits + 1, number.left(digits).toInt()};
}

}  // namespace

FLabel::FLabel(QWidget* parent) : QLabel(parent) {
    setTextFormat(Qt::PlainText);
    setWordWrap(true);
    setAlignment(Qt::AlignLeft | Qt::AlignTop);
}

void FLabel::SetCaption(const QString& caption) {
    const bool namedByCaption =
        accessibleName().isEmpty() || accessibleName() == ToPlainText(caption_);
    caption_ = caption;
    text_.reset();
    setText(ToPlainText(caption));
    if (namedByCaption) {
        setAccessibleName(ToPlainText(caption));
    }
}

// Cuts the caption at its marks. A paragraph takes the space that is set when its text begins.
std::vector<WrappedText::Paragraph> FLabel::Paragraphs(const QString& caption) {
    std::vector<WrappedText::Paragraph> result(1);
    int before = 0;
    for (qsizetype at = 0; at < caption.size();) {
        const Mark mark = MarkAt(caption, at);
        if (mark.length == 0) {
            WrappedText::Paragraph& last = result.back();
            last.before = last.text.isEmpty() ? before : last.before;
            last.text += caption[at++];
            continue;
        }
        at += mark.length;
        if (mark.twips) {
            before = platform::ToPixels(*mark.twips);
        } else {
            result.emplace_back();
        }
    }
    return result;
}

QString FLabel::ToPlainText(const QString& caption) {
    QStringList lines;
    for (const WrappedText::Paragraph& paragraph : Paragraphs(caption)) {
        lines += paragraph.text;
    }
    return lines.join(u'\n');
}

QSize FLabel::sizeHint() const {
    const WrappedText& text = Text();
    const int most =
        std::min(text.WidestParagraph(), kMostLetters * fontMetrics().horizontalAdvance(u'x'));
    const double area = double(most) * text.HeightFor(most);
    const int width = std::clamp(static_cast<int>(std::sqrt(area * kWidthToHeight)),
                                 std::min(text.WidestWord(), most), most);
    return {width, text.HeightFor(width)};
}

QSize FLabel::minimumSizeHint() const {
    const WrappedText& text = Text();
    return {text.WidestWord(), std::min(text.HeightFor(QWIDGETSIZE_MAX), sizeHint().height())};
}

int FLabel::heightForWidth(int width) const {
    return Text().HeightFor(width);
}

void FLabel::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setPen(palette().color(foregroundRole()));
    Text().Paint(painter, contentsRect());
}

// Font changes are announced more often than fonts change.
const WrappedText& FLabel::Text() const {
    ensurePolished();
    if (!text_ || measured_ != font()) {
        measured_ = font();
        text_.emplace(Paragraphs(caption_), measured_);
    }
    return *text_;
}
