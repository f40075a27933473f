#include "review/wording.h"

#include "season/text.h"

namespace review {

std::string OnOneLine(std::string_view text, Backslash backslash) {
    std::string line;
    for (const char c : season::WellFormed(text)) {
        const auto code = static_cast<unsigned char>(c);
        if (c == '\\' && backslash == Backslash::kDoubled) {
            line += "\\\\";
        } else if (c == '\t') {
            line += "\\t";
        } else if (c == '\n') {
            line += "\\n";
        } else if (c == '\r') {
            line += "\\r";
        } else {
            line += code < 0x20 || code == 0x7F ? '?' : c;
        }
    }
    return line;
}

}  // namespace review
