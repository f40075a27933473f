#include "datafile/u14libProperties.h"

#include "datafile/FieldNames.h"
#include "datafile/FieldReaders.h"

namespace u14libProperties {

namespace {

void Add(dao::Recordset& properties, const QString& name, const QString& value) {
    properties.AddNew();
    properties.SetField(FieldNames::kProperty, name);
    properties.SetField(FieldNames::kValue, value);
    properties.Update();
}

}  // namespace

QString Read(dao::Recordset& properties, const QString& name) {
    properties.Seek("=", {name});
    return FieldReaders::TextField(properties, FieldNames::kValue);
}

QString ReadWithDefault(dao::Recordset& properties, const QString& name,
                        const QString& defaultValue) {
    properties.Seek("=", {name});
    if (properties.NoMatch()) {
        Add(properties, name, defaultValue);
        properties.Seek("=", {name});
    }
    return FieldReaders::TextField(properties, FieldNames::kValue);
}

void Write(dao::Recordset& properties, const QString& name, const QString& value) {
    properties.Seek("=", {name});
    if (properties.NoMatch()) {
        Add(properties, name, value);
        return;
    }
    if (properties.Text(FieldNames::kValue) == value) {
        return;
    }
    properties.Edit();
    properties.SetField(FieldNames::kValue, value);
    properties.Update();
}

}  // namespace u14libProperties
