// What a zip file holds, to look whether it was written whole.
#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace review {

// Calls `take` with the name and the content of each member. False when the file is damaged, or
// when `take` says no.
bool EachZipMember(std::string_view zip,
                   const std::function<bool(std::string_view name, const std::string&)>& take);

}  // namespace review
