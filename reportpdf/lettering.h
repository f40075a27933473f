// Measuring texts and breaking them into lines, and drawing them on a page.
//
// Figures and Western texts are set glyph by glyph from tables of widths, which is many times
// faster than Qt's text layout; all other texts go through that.
#pragma once

#include <QPointF>
#include <QString>
#include <string>
#include <string_view>
#include <vector>

class QPainter;
class QColor;

namespace reportpdf {

enum class Face { kPlain, kBold };

struct Style {
    Face face = Face::kPlain;
    double size = 9;  // points
    bool operator==(const Style&) const = default;
};

// The text without control characters; line ends and tabs become blanks.
QString CleanLine(std::string_view text);
double WidthOf(const QString& line, Style style);
// From the base line of one line to that of the next.
double LineHeight(Style style);
// How far above the middle of a line its base line lies below it: half the height of a capital.
double BaseBelowMiddle(Style style);
// The lines of a text in a column of this width, broken at its line ends and between words; words
// that are wider than the column are broken too. At least one line.
std::vector<QString> LinesOf(std::string_view text, Style style, double width);
// How wide the widest word is.
double WidestWord(std::string_view text, Style style);
// The line, shortened with an ellipsis where it is wider.
QString Elided(const QString& line, Style style, double width);

// Throws std::runtime_error where no font is installed.
void RequireFonts();

// Draws texts in points; those in one style that follow each other are drawn at once, so that Flush
// must be called at the end and before the painter's state changes.
class Letters {
public:
    explicit Letters(QPainter& painter) : painter_(painter) {}
    Letters(const Letters&) = delete;
    Letters& operator=(const Letters&) = delete;
    ~Letters() { Flush(); }
    // `at` is where the base line begins.
    void Add(QPointF at, const QString& line, Style style);
    void Flush();

private:
    void AddShaped(QPointF at, const QString& line, Style style);

    QPainter& painter_;
    Style style_;
    std::vector<quint32> glyphs_;
    std::vector<QPointF> places_;
};

}  // namespace reportpdf
