// The tables of an assessment file, as far as an import reads them.
#pragma once

#include <vector>

#include "jet/schema.h"

namespace tools {

std::vector<jet::TableSchema> AssessmentTables();

}  // namespace tools
