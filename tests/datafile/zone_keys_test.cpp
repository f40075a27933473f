#include <gtest/gtest.h>

#include <limits>

#include "data_file_fixture.h"
#include "datafile/ZoneKeys.h"

using PrepDatatables::tblFMZList;
using PrepDatatables::tblNVCPerAcre;
using PrepDatatables::tblSuppressionPerAcreCost;

namespace {

class ZoneKeysTest : public DataFileTest {
protected:
    ZoneKeysTest() { OpenNewFile(); }

    static bool HasRow(int key, int resource) {
        tblNVCPerAcre->Seek("=", {key, resource});
        return !tblNVCPerAcre->NoMatch();
    }
    static void SetCount(int zoneKey, int count) {
        tblFMZList->Seek("=", {zoneKey});
        tblFMZList->Edit();
        tblFMZList->SetField(QStringLiteral("RLCount"), count);
        tblFMZList->Update();
    }
    static void ExpectDuplicateKey(const std::function<void()>& body) {
        try {
            body();
            ADD_FAILURE() << "no error";
        } catch (const platform::RuntimeError& error) {
            EXPECT_EQ(error.Number(), platform::kDuplicateKey);
        }
    }
};

TEST(ZoneKeys, FMZRLKey_ZoneSeven_Gives701To703) {
    EXPECT_EQ(ZoneKeys::FMZRLKey(7, 1), 701);
    EXPECT_EQ(ZoneKeys::FMZRLKey(7, 2), 702);
    EXPECT_EQ(ZoneKeys::FMZRLKey(7, 3), 703);
}

TEST(ZoneKeys, FMZRLKey_Beyond32Bits_Overflows) {
    EXPECT_EQ(ZoneKeys::FMZRLKey(21474836, 47), std::numeric_limits<std::int32_t>::max());
    EXPECT_THROW(ZoneKeys::FMZRLKey(21474836, 48), platform::RuntimeError);
    EXPECT_THROW(ZoneKeys::FMZRLKey(std::numeric_limits<std::int32_t>::max(), 1),
                 platform::RuntimeError);
    EXPECT_THROW(ZoneKeys::FMZRLKey(std::numeric_limits<std::int32_t>::min(), 1),
                 platform::RuntimeError);
}

TEST_F(ZoneKeysTest, AddZone_ThreeLocations_AddsNineAndFortyTwoRows) {
    const int key = ZoneKeys::AddZone(QStringLiteral("North"), 3);
    EXPECT_EQ(tblFMZList->RecordCount(), 1);
    EXPECT_EQ(tblSuppressionPerAcreCost->RecordCount(), 9);
    EXPECT_EQ(tblNVCPerAcre->RecordCount(), 42);
    for (int location = 1; location <= 3; ++location) {
        for (int resource = 1; resource <= 14; ++resource) {
            EXPECT_TRUE(HasRow(key * 100 + location, resource));
            EXPECT_TRUE(tblNVCPerAcre->IsNull(QStringLiteral("FIL1")));
        }
    }
}

TEST_F(ZoneKeysTest, AddZone_RowsInTheWay_TakesTheZoneBackAsAWhole) {
    const int first = ZoneKeys::AddZone(QStringLiteral("Large"), 1);
    SetCount(first, 102);
    EXPECT_EQ(ZoneKeys::AddLocations(first, 2, 102), 0);
    const int rows = tblNVCPerAcre->RecordCount();
    ExpectDuplicateKey([] { ZoneKeys::AddZone(QStringLiteral("Next"), 5); });
    EXPECT_EQ(tblFMZList->RecordCount(), 1);
    EXPECT_EQ(tblSuppressionPerAcreCost->RecordCount(), 9);
    EXPECT_EQ(tblNVCPerAcre->RecordCount(), rows);
    EXPECT_TRUE(HasRow(first * 100 + 102, 14));
}

TEST_F(ZoneKeysTest, AddLocations_RowsKeptFromBefore_StayAsTheyAre) {
    const int key = ZoneKeys::AddZone(QStringLiteral("Zone"), 3);
    tblNVCPerAcre->Seek("=", {key * 100 + 3, 5});
    tblNVCPerAcre->Edit();
    tblNVCPerAcre->SetField(QStringLiteral("FIL4"), -12.5F);
    tblNVCPerAcre->Update();
    SetCount(key, 1);
    EXPECT_EQ(ZoneKeys::AddLocations(key, 2, 4), 28);
    EXPECT_EQ(tblNVCPerAcre->RecordCount(), 56);
    tblNVCPerAcre->Seek("=", {key * 100 + 3, 5});
    EXPECT_EQ(tblNVCPerAcre->Single(QStringLiteral("FIL4")), -12.5F);
    EXPECT_EQ(tblFMZList->Long(QStringLiteral("Key")), key) << "the zone's record stays current";
}

TEST_F(ZoneKeysTest, AddLocations_IntoTheNextZone_LeavesBothAsTheyWere) {
    const int first = ZoneKeys::AddZone(QStringLiteral("First"), 1);
    ZoneKeys::AddZone(QStringLiteral("Second"), 1);
    const int rows = tblNVCPerAcre->RecordCount();
    tblFMZList->Seek("=", {first});
    ExpectDuplicateKey([first] { ZoneKeys::AddLocations(first, 2, 150); });
    EXPECT_EQ(tblNVCPerAcre->RecordCount(), rows);
    EXPECT_FALSE(HasRow(first * 100 + 2, 1));
    EXPECT_EQ(tblFMZList->Long(QStringLiteral("Key")), first);
}

TEST_F(ZoneKeysTest, AddLocations_OfAZoneThatItsNeighbourReachesInto_AreRefused) {
    const int first = ZoneKeys::AddZone(QStringLiteral("First"), 1);
    const int second = ZoneKeys::AddZone(QStringLiteral("Second"), 0);
    EXPECT_EQ(second, first + 1);
    EXPECT_EQ(ZoneKeys::AddLocations(first, 2, 101), 0);
    SetCount(first, 101);
    const int rows = tblNVCPerAcre->RecordCount();
    tblFMZList->Seek("=", {second});
    ExpectDuplicateKey([second] { ZoneKeys::AddLocations(second, 1, 2); });
    EXPECT_EQ(tblNVCPerAcre->RecordCount(), rows);
}

TEST_F(ZoneKeysTest, AddZone_CostRowInTheWay_TakesTheZoneBackAsAWhole) {
    const int key = ZoneKeys::AddZone(QStringLiteral("First"), 1) + 1;
    tblSuppressionPerAcreCost->AddNew();
    tblSuppressionPerAcreCost->SetField(QStringLiteral("FMZKey"), key);
    tblSuppressionPerAcreCost->SetField(QStringLiteral("Sequence"), 5);
    tblSuppressionPerAcreCost->Update();
    ExpectDuplicateKey([] { ZoneKeys::AddZone(QStringLiteral("Second"), 1); });
    EXPECT_EQ(tblFMZList->RecordCount(), 1);
    EXPECT_EQ(tblSuppressionPerAcreCost->RecordCount(), 10);
    EXPECT_EQ(tblNVCPerAcre->RecordCount(), 14);
}

TEST_F(ZoneKeysTest, AddLocations_BeyondTheHundredthOfALoneZone_KeepsWhatIsThere) {
    const int zone = ZoneKeys::AddZone(QStringLiteral("North"), 1);
    EXPECT_EQ(ZoneKeys::AddLocations(zone, 100, 101), 0);
    EXPECT_EQ(ZoneKeys::AddLocations(zone, 100, 101), 28);
}

}  // namespace
