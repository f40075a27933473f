// What a zip file holds, to look whether it was written whole.
#pragma once

#include <filesystem>
#include <functional>
#include <string>

namespace review {

// Calls `take` with the name and the content of each member. False when one of them cannot be read
// as it was packed, its checksum included, or when `take` says no.
bool EachZipMember(
    const std::filesystem::path& zip,
    const std::function<bool(const std::string& name, const std::string& content)>& take);

}  // namespace review
