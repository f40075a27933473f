#include "datafile/u14libProperties.h"

#include "datafile/FieldReaders.h"

namespace u14libProperties {

namespace {

const QString kProperty = QStringLiteral("Property");
const QString kValue = QStringLiteral("Value");

void Add(dao::Recordset& properties, const QString& name, const QString& value) {
    properties.AddNew();
    properties.SetField(kProperty, name);
    properties.SetField(kValue, value);
    properties.Update();
}

}  // namespace

QString Read(dao::Recordset& properties, const QString& name) {
    properties.Seek("=", {name});
    return FieldReaders::TextField(properties, kValue);
}

QString ReadWithDefault(dao::Recordset& properties, const QString& name,
                        const QString& defaultValue) {
    properties.Seek("=", {name});
    if (properties.NoMatch()) {
        Add(properties, name, defaultValue);
        properties.Seek("=", {name});
    }
    return FieldReaders::TextField(properties, kValue);
}

void Write(dao::Recordset& properties, const QString& name, const QString& value) {
    properties.Seek("=", {name});
    if (properties.NoMatch()) {
        Add(properties, name, value);
        return;
    }
    if (properties.Text(kValue) == value) {
        return;
    }
    properties.Edit();
    properties.SetField(kValue, value);
    properties.Update();
}

}  // namespace u14libProperties
