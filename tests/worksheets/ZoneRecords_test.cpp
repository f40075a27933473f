// The records of a zone in the file: which rows are added, kept, refused and put back.
#include "worksheets/zones/ZoneRecords.h"

#include <gtest/gtest.h>

#include <functional>

#include "datafile/FieldReaders.h"
#include "datafile/data_file_fixture.h"
#include "support/print.h"

using PrepDatatables::tblFMZList;
using PrepDatatables::tblNVCPerAcre;
using PrepDatatables::tblSuppressionPerAcreCost;
using worksheets::Zone;

namespace {

const QString kFil4 = QStringLiteral("FIL4");

class ZoneRecordsTest : public DataFileTest {
protected:
    ZoneRecordsTest() { OpenNewFile(); }

    static Zone Made(const char* name, std::int32_t locations) {
        const QString text = QString::fromLatin1(name);
        return {.key = ZoneRecords::Create(text, locations), .name = text, .locations = locations};
    }
    static std::int32_t Change(Zone zone, std::int32_t locations) {
        zone.locations = locations;
        return ZoneRecords::Change(zone);
    }
    static bool HasRow(int key, int resource) {
        tblNVCPerAcre->Seek("=", {key, resource});
        return !tblNVCPerAcre->NoMatch();
    }
    static void SetValue(int key, int resource, float value) {
        tblNVCPerAcre->Seek("=", {key, resource});
        tblNVCPerAcre->Edit();
        tblNVCPerAcre->SetField(kFil4, value);
        tblNVCPerAcre->Update();
    }
    static float Value(int key, int resource) {
        tblNVCPerAcre->Seek("=", {key, resource});
        return FieldReaders::SingleField(*tblNVCPerAcre, kFil4);
    }
    static void SetCount(int zoneKey, int count) {
        tblFMZList->Seek("=", {zoneKey});
        tblFMZList->Edit();
        tblFMZList->SetField(QStringLiteral("RLCount"), count);
        tblFMZList->Update();
    }
    static int Locations(int key) {
        tblFMZList->Seek("=", {key});
        return FieldReaders::LongField(*tblFMZList, QStringLiteral("RLCount"));
    }
    static QString Refusal(int number, const std::function<void()>& body) {
        try {
            body();
        } catch (const platform::RuntimeError& error) {
            EXPECT_EQ(error.Number(), number);
            EXPECT_TRUE(ZoneRecords::IsRefusal(error));
            return error.Description();
        }
        ADD_FAILURE() << "no error";
        return {};
    }
    [[nodiscard]] int Warnings() const {
        return static_cast<int>(
            folder_.Trace().filter(QStringLiteral("Warning! New RLCount is smaller")).size());
    }
};

TEST_F(ZoneRecordsTest, Create_ThreeLocations_AddsNineAndFortyTwoEmptyRows) {
    const Zone zone = Made("North", 3);
    EXPECT_EQ(tblFMZList->RecordCount(), 1);
    EXPECT_EQ(tblSuppressionPerAcreCost->RecordCount(), 9);
    EXPECT_EQ(tblNVCPerAcre->RecordCount(), 42);
    for (int location = 1; location <= 3; ++location) {
        for (int resource = 1; resource <= 14; ++resource) {
            EXPECT_TRUE(HasRow(zone.key * 100 + location, resource));
            EXPECT_TRUE(tblNVCPerAcre->IsNull(QStringLiteral("FIL1")));
        }
    }
}

TEST_F(ZoneRecordsTest, Create_BehindAZoneWithOver99Locations_TakesTheFirstFreeKey) {
    const Zone large = Made("Large", 1);
    Change(large, 302);
    const int rows = tblNVCPerAcre->RecordCount();
    const Zone next = Made("Next", 2);
    EXPECT_EQ(next.key, large.key + 4);
    EXPECT_EQ(tblFMZList->RecordCount(), 2);
    EXPECT_EQ(tblNVCPerAcre->RecordCount(), rows + 28);
    EXPECT_TRUE(HasRow(next.key * 100 + 2, 14));
    EXPECT_EQ(tblSuppressionPerAcreCost->RecordCount(), 18);
}

TEST_F(ZoneRecordsTest, Create_WhereCostRowsLieAround_PassesThemOver) {
    const Zone first = Made("First", 1);
    tblSuppressionPerAcreCost->AddNew();
    tblSuppressionPerAcreCost->SetField(QStringLiteral("FMZKey"), first.key + 1);
    tblSuppressionPerAcreCost->SetField(QStringLiteral("Sequence"), 5);
    tblSuppressionPerAcreCost->Update();
    EXPECT_EQ(Made("Second", 1).key, first.key + 2);
    EXPECT_EQ(tblSuppressionPerAcreCost->RecordCount(), 9 + 1 + 9);
}

TEST_F(ZoneRecordsTest, Create_WithoutLocations_MakesOneAndWarns) {
    const Zone zone = Made("North", 0);
    EXPECT_EQ(Locations(zone.key), 1);
    EXPECT_EQ(Warnings(), 1);
}

TEST_F(ZoneRecordsTest, ShrinkThenGrow_BringsTheOldValuesBack) {
    const Zone zone = Made("A", 3);
    SetValue(zone.key * 100 + 3, 5, -12.5F);
    EXPECT_EQ(Change(zone, 1), 1);
    EXPECT_EQ(Warnings(), 1);
    EXPECT_EQ(tblNVCPerAcre->RecordCount(), 42) << "the rows stay";
    EXPECT_EQ(Change(zone, 4), 4);
    EXPECT_EQ(Value(zone.key * 100 + 3, 5), -12.5F);
    EXPECT_TRUE(HasRow(zone.key * 100 + 4, 14));
    EXPECT_EQ(tblNVCPerAcre->RecordCount(), 4 * 14);
    EXPECT_FALSE(folder_.Trace().filter(QStringLiteral("Kept NVC rows")).isEmpty());
}

TEST_F(ZoneRecordsTest, Change_IntoTheNextZone_NamesBothAndLeavesThem) {
    const Zone first = Made("First", 1);
    Made("Second", 1);
    const int rows = tblNVCPerAcre->RecordCount();
    const QString sentence = Refusal(platform::kDuplicateKey, [&] { Change(first, 150); });
    EXPECT_TRUE(sentence.startsWith(QStringLiteral("First has no room")));
    EXPECT_TRUE(sentence.contains(QStringLiteral("those of Second")));
    EXPECT_EQ(tblNVCPerAcre->RecordCount(), rows);
    EXPECT_FALSE(HasRow(first.key * 100 + 2, 1));
    EXPECT_EQ(Locations(first.key), 1);
}

TEST_F(ZoneRecordsTest, Change_OfAZoneThatItsNeighborReachesInto_IsRefused) {
    const Zone first = Made("First", 1);
    const Zone second = Made("Second", 1);
    // As an import leaves a zone without locations.
    ZoneRecords::Remove(second);
    ZoneRecords::Restore({.key = second.key, .name = second.name, .locations = 0}, {});
    EXPECT_EQ(Change(first, 101), 101);
    const int rows = tblNVCPerAcre->RecordCount();
    const QString sentence = Refusal(platform::kDuplicateKey, [&] { Change(second, 2); });
    EXPECT_TRUE(sentence.contains(QStringLiteral("those of First")));
    EXPECT_EQ(tblNVCPerAcre->RecordCount(), rows);
}

TEST_F(ZoneRecordsTest, Change_ToMoreThanAZoneCanHave_NamesTheZone) {
    const Zone zone = Made("North", 1);
    EXPECT_EQ(Change(zone, 120), 120) << "no zone follows";
    EXPECT_EQ(Refusal(platform::kOverflow, [&] { Change(zone, 1000); }),
              QStringLiteral("North cannot have 1000 representative locations: a zone can have at "
                             "most 999."));
    EXPECT_EQ(Locations(zone.key), 120);
}

TEST_F(ZoneRecordsTest, Change_OfOnlyTheLetterCase_RewritesTheName) {
    const Zone zone = Made("north", 1);
    ZoneRecords::Change({.key = zone.key, .name = QStringLiteral("North"), .locations = 1});
    EXPECT_EQ(ZoneRecords::All().front().name, QStringLiteral("North"));
}

TEST_F(ZoneRecordsTest, Change_ToLessThanOne_BecomesOneWithAWarning) {
    const Zone zone = Made("A", 2);
    EXPECT_EQ(Change(zone, -1), 1);
    EXPECT_EQ(Locations(zone.key), 1);
    EXPECT_EQ(Warnings(), 1);
    EXPECT_EQ(ZoneRecords::Change({.key = zone.key, .name = zone.name, .locations = 1}, true), 1);
    EXPECT_EQ(Warnings(), 2) << "a number below one was typed";
}

TEST_F(ZoneRecordsTest, Change_OfAStoredZeroLeftAlone_KeepsIt) {
    const Zone zone = Made("A", 1);
    SetCount(zone.key, 0);
    EXPECT_EQ(Change(zone, 0), 0);
    EXPECT_EQ(Warnings(), 0);
}

TEST_F(ZoneRecordsTest, Change_FromNoneToOne_IsNoWarning) {
    const Zone zone = Made("A", 1);
    SetCount(zone.key, 0);
    EXPECT_EQ(Change(zone, 1), 1);
    EXPECT_EQ(Locations(zone.key), 1);
    EXPECT_EQ(Warnings(), 0);
}

TEST_F(ZoneRecordsTest, Change_OfAStoredNegativeNumberToZero_BecomesOneWithAWarning) {
    const Zone zone = Made("A", 1);
    SetCount(zone.key, -5);
    EXPECT_EQ(Change(zone, 0), 1);
    EXPECT_EQ(Locations(zone.key), 1);
    EXPECT_EQ(tblNVCPerAcre->RecordCount(), 14) << "the rows of its location are there already";
    EXPECT_EQ(Warnings(), 1);
}

TEST_F(ZoneRecordsTest, Change_OfAZoneThatIsGone_AddsNothing) {
    Made("A", 1);
    Refusal(platform::kNoCurrentRecord,
            [] { ZoneRecords::Change({.key = 77, .name = QStringLiteral("B"), .locations = 3}); });
    EXPECT_EQ(tblNVCPerAcre->RecordCount(), 14);
}

TEST_F(ZoneRecordsTest, PutBack_OfAGrowth_RemovesItsRowsUnlessTheyHoldValues) {
    const Zone zone = Made("A", 1);
    Change(zone, 4);
    SetValue(zone.key * 100 + 3, 5, -12.5F);
    ZoneRecords::PutBack(zone);
    EXPECT_EQ(Locations(zone.key), 1);
    EXPECT_EQ(tblNVCPerAcre->RecordCount(), 14 + 14);
    EXPECT_EQ(Warnings(), 0);
    Change(zone, 4);
    EXPECT_EQ(Value(zone.key * 100 + 3, 5), -12.5F);
    EXPECT_EQ(tblNVCPerAcre->RecordCount(), 4 * 14);
}

TEST_F(ZoneRecordsTest, RemoveThenRestore_BringsAllRowsBackWithTheirValues) {
    Made("A", 2);
    const Zone zone = Made("B", 3);
    Change(zone, 1);
    SetValue(zone.key * 100 + 3, 5, -12.5F);
    const auto dependents =
        ZoneRecords::Remove({.key = zone.key, .name = zone.name, .locations = 1});
    EXPECT_EQ(tblFMZList->RecordCount(), 1);
    EXPECT_EQ(tblSuppressionPerAcreCost->RecordCount(), 9);
    EXPECT_EQ(tblNVCPerAcre->RecordCount(), 28);
    ZoneRecords::Restore({.key = zone.key, .name = zone.name, .locations = 1}, dependents);
    EXPECT_EQ(Locations(zone.key), 1);
    EXPECT_EQ(tblSuppressionPerAcreCost->RecordCount(), 18);
    EXPECT_EQ(Value(zone.key * 100 + 3, 5), -12.5F);
    EXPECT_TRUE(HasRow(zone.key * 100 + 1, 14));
    EXPECT_TRUE(tblNVCPerAcre->IsNull(QStringLiteral("FIL1")));
}

}  // namespace
