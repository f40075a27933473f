#include "worksheets/nvc/c34NVCTable.h"

#include <QCoreApplication>
#include <QStringList>

#include "base/u91Trace.h"
#include "datafile/FieldReaders.h"
#include "datafile/PrepDatatables.h"
#include "platform/RuntimeError.h"
#include "platform/text/Numbers.h"
#include "worksheets/MissingRows.h"
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
    u91Trace::Procedure(QStringLiteral("c34NVCTable.Initialize"));
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
    u91Trace::Procedure(QStringLiteral("c34NVCTable.NVCCellValue"));
    return Value(resource, level);
}

void c34NVCTable::NVCCellValue(int resource, int level, float value) {
    u91Trace::Procedure(QStringLiteral("c34NVCTable.NVCCellValue"));
    values_[Position(resource, level)] = value;
    changed_ = true;
}

float c34NVCTable::Value(int resource, int level) const {
    return values_[Position(resource, level)];
}

float c34NVCTable::FilTotal(int level) const {
    u91Trace::Procedure(QStringLiteral("c34NVCTable.FilTotal"));
    float total = 0;
    for (int resource = 1; resource <= kResources; ++resource) {
        // The sum of two singles is exact enough in double that this rounds as single addition.
        total = platform::ToSingle(double{total} + double{Value(resource, level)});
    }
    return platform::ToSingle(RoundSignificant(double{total}, kTotalDigits));
}

bool c34NVCTable::SaveRow(int resource) const {
    tblNVCPerAcre->Seek("=", {fmzRLKey_, resource});
    if (tblNVCPerAcre->NoMatch()) {
        return false;
    }
    tblNVCPerAcre->Edit();
    for (int level = 1; level <= kFilLevels; ++level) {
        tblNVCPerAcre->SetField(FieldOfLevel(level), Value(resource, level));
    }
    tblNVCPerAcre->Update();
    return true;
}

void c34NVCTable::SaveChanges() {
    u91Trace::Procedure(QStringLiteral("c34NVCTable.SaveChanges"));
    if (!changed_) {
        return;
    }
    const QStringList missing =
        MissingRows::StoreOthers(kResources, [this](int resource) { return SaveRow(resource); });
    changed_ = false;
    if (!missing.isEmpty()) {
        throw platform::RuntimeError(
            platform::kNoCurrentRecord,
            QCoreApplication::translate(
                "c34NVCTable",
                "The data file has no row at this location for resource number %1. Values typed "
                "there cannot be stored; all others are stored.")
                .arg(missing.join(QStringLiteral(", "))));
    }
}
