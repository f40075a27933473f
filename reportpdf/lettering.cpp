#include "reportpdf/lettering.h"

#include <QFont>
#include <QGlyphRun>
#include <QPainter>
#include <QRawFont>
#include <QTextLayout>
#include <array>
#include <cmath>
#include <stdexcept>

#include "season/text.h"

namespace reportpdf {

namespace {

// Fonts are measured at this size, where nothing is rounded to pixels.
constexpr double kMeasured = 256;
// Latin, Greek and Cyrillic letters and the usual signs, which need no shaping.
constexpr char32_t kTableEnd = 0x2200;

QFont FontOf(Face face, double pixels) {
    QFont font;
    font.setFamilies({QStringLiteral("Liberation Sans"), QStringLiteral("Arial"),
                      QStringLiteral("Helvetica"), QStringLiteral("DejaVu Sans")});
    font.setStyleHint(QFont::SansSerif);
    font.setHintingPreference(QFont::PreferNoHinting);
    font.setBold(face == Face::kBold);
    font.setPixelSize(static_cast<int>(pixels));
    return font;
}

bool NeedsNoShaping(char16_t unit) {
    return (unit >= 0x20 && unit < 0x7f) || (unit >= 0xa0 && unit < 0x250 && unit != 0xad) ||
           (unit >= 0x370 && unit < 0x483) || (unit >= 0x48a && unit < 0x530) ||
           (unit >= 0x2010 && unit < 0x2028) || (unit >= 0x2030 && unit < 0x205f) ||
           (unit >= 0x20a0 && unit < 0x20c0) || unit == 0x2122;
}

// The glyphs of a face and their widths.
class Typeface {
public:
    explicit Typeface(Face face) : raw_(QRawFont::fromFont(FontOf(face, kMeasured))) {
        QString all;
        for (char16_t unit = 0x20; unit < kTableEnd; ++unit) {
            if (NeedsNoShaping(unit)) {
                all += QChar(unit);
            }
        }
        const QList<quint32> glyphs = raw_.glyphIndexesForString(all);
        const QList<QPointF> advances = raw_.advancesForGlyphIndexes(glyphs);
        for (qsizetype i = 0; i < glyphs.size() && glyphs.size() == all.size(); ++i) {
            glyphs_[all[i].unicode()] = glyphs[i];
            widths_[all[i].unicode()] = static_cast<float>(advances[i].x() / kMeasured);
        }
    }
    // Where no font is installed, Qt draws the same box for each letter.
    [[nodiscard]] bool IsUsable() const {
        return raw_.isValid() && glyphs_['0'] != 0 && glyphs_['0'] != glyphs_['1'];
    }
    [[nodiscard]] bool HasAll(const QString& line) const {
        for (const QChar unit : line) {
            if (unit.unicode() >= kTableEnd || glyphs_[unit.unicode()] == 0) {
                return false;
            }
        }
        return true;
    }
    [[nodiscard]] quint32 Glyph(QChar unit) const { return glyphs_[unit.unicode()]; }
    // As a part of the font's size.
    [[nodiscard]] double Width(QChar unit) const { return widths_[unit.unicode()]; }
    [[nodiscard]] QRawFont Raw(double size) const {
        QRawFont font = raw_;
        font.setPixelSize(size);
        return font;
    }

private:
    QRawFont raw_;
    std::array<quint32, kTableEnd> glyphs_{};
    std::array<float, kTableEnd> widths_{};
};

const Typeface& Of(Face face) {
    static const Typeface plain(Face::kPlain);
    static const Typeface bold(Face::kBold);
    return face == Face::kBold ? bold : plain;
}

void Shape(QTextLayout& layout) {
    layout.setCacheEnabled(true);
    layout.beginLayout();
    layout.createLine().setLineWidth(1e7);
    layout.endLayout();
}

QString Clean(std::string_view text) {
    QString line = QString::fromUtf8(season::WellFormed(text));
    line.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    line.replace(u'\r', u'\n').replace(QChar::LineSeparator, u'\n');
    line.replace(QChar::ParagraphSeparator, u'\n').replace(u'\t', u' ');
    line.removeIf(
        [](QChar unit) { return unit != u'\n' && unit.category() == QChar::Other_Control; });
    return line;
}

// How many units of a word that is too wide fit, at least one letter.
qsizetype FittingUnits(const QString& word, Style style, double limit) {
    qsizetype fits = 1;
    qsizetype tooMany = word.size();
    while (tooMany - fits > 1) {
        const qsizetype tried = (fits + tooMany) / 2;
        (WidthOf(word.left(tried), style) <= limit ? fits : tooMany) = tried;
    }
    // No letter of two units is torn.
    return word[fits - 1].isHighSurrogate() ? fits + 1 : fits;
}

// Takes whole words until the width is full. What is wider than a line is broken anywhere.
void Break(const QString& line, Style style, double width, std::vector<QString>& lines) {
    const double limit = width + 1e-6;
    if (WidthOf(line, style) <= limit) {
        lines.push_back(line);
        return;
    }
    QString taken;
    for (const QString& word : line.split(u' ')) {
        const QString longer = taken.isEmpty() ? word : taken + u' ' + word;
        if (WidthOf(longer, style) <= limit) {
            taken = longer;
            continue;
        }
        if (!taken.isEmpty()) {
            lines.push_back(taken);
        }
        taken = word;
        while (taken.size() > 1 && WidthOf(taken, style) > limit) {
            const qsizetype fits = FittingUnits(taken, style, limit);
            lines.push_back(taken.left(fits));
            taken = taken.mid(fits);
        }
    }
    if (!taken.isEmpty()) {
        lines.push_back(taken);
    }
}

}  // namespace

QString CleanLine(std::string_view text) {
    QString line = Clean(text);
    line.replace(u'\n', u' ');
    return line;
}

double WidthOf(const QString& line, Style style) {
    const Typeface& face = Of(style.face);
    if (face.HasAll(line)) {
        double width = 0;
        for (const QChar unit : line) {
            width += face.Width(unit);
        }
        return width * style.size;
    }
    QTextLayout layout(line, FontOf(style.face, kMeasured));
    Shape(layout);
    return layout.lineAt(0).naturalTextWidth() / kMeasured * style.size;
}

double LineHeight(Style style) {
    return style.size * 1.25;
}

double BaseBelowMiddle(Style style) {
    return style.size * 0.36;
}

std::vector<QString> LinesOf(std::string_view text, Style style, double width) {
    std::vector<QString> lines;
    for (const QString& line : Clean(text).split(u'\n')) {
        Break(line, style, width, lines);
    }
    while (lines.size() > 1 && lines.back().isEmpty()) {
        lines.pop_back();
    }
    if (lines.empty()) {
        lines.emplace_back();
    }
    return lines;
}

double WidestWord(std::string_view text, Style style) {
    double widest = 0;
    for (const QString& word : CleanLine(text).split(u' ')) {
        widest = std::max(widest, WidthOf(word, style));
    }
    return widest;
}

QString Elided(const QString& line, Style style, double width) {
    if (WidthOf(line, style) <= width) {
        return line;
    }
    QString kept = line;
    while (!kept.isEmpty() && WidthOf(kept + QChar(0x2026), style) > width) {
        kept.chop(1);
    }
    return kept + QChar(0x2026);
}

void RequireFonts() {
    if (!Of(Face::kPlain).IsUsable() || !Of(Face::kBold).IsUsable()) {
        throw std::runtime_error("No font is installed that the report could be set in.");
    }
}

void Letters::Add(QPointF at, const QString& line, Style style) {
    const Typeface& face = Of(style.face);
    if (!face.HasAll(line)) {
        AddShaped(at, line, style);
        return;
    }
    if (!(style == style_)) {
        Flush();
        style_ = style;
    }
    for (const QChar unit : line) {
        glyphs_.push_back(face.Glyph(unit));
        places_.push_back(at);
        at.rx() += face.Width(unit) * style.size;
    }
}

void Letters::AddShaped(QPointF at, const QString& line, Style style) {
    Flush();
    QTextLayout layout(line, FontOf(style.face, kMeasured));
    Shape(layout);
    const double scale = style.size / kMeasured;
    painter_.save();
    painter_.translate(at);
    painter_.scale(scale, scale);
    layout.draw(&painter_, QPointF(0, -layout.lineAt(0).ascent()));
    painter_.restore();
}

void Letters::Flush() {
    if (glyphs_.empty()) {
        return;
    }
    QGlyphRun run;
    run.setRawFont(Of(style_.face).Raw(style_.size));
    run.setRawData(glyphs_.data(), places_.data(), static_cast<int>(glyphs_.size()));
    painter_.drawGlyphRun(QPointF(0, 0), run);
    glyphs_.clear();
    places_.clear();
}

}  // namespace reportpdf
