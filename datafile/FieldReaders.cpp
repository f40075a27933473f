#include "datafile/FieldReaders.h"

namespace FieldReaders {

QString TextField(const dao::Recordset& records, const QString& field) {
    return records.NoMatch() ? QString() : records.Text(field);
}

std::int32_t LongField(const dao::Recordset& records, const QString& field) {
    return records.NoMatch() ? 0 : records.Long(field);
}

float SingleField(const dao::Recordset& records, const QString& field) {
    return records.NoMatch() ? 0.0F : records.Single(field);
}

}  // namespace FieldReaders
