// Small routines that several worksheets share.
#pragma once

#include <QString>

namespace u92Utilities {

// Asks "Do you really want to delete " and the item's name; true only for Yes. No is the default.
bool ConfirmDelete(const QString& itemName);

}  // namespace u92Utilities
