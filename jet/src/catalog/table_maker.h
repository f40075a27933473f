// The pages of a new table: definition, maps and empty indexes.
#pragma once

#include "page/operation.h"
#include "table/definition.h"

namespace jet {

// Gives the columns of a new table their numbers and places, in order.
void PlaceColumns(Definition& definition, const FileHeader& header);
// Makes maps and index roots for a definition whose page is allocated, and writes it.
void MakeTablePages(Operation& operation, Definition& definition);
// Puts the logical indexes into the order of their names.
void SortIndexNames(Definition& definition);

}  // namespace jet
