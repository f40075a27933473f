// Typed readers of the current record: the empty value when the record set's last seek found
// nothing or the field is null. They never throw for these; an unknown field name is an error
// (3265).
#pragma once

#include <QString>

#include <cstdint>

#include "platform/dao/Recordset.h"

namespace FieldReaders {

QString TextField(const dao::Recordset& records, const QString& field);
std::int32_t LongField(const dao::Recordset& records, const QString& field);
float SingleField(const dao::Recordset& records, const QString& field);

// Begins a new record of a table with a counter, for the caller to fill and to update, and gives
// the key that the record will have.
std::int32_t BeginNew(dao::Recordset& records);

}  // namespace FieldReaders
