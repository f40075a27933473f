#include "worksheets/zones/ImportNote.h"

#include <QCoreApplication>
#include <QStringList>

#include <algorithm>
#include <utility>

namespace {

constexpr int kMostZones = 10;  // that are named

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(ImportNote)
};

QString Number(int count, const QString& one, const QString& many) {
    return count == 1 ? one : many.arg(count);
}

// "A1-North (2, 3)" for each zone: names may end in numbers, too.
QStringList ByZone(const std::vector<mImport::Imported::Blank>& blanks) {
    QStringList zones;
    for (auto blank = blanks.begin(); blank != blanks.end();) {
        const QString& zone = blank->zone;
        QStringList locations;
        for (; blank != blanks.end() && blank->zone == zone; ++blank) {
            locations += QString::number(blank->location);
        }
        zones += QStringLiteral("%1 (%2)").arg(zone, locations.join(QStringLiteral(", ")));
    }
    return zones;
}

QString Blanks(const std::vector<mImport::Imported::Blank>& blanks) {
    QStringList zones = ByZone(blanks);
    const auto left = static_cast<int>(std::max<qsizetype>(zones.size() - kMostZones, 0));
    zones = zones.mid(0, kMostZones);
    if (left > 0) {
        zones += Number(left, Texts::tr("1 more zone"), Texts::tr("%1 more zones"));
    }
    return Number(
               static_cast<int>(blanks.size()),
               Texts::tr("1 location was filled with zeros, because the file has no table for it"),
               Texts::tr("%1 locations were filled with zeros, because the file has no tables for "
                         "them")) +
           QStringLiteral(": ") + zones.join(QStringLiteral("; ")) + QStringLiteral(".");
}

}  // namespace

QString ImportNote::Text(const mImport::Imported& imported) {
    const QString came =
        Texts::tr("Imported: %1 with %2.")
            .arg(Number(imported.zones, Texts::tr("1 zone"), Texts::tr("%1 zones")),
                 Number(imported.locations, Texts::tr("1 location"), Texts::tr("%1 locations")));
    return imported.blanks.empty() ? came : came + QStringLiteral(" ") + Blanks(imported.blanks);
}
