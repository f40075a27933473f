#include "worksheets/resources/SRDataSource.h"

#include "datafile/PrepProperties.h"

namespace {

const QString kProperty = QStringLiteral("SRDataSource");

}  // namespace

const QString& SRDataSource::Get() {
    if (value_.isEmpty() && !changed_) {
        value_ = PrepProperties::GetProperty(kProperty);
    }
    return value_;
}

void SRDataSource::Let(const QString& value) {
    value_ = value;
    changed_ = true;
}

void SRDataSource::Save() {
    if (changed_) {
        PrepProperties::SetProperty(kProperty, value_);
        changed_ = false;
    }
}
