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

std::string WhyNotWritten(std::error_code failed) {
    if (failed == std::errc::no_such_file_or_directory || failed == std::errc::not_a_directory) {
        return "The folder cannot be found.";
    }
    if (failed == std::errc::permission_denied || failed == std::errc::operation_not_permitted ||
        failed == std::errc::read_only_file_system) {
        return "No file may be written in this folder.";
    }
    if (failed == std::errc::no_space_on_device) {
        return "There is no room left on the disk.";
    }
    return "The file cannot be written.";
}

}  // namespace review
