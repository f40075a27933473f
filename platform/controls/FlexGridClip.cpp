#include "platform/controls/FlexGridClip.h"

#include <QRegularExpression>

namespace FlexGridClip {
namespace {

// The parts of a formatted number.
constexpr int kBracketFirst = 1;
constexpr int kSign = 2;
constexpr int kBracketBehindSign = 3;
constexpr int kSignBehindDollar = 4;
constexpr int kDigits = 5;
constexpr int kClosing = 6;

QString Quoted(QString cell) {
    const bool needed =
        cell.contains(u'\t') || cell.contains(u'\n') || cell.contains(u'\r') || cell.contains(u'"');
    if (!needed) {
        return cell;
    }
    return u'"' + cell.replace(QStringLiteral("\""), QStringLiteral("\"\"")) + u'"';
}

class Reader {
public:
    explicit Reader(const QString& text) : text_(text) {}

    Block Read() {
        Block block;
        while (at_ < text_.size()) {
            block.push_back(ReadLine());
        }
        return block;
    }

private:
    QStringList ReadLine() {
        QStringList line;
        for (;;) {
            line += ReadCell();
            if (at_ >= text_.size() || text_[at_] != u'\t') {
                break;
            }
            ++at_;
        }
        if (at_ < text_.size()) {
            const bool pair =
                text_[at_] == u'\r' && at_ + 1 < text_.size() && text_[at_ + 1] == u'\n';
            at_ += pair ? 2 : 1;
        }
        return line;
    }

    QString ReadCell() {
        if (at_ < text_.size() && text_[at_] == u'"') {
            const qsizetype start = at_;
            QString cell;
            if (ReadQuoted(cell)) {
                return cell;
            }
            at_ = start;
        }
        const qsizetype start = at_;
        while (at_ < text_.size() && !EndsCell(text_[at_])) {
            ++at_;
        }
        return text_.mid(start, at_ - start);
    }

    // False when the quotation mark is not one that a spreadsheet wrote.
    bool ReadQuoted(QString& cell) {
        for (++at_; at_ < text_.size(); ++at_) {
            if (text_[at_] != u'"') {
                cell += text_[at_];
            } else if (at_ + 1 < text_.size() && text_[at_ + 1] == u'"') {
                cell += text_[at_++];
            } else {
                ++at_;
                return at_ >= text_.size() || EndsCell(text_[at_]);
            }
        }
        return false;
    }

    static bool EndsCell(QChar c) { return c == u'\t' || c == u'\r' || c == u'\n'; }

    const QString& text_;
    qsizetype at_ = 0;
};

}  // namespace

QString ToText(const Block& block) {
    if (block.size() == 1 && block.front().size() == 1) {
        return block.front().front();
    }
    QString text;
    for (const QStringList& row : block) {
        QStringList cells;
        for (const QString& cell : row) {
            cells += Quoted(cell);
        }
        text += cells.join(u'\t') + QStringLiteral("\r\n");
    }
    return text;
}

Block FromText(const QString& text) {
    return Reader(text).Read();
}

QString PlainNumber(const QString& text) {
    static const QRegularExpression kFormatted(
        QStringLiteral("^(\\()?\\s*([-+\u2212]?)\\s*\\$?\\s*(\\()?\\s*([-\u2212]?)"
                       "((?:\\d{1,3}(?:,\\d{3})+|\\d+)?(?:\\.\\d*)?)\\s*(\\))?$"));
    const QRegularExpressionMatch match = kFormatted.match(text.trimmed());
    const auto has = [&match](int part) { return !match.captured(part).isEmpty(); };
    QString digits = match.captured(kDigits).remove(u',');
    const bool opened = has(kBracketFirst) || has(kBracketBehindSign);
    if (opened != has(kClosing) || (has(kBracketFirst) && has(kBracketBehindSign)) ||
        digits.isEmpty() || digits == QLatin1String(".")) {
        return text;
    }
    const bool minus = opened || (has(kSign) && match.captured(kSign) != QLatin1String("+")) ||
                       has(kSignBehindDollar);
    return minus ? u'-' + digits : digits;
}

}  // namespace FlexGridClip
