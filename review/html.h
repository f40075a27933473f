// A document as one file of HTML that needs nothing else: no scripts, no pictures, no fonts.
#pragma once

#include <string>
#include <string_view>

#include "review/document.h"

namespace review {

std::string HtmlOf(const Document& document);
// A text between tags or quotes: markup escaped, control characters left out.
std::string HtmlText(std::string_view text);

}  // namespace review
