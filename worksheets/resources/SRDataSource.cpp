#include "worksheets/resources/SRDataSource.h"

#include "base/u91Trace.h"
#include "datafile/PrepProperties.h"

namespace {

const QString kProperty = QStringLiteral("SRDataSource");

}  // namespace

const QString& SRDataSource::Get() {
    u91Trace::Procedure(QStringLiteral("frm3SRMaster.SRDataSource Get"));
    if (value_.isEmpty() && !changed_) {
        value_ = PrepProperties::GetProperty(kProperty);
    }
    return value_;
}

void SRDataSource::Let(const QString& value) {
    u91Trace::Procedure(QStringLiteral("frm3SRMaster.SRDataSource Let"));
    value_ = value;
    changed_ = true;
}

void SRDataSource::Save() {
    u91Trace::Procedure(QStringLiteral("frm3SRMaster.SRDataSource Save"));
    if (changed_) {
        PrepProperties::SetProperty(kProperty, value_);
        changed_ = false;
    }
}
