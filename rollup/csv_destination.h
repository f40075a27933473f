// A roll-up in a folder of compressed CSV files.
#pragma once

#include <memory>
#include <string>

#include "rollup/destination.h"

namespace rollup {

std::unique_ptr<Destination> OpenCsv(const std::string& folder, const Waiting& waiting);

}  // namespace rollup
