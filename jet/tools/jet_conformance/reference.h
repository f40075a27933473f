// The reference dump beside a file.
#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

struct Reference {
    bool refused = false;  // enciphered or with a password: the engine must refuse the file
    std::map<std::string, std::vector<std::string>> tables;  // lines by the name's JSON text
};

// Nothing when there is no dump. What the engine has no notion of is left out: linked tables, and
// the order of the columns' blocks.
std::optional<Reference> ReadReference(const std::filesystem::path& dump);
