// What is said under the list of zones after an import.
#pragma once

#include <QString>

#include "import/mImport.h"

namespace ImportNote {

// "2 zones with 5 locations were imported. ..."
[[nodiscard]] QString Text(const mImport::Imported& imported);

}  // namespace ImportNote
