#include "worksheets/zones/ImportNote.h"

#include <gtest/gtest.h>

#include "support/print.h"

namespace {

TEST(ImportNote, Zones_AreCountedWithTheirLocations) {
    EXPECT_EQ(ImportNote::Text({.zones = 2, .locations = 5, .blanks = {}}),
              QStringLiteral("Imported: 2 zones with 5 locations."));
    EXPECT_EQ(ImportNote::Text({.zones = 1, .locations = 1, .blanks = {}}),
              QStringLiteral("Imported: 1 zone with 1 location."));
}

TEST(ImportNote, LocationsWithoutATable_AreNamedByZone) {
    const QString north = QStringLiteral("A1-North");
    EXPECT_EQ(
        ImportNote::Text({.zones = 2,
                          .locations = 5,
                          .blanks = {{north, 2}, {north, 3}, {QStringLiteral("B2-Valley"), 1}}}),
        QStringLiteral("Imported: 2 zones with 5 locations. 3 locations were filled with zeros, "
                       "because the file has no tables for them: A1-North (2, 3); B2-Valley (1)."));
}

TEST(ImportNote, ManyZones_AreNotAllNamed) {
    mImport::Imported imported{.zones = 30, .locations = 30, .blanks = {}};
    for (int zone = 1; zone <= 30; ++zone) {
        imported.blanks.push_back({QStringLiteral("Z%1").arg(zone), 1});
    }
    const QString text = ImportNote::Text(imported);
    EXPECT_TRUE(text.contains(QStringLiteral("Z10 (1); 20 more zones.")));
    EXPECT_FALSE(text.contains(QStringLiteral("Z11")));
}

}  // namespace
