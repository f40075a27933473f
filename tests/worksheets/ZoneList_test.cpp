// The list of zones without a window.
#include "worksheets/zones/ZoneList.h"

#include <gtest/gtest.h>

#include <vector>

#include "datafile/FieldReaders.h"
#include "datafile/data_file_fixture.h"
#include "support/print.h"

using platform::GridTable;
using PrepDatatables::tblFMZList;
using PrepDatatables::tblNVCPerAcre;
using PrepDatatables::tblSuppressionPerAcreCost;
using worksheets::Zone;
using worksheets::ZoneList;

namespace {

using Kind = GridTable::Answer::Kind;

class ZoneListTest : public DataFileTest {
protected:
    ZoneListTest() {
        OpenNewFile();
        list_.SetListener([this](const QString& name, const auto& change) {
            names_ += name;
            done_.push_back(change);
        });
    }
    void Add(const QString& name, int locations = 1) {
        list_.Add(QStringLiteral("Add"));
        Type(list_.RowCount(), ZoneList::kName, name);
        Type(list_.RowCount(), ZoneList::kLocations, QString::number(locations));
        list_.Save();
        done_.clear();
        names_.clear();
    }
    GridTable::Answer Type(int row, int col, const QString& text) {
        list_.BeginAction(QStringLiteral("Typing"));
        const GridTable::Answer answer = list_.Offer(row, col, text);
        list_.EndAction();
        return answer;
    }
    void Undo() {
        list_.TakeBack(*done_.back());
        undone_.push_back(done_.back());
        done_.pop_back();
    }
    void Redo() {
        list_.Repeat(*undone_.back());
        undone_.pop_back();
    }
    static std::vector<Zone> Stored() { return ZoneRecords::All(); }
    [[nodiscard]] std::vector<Zone> Shown() const {
        std::vector<Zone> zones;
        for (int row = 1; row <= list_.RowCount(); ++row) {
            zones.push_back(list_.At(row));
        }
        return zones;
    }
    void ExpectStored() const {
        EXPECT_EQ(Shown(), Stored());
        EXPECT_FALSE(list_.IsChanged());
    }

    ZoneList list_;
    QStringList names_;
    std::vector<std::shared_ptr<ZoneList::Change>> done_;
    std::vector<std::shared_ptr<ZoneList::Change>> undone_;
};

TEST_F(ZoneListTest, Load_TakesTheZonesInTheOrderOfTheirKeys) {
    Add(QStringLiteral("North"), 3);
    Add(QStringLiteral("South"));
    ZoneList list;
    list.Load(QString());
    ASSERT_EQ(list.RowCount(), 2);
    EXPECT_EQ(list.Text(1, ZoneList::kName), QStringLiteral("North"));
    EXPECT_EQ(list.Text(1, ZoneList::kLocations), QStringLiteral("3"));
    EXPECT_EQ(list.RowData(2), Stored()[1].key);
    EXPECT_EQ(list.RowName(2), QStringLiteral("South"));
    EXPECT_EQ(list.MaxLength(ZoneList::kName), 46);
    EXPECT_EQ(list.MaxLength(ZoneList::kLocations), 3);
    EXPECT_EQ(list.CellTakes(1, ZoneList::kLocations), GridTable::Takes::kNumber);
}

TEST_F(ZoneListTest, TypedTexts_ReachTheFileWhenTheyAreSaved) {
    Add(QStringLiteral("North"));
    EXPECT_EQ(Type(1, ZoneList::kName, QStringLiteral("West")).kind, Kind::kStored);
    EXPECT_EQ(Type(1, ZoneList::kLocations, QStringLiteral("2")).kind, Kind::kStored);
    EXPECT_TRUE(list_.IsChanged(1));
    EXPECT_EQ(list_.ChangedNames(), QStringList{QStringLiteral("West")});
    EXPECT_EQ(Stored()[0].name, QStringLiteral("North"));
    list_.Save();
    ExpectStored();
    EXPECT_EQ(tblNVCPerAcre->RecordCount(), 28);
    EXPECT_EQ(names_, QStringList(2, QStringLiteral("Typing")));
}

struct Typed {
    const char* text;
    Kind kind;
    int stored;
};

class ZoneListNumbers : public ZoneListTest, public testing::WithParamInterface<Typed> {};

TEST_P(ZoneListNumbers, Offer_ShowsWhatWillBeStored) {
    Add(QStringLiteral("North"), 2);
    const GridTable::Answer answer =
        Type(1, ZoneList::kLocations, QString::fromLatin1(GetParam().text));
    EXPECT_EQ(answer.kind, GetParam().kind) << GetParam().text;
    EXPECT_EQ(list_.Text(1, ZoneList::kLocations), QString::number(GetParam().stored));
    list_.Save();
    EXPECT_EQ(Stored()[0].locations, GetParam().stored);
}

INSTANTIATE_TEST_SUITE_P(
    Texts, ZoneListNumbers,
    testing::Values(Typed{"3", Kind::kStored, 3}, Typed{"2.5", Kind::kChanged, 2},
                    Typed{"3.5", Kind::kChanged, 4}, Typed{"7 x", Kind::kChanged, 7},
                    Typed{"1,5", Kind::kChanged, 1}, Typed{"0", Kind::kChanged, 1},
                    Typed{"-4", Kind::kChanged, 1}, Typed{"abc", Kind::kChanged, 1},
                    Typed{"", Kind::kChanged, 1}, Typed{"9e8", Kind::kRefused, 2},
                    Typed{"9e9", Kind::kRefused, 2}));

TEST_F(ZoneListTest, NumberBelowOne_IsWarnedOfWhenItIsSaved) {
    Add(QStringLiteral("North"));
    Type(1, ZoneList::kLocations, QStringLiteral("0"));
    list_.Save();
    EXPECT_EQ(folder_.Trace().filter(QStringLiteral("New RLCount is smaller for FMZ North")).size(),
              1);
}

TEST_F(ZoneListTest, Save_RefusedRow_DoesNotKeepTheOthersFromBeingSaved) {
    Add(QStringLiteral("A"));
    Add(QStringLiteral("B"));
    Type(1, ZoneList::kLocations, QStringLiteral("150"));
    Type(2, ZoneList::kName, QStringLiteral("Renamed"));
    try {
        list_.Save();
        ADD_FAILURE() << "saved locations among those of another zone";
    } catch (const platform::RuntimeError& error) {
        EXPECT_EQ(error.Subject(), QStringLiteral("A"));
    }
    EXPECT_EQ(Stored()[0].locations, 1) << "its locations would lie among those of B";
    EXPECT_EQ(Stored()[1].name, QStringLiteral("Renamed"));
    EXPECT_EQ(tblNVCPerAcre->RecordCount(), 28);
    EXPECT_TRUE(list_.IsChanged(1)) << "for correction";
    EXPECT_FALSE(list_.IsChanged(2));
    Type(1, ZoneList::kLocations, QStringLiteral("15"));
    list_.Save();
    ExpectStored();
}

TEST_F(ZoneListTest, Undo_OfTypingThatWasNotSaved_LeavesTheFileAsItWas) {
    Add(QStringLiteral("North"), 2);
    Type(1, ZoneList::kName, QStringLiteral("West"));
    Type(1, ZoneList::kLocations, QStringLiteral("5"));
    Undo();
    EXPECT_EQ(list_.At(1).locations, 2);
    Undo();
    EXPECT_EQ(list_.At(1).name, QStringLiteral("North"));
    ExpectStored();
    Redo();
    Redo();
    EXPECT_EQ(list_.At(1).locations, 5);
    ExpectStored();
    EXPECT_EQ(tblNVCPerAcre->RecordCount(), 5 * 14);
}

// An import shows the file's list again.
TEST_F(ZoneListTest, TypedTextThatIsDropped_ComesBackBeforeItIsTakenBackItself) {
    Add(QStringLiteral("Stored"));
    Type(1, ZoneList::kName, QStringLiteral("First"));
    Type(1, ZoneList::kName, QStringLiteral("Second"));
    ZoneRecords::Create(QStringLiteral("Imported"), 2);
    list_.Load(QStringLiteral("Import"));
    const std::vector<Zone> imported = Shown();
    ASSERT_EQ(imported.size(), 2U);
    EXPECT_EQ(list_.At(1).name, QStringLiteral("Stored"));
    for (const char* const name : {"Second", "First", "Stored"}) {
        Undo();
        EXPECT_EQ(list_.At(1).name, QString::fromLatin1(name));
        ExpectStored();
    }
    EXPECT_TRUE(done_.empty());
    Redo();
    Redo();
    Redo();
    EXPECT_EQ(Shown(), imported);
    ExpectStored();
}

TEST_F(ZoneListTest, Undo_OfASavedGrowth_TakesItsRowsOutOfTheFile) {
    Add(QStringLiteral("North"), 2);
    Type(1, ZoneList::kLocations, QStringLiteral("5"));
    list_.Save();
    EXPECT_EQ(tblNVCPerAcre->RecordCount(), 5 * 14);
    Undo();
    EXPECT_EQ(tblNVCPerAcre->RecordCount(), 2 * 14);
    ExpectStored();
}

TEST_F(ZoneListTest, UndoOfAnAdd_TakesAwayTheZone_RepeatBringsItBackWithWhatItHeld) {
    Add(QStringLiteral("North"));
    list_.Add(QStringLiteral("Add Item"));
    EXPECT_EQ(names_, QStringList{QStringLiteral("Add Item")});
    const std::int32_t key = list_.At(2).key;
    tblSuppressionPerAcreCost->Seek("=", {key, 4});
    tblSuppressionPerAcreCost->Edit();
    tblSuppressionPerAcreCost->SetField(QStringLiteral("Cost"), 12.5F);
    tblSuppressionPerAcreCost->Update();
    Undo();
    EXPECT_EQ(list_.RowCount(), 1);
    EXPECT_EQ(tblNVCPerAcre->RecordCount(), 14);
    EXPECT_EQ(tblSuppressionPerAcreCost->RecordCount(), 9);
    ExpectStored();
    Redo();
    EXPECT_EQ(list_.At(2).key, key);
    EXPECT_EQ(tblNVCPerAcre->RecordCount(), 28);
    tblSuppressionPerAcreCost->Seek("=", {key, 4});
    EXPECT_EQ(tblSuppressionPerAcreCost->Single(QStringLiteral("Cost")), 12.5F);
    ExpectStored();
}

TEST_F(ZoneListTest, BlockInOneAction_IsTakenBackAtOnce) {
    Add(QStringLiteral("A"));
    Add(QStringLiteral("B"));
    const std::vector<Zone> before = Shown();
    list_.BeginAction(QStringLiteral("Paste"));
    for (int row = 1; row <= 2; ++row) {
        list_.Offer(row, ZoneList::kName, QStringLiteral("N%1").arg(row));
        list_.Offer(row, ZoneList::kLocations, QStringLiteral("4"));
    }
    list_.EndAction();
    ASSERT_EQ(done_.size(), 1U);
    list_.Save();
    Undo();
    EXPECT_EQ(Shown(), before);
    ExpectStored();
}

TEST_F(ZoneListTest, ActionThatChangesNothing_IsNone) {
    Add(QStringLiteral("A"), 2);
    Type(1, ZoneList::kLocations, QStringLiteral("2"));
    Type(1, ZoneList::kName, QStringLiteral("A"));
    EXPECT_TRUE(done_.empty());
}

}  // namespace
