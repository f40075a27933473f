// The door of the library tarnpdf, through which a program without Qt makes a PDF.
//
// The library is loaded when a PDF is asked for: Qt's libraries would make every start longer.
#pragma once

#include <string>

#include "review/document.h"

namespace reportpdf {

// What the library exports under the name kMakePdf. Gives whether `result` is the PDF; if not, it
// is a sentence that says why.
using MakePdf = bool (*)(const review::Document& document, bool isLetter, std::string& result);

inline constexpr const char* kLibrary = "tarnpdf";
inline constexpr const char* kMakePdf = "TarnMakePdf";

}  // namespace reportpdf
