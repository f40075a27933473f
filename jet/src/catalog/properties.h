// The properties of a table and its columns, kept as one long value of the catalog row.
//
//   signature | chunk | chunk | ...
//
// signature   "KKD" (Jet 3) or "MR2" (Jet 4) and a zero byte
// chunk       u32 length, u16 kind, contents; the length counts these six bytes
// kind 80     the names: u16 length and text, one after the other, numbered from 0
// kind 0, 1   the properties of the table, of a column: u32 length of the owner part, u16 length
//             and text of the owner's name, then for each property u16 length (8 more than the
//             value), u8 flag, u8 type, u16 number of the name, u16 length of the value, the value
#pragma once

#include <vector>

#include "jet/schema.h"
#include "page/types.h"
#include "table/definition.h"

namespace jet {

// Notes what the properties say about the columns. Contents that make no sense are passed over: no
// row is read differently for them.
void ApplyProperties(Bytes stored, Definition& definition);

// The stored form of what the schema asks for beyond the usual; empty when it asks for nothing.
std::vector<std::byte> BuildProperties(const TableSchema& schema, Version version);

}  // namespace jet
