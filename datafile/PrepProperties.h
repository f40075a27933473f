// The settings in the data file's table "Properties".
#pragma once

#include <QString>

namespace PrepProperties {

// The value, or an empty text when the property is missing.
QString GetProperty(const QString& name);
// Adds the property with this value first when it is missing.
QString GetPropertyWithDefault(const QString& name, const QString& defaultValue);
// Adds or changes; a value that is stored already causes no write.
void SetProperty(const QString& name, const QString& value);

}  // namespace PrepProperties
