// Words of findings and differences as lines of a terminal or a file.
#pragma once

#include <string>
#include <string_view>
#include <system_error>

namespace review {

// A place in parts: "Wet Prairie, location 2, Forage, FIL 3".
class PlaceWords {
public:
    void Add(const std::string& part) { words_ += (words_.empty() ? "" : ", ") + part; }
    [[nodiscard]] std::string Text() && { return std::move(words_); }

private:
    std::string words_;
};

enum class Backslash { kKept, kDoubled };

// The text on one line: tabs and line ends as \t, \n and \r. Nothing that a file holds may steer a
// terminal: other control characters are question marks.
std::string OnOneLine(std::string_view text, Backslash backslash = Backslash::kKept);

// Why a file could not be written, as a sentence.
std::string WhyNotWritten(std::error_code failed);

}  // namespace review
