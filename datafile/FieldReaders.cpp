#include "datafile/FieldReaders.h"

#include "datafile/FieldNames.h"

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

std::int32_t BeginNew(dao::Recordset& records) {
    records.AddNew();
    return records.Long(FieldNames::kKey);
}

}  // namespace FieldReaders
