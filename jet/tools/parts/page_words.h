// A stored page in words, whatever it is and however damaged.
#pragma once

#include <string>

#include "jet/schema.h"
#include "page/format.h"
#include "page/types.h"

std::string PageWords(jet::Bytes page, const jet::Format& format, std::uint32_t number);
std::string HexWords(jet::Bytes bytes);
std::string TypeWord(jet::ColumnType type);
