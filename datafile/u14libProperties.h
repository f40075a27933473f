// Named settings in any table with the text fields "Property" and "Value", opened with its index
// set to the one on "Property".
#pragma once

#include <QString>

#include "platform/dao/Recordset.h"

namespace u14libProperties {

// The value, or an empty text when the property is missing or null.
QString Read(dao::Recordset& properties, const QString& name);
// Adds the property with this value first when it is missing.
QString ReadWithDefault(dao::Recordset& properties, const QString& name,
                        const QString& defaultValue);
// Adds or changes; a value that is stored already causes no write.
void Write(dao::Recordset& properties, const QString& name, const QString& value);

}  // namespace u14libProperties
