#include "worksheets/goals/LineBreaks.h"

namespace {

constexpr QChar kReturn{u'\r'};
constexpr QChar kLineFeed{u'\n'};

bool IsBreak(QChar character) {
    // Text boxes end their paragraphs with the paragraph separator.
    return character == kReturn || character == kLineFeed ||
           character == QChar(QChar::ParagraphSeparator);
}

}  // namespace

namespace LineBreaks {

QString ForFile(const QString& text) {
    QString result;
    result.reserve(text.size());
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (!IsBreak(text[i])) {
            result += text[i];
            continue;
        }
        if (text[i] == kReturn && i + 1 < text.size() && text[i + 1] == kLineFeed) {
            ++i;
        }
        result += kReturn;
        result += kLineFeed;
    }
    return result;
}

}  // namespace LineBreaks
