// Definitions found by their pages, where no catalog leads to them.
#pragma once

#include <cstdint>
#include <vector>

#include "check/account.h"

namespace jet {

// Definition pages without a user that no other definition goes on to, in rising order.
std::vector<std::uint32_t> LoneDefinitions(const PageSource& pages, const PageAccount& account);

// True when the whole definition that begins there makes sense.
bool IsWholeDefinition(const PageSource& pages, const Format& format, std::uint32_t page);

}  // namespace jet
