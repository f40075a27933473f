// From the description of a new table to its definition, as far as it does not depend on the file.
#pragma once

#include "jet/schema.h"
#include "table/definition.h"

namespace jet {

// Errors: kBadName, kAlreadyExists (a column or index twice), kNoSuchField (in an index),
// kUnsupported.
Definition DefinitionOf(const TableSchema& schema, Version version);
// kUnsupported for an index on columns that have no keys.
void RequireIndexable(const Definition& definition);
// kRecordTooLarge when not even a record without any text would fit.
void RequireRowFits(const Definition& definition, const Format& format);

// What an existing table is made of.
TableSchema SchemaOf(const std::string& name, const Definition& definition);

}  // namespace jet
