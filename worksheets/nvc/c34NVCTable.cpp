#include "worksheets/nvc/c34NVCTable.h"

#include "datafile/FieldReaders.h"
#include "datafile/PrepDatatables.h"
#include "platform/FirstError.h"
#include "platform/RuntimeError.h"
#include "platform/text/Numbers.h"
#include "worksheets/nvc/RoundSignificant.h"

using PrepDatatables::tblNVCPerAcre;
using ZoneKeys::kFilLevels;
using ZoneKeys::kResources;

namespace {

constexpr int kTotalDigits = 3;

QString FieldOfLevel(int level) {
    return QStringLiteral("Fil%1").arg(level);
}

}  // namespace

std::size_t c34NVCTable::Position(int resource, int level) {
    if (resource < 1 || resource > kResources || level < 1 || level > kFilLevels) {
        throw platform::RuntimeError(platform::kSubscriptOutOfRange,
                                     QStringLiteral("Subscript out of range"));
    }
    return std::size_t(level - 1) * kResources + std::size_t(resource - 1);
}

void c34NVCTable::Initialize(std::int32_t zoneKey, std::int32_t location) {
    fmzRLKey_ = ZoneKeys::FMZRLKey(zoneKey, location);
    for (int resource = 1; resource <= kResources; ++resource) {
        tblNVCPerAcre->Seek("=", {fmzRLKey_, resource});
        for (int level = 1; level <= kFilLevels; ++level) {
            values_[Position(resource, level)] =
                FieldReaders::SingleField(*tblNVCPerAcre, FieldOfLevel(level));
        }
    }
}

float c34NVCTable::NVCCellValue(int resource, int level) const {
    return values_[Position(resource, level)];
}

void c34NVCTable::NVCCellValue(int resource, int level, float value) {
    values_[Position(resource, level)] = value;
    changed_ = true;
}

float c34NVCTable::FilTotal(int level) const {
    float total = 0;
    for (int resource = 1; resource <= kResources; ++resource) {
        // The sum of two singles is exact enough in double that this rounds as single addition.
        total = platform::ToSingle(double{total} + double{NVCCellValue(resource, level)});
    }
    return platform::ToSingle(RoundSignificant(double{total}, kTotalDigits));
}

void c34NVCTable::SaveRow(int resource) const {
    tblNVCPerAcre->Seek("=", {fmzRLKey_, resource});
    tblNVCPerAcre->Edit();
    for (int level = 1; level <= kFilLevels; ++level) {
        tblNVCPerAcre->SetField(FieldOfLevel(level), values_[Position(resource, level)]);
    }
    tblNVCPerAcre->Update();
}

void c34NVCTable::SaveChanges() {
    if (!changed_) {
        return;
    }
    platform::FirstError refused;
    for (int resource = 1; resource <= kResources; ++resource) {
        refused.Try([&] { SaveRow(resource); });
    }
    refused.Rethrow();
    changed_ = false;
}
