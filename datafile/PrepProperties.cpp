#include "datafile/PrepProperties.h"

#include "base/u91Trace.h"
#include "datafile/PrepDatatables.h"
#include "datafile/u14libProperties.h"

using PrepDatatables::tblProperties;

namespace PrepProperties {

QString GetProperty(const QString& name) {
    u91Trace::Procedure(QStringLiteral("PrepProperties.GetProperty ") + name);
    return u14libProperties::Read(*tblProperties, name);
}

QString GetPropertyWithDefault(const QString& name, const QString& defaultValue) {
    u91Trace::Procedure(QStringLiteral("PrepProperties.GetPropertyWithDefault ") + name);
    return u14libProperties::ReadWithDefault(*tblProperties, name, defaultValue);
}

void SetProperty(const QString& name, const QString& value) {
    u91Trace::Procedure(QStringLiteral("PrepProperties.SetProperty ") + name);
    u14libProperties::Write(*tblProperties, name, value);
}

}  // namespace PrepProperties
