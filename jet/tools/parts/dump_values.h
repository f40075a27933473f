// Values as the reference dumps write them.
#pragma once

#include <string>
#include <string_view>

#include "jet/value.h"

// A text in quotes.
std::string Quoted(std::u16string_view text);
std::string QuotedName(std::string_view utf8);

std::string DumpValue(const jet::Value& value);
