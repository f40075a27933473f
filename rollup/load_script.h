// The script that tells DuckDB what the files of a CSV roll-up hold.
#pragma once

#include <filesystem>
#include <string>

namespace rollup {

// A view for each table, with its types, and the views that answer the usual questions.
std::string LoadScript(const std::filesystem::path& folder);

}  // namespace rollup
