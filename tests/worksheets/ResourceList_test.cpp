// The list of suppression resources without a window.
#include "worksheets/resources/ResourceList.h"

#include <gtest/gtest.h>

#include <numeric>
#include <random>
#include <vector>

#include "datafile/data_file_fixture.h"
#include "platform/RuntimeError.h"
#include "support/print.h"

using platform::GridTable;
using PrepDatatables::tblSRMasterList;
using worksheets::Resource;
using worksheets::ResourceList;

namespace {

using Kind = GridTable::Answer::Kind;

class ResourceListTest : public DataFileTest {
protected:
    ResourceListTest() {
        OpenNewFile();
        list_.SetListener([this](const QString& name, const auto& change) {
            names_ += name;
            done_.push_back(change);
        });
    }
    static Resource Named(const QString& name) {
        Resource resource;
        resource.longName = name;
        resource.shortName = name.toLower();
        resource.units = QStringLiteral("days");
        resource.unitType = QStringLiteral("item");
        resource.cost = 100;
        return resource;
    }
    // Resources "A", "B", ...
    void AddResources(int count) {
        for (int row = 1; row <= count; ++row) {
            list_.Insert(QStringLiteral("Add"), Named(QChar(u'A' + row - 1)), row);
        }
        done_.clear();
        names_.clear();
    }
    void SetStoredSequences(const std::vector<int>& sequences) {
        std::vector<Resource> stored = ResourceRecords::All();
        for (std::size_t i = 0; i < sequences.size(); ++i) {
            stored[i].sequence = sequences[i];
            ResourceRecords::SaveSequence(stored[i]);
        }
        list_.Load();
    }
    GridTable::Answer Type(int row, int col, const QString& text) {
        list_.BeginAction(QStringLiteral("Typing"));
        const GridTable::Answer answer = list_.Offer(row, col, text);
        list_.EndAction();
        return answer;
    }
    void Move(int row, const char* place) {
        Type(row, ResourceList::kNumber, QString::fromLatin1(place));
    }
    // "A1 B2" for the names and numbers that the list shows.
    [[nodiscard]] QString Shown() const {
        QStringList rows;
        for (int row = 1; row <= list_.RowCount(); ++row) {
            rows += list_.Text(row, ResourceList::kName) + list_.Text(row, ResourceList::kNumber);
        }
        return rows.join(u' ');
    }
    static QString Stored() {
        ResourceList list;
        list.Load();
        QStringList rows;
        for (int row = 1; row <= list.RowCount(); ++row) {
            rows += list.Text(row, ResourceList::kName) + list.Text(row, ResourceList::kNumber);
        }
        return rows.join(u' ');
    }
    void Undo() {
        list_.TakeBack(*done_.back());
        undone_.push_back(done_.back());
        done_.pop_back();
    }
    void Redo() {
        list_.Repeat(*undone_.back());
        done_.push_back(undone_.back());
        undone_.pop_back();
    }

    ResourceList list_;
    QStringList names_;
    std::vector<std::shared_ptr<ResourceList::Change>> done_;
    std::vector<std::shared_ptr<ResourceList::Change>> undone_;
};

TEST_F(ResourceListTest, Table_GivesTheKeyAsTheLastColumn) {
    AddResources(2);
    EXPECT_EQ(list_.Text(2, ResourceList::kKey), QString::number(list_.RowData(2)));
    EXPECT_EQ(list_.CellTakes(2, ResourceList::kKey), GridTable::Takes::kNothing);
    EXPECT_EQ(list_.RowName(2), QStringLiteral("B"));
    EXPECT_EQ(list_.MaxLength(ResourceList::kNumber), 4);
    EXPECT_EQ(list_.MaxLength(ResourceList::kName), 50);
    EXPECT_EQ(list_.MaxLength(ResourceList::kShortName), 20);
    EXPECT_EQ(list_.MaxLength(ResourceList::kUnits), 10);
    EXPECT_EQ(list_.MaxLength(ResourceList::kCost), 5);
}

TEST_F(ResourceListTest, TypedNumber_MovesTheRowAndRenumbersThoseItPasses) {
    AddResources(5);
    Move(4, "2");
    EXPECT_EQ(Shown(), QStringLiteral("A1 D2 B3 C4 E5"));
    Move(1, "0");
    EXPECT_EQ(Shown(), QStringLiteral("A1 D2 B3 C4 E5"));
    Move(1, "99");
    EXPECT_EQ(Shown(), QStringLiteral("D1 B2 C3 E4 A5"));
    Move(1, "2.5");
    EXPECT_EQ(Shown(), QStringLiteral("B1 D2 C3 E4 A5"));
    EXPECT_EQ(Stored(), QStringLiteral("A1 B2 C3 D4 E5")) << "not saved yet";
    list_.Save();
    EXPECT_EQ(Stored(), Shown());
}

TEST_F(ResourceListTest, TextThatIsNoNumber_KeepsThePlace) {
    AddResources(2);
    EXPECT_EQ(Type(2, ResourceList::kNumber, QStringLiteral("x")).kind, Kind::kRefused);
    EXPECT_EQ(Type(2, ResourceList::kNumber, QString()).text, QStringLiteral("2"));
    EXPECT_EQ(Shown(), QStringLiteral("A1 B2"));
    EXPECT_TRUE(done_.empty());
}

TEST_F(ResourceListTest, AnyNumber_StraightensAListThatIsNotNumberedFromOneOn) {
    AddResources(3);
    SetStoredSequences({2, 5, 9});
    EXPECT_EQ(Shown(), QStringLiteral("A2 B5 C9"));
    Move(3, "9");
    EXPECT_EQ(Shown(), QStringLiteral("A1 B2 C3")) << "its own number";
    SetStoredSequences({2, 5, 9});
    Move(3, "2");
    EXPECT_EQ(Shown(), QStringLiteral("A1 C2 B3"));
    SetStoredSequences({2, 5, 9});
    Move(2, "2");
    EXPECT_EQ(Shown(), QStringLiteral("A1 B2 C3"));
    list_.Save();
    EXPECT_EQ(Stored(), QStringLiteral("A1 B2 C3"));
    Undo();
    EXPECT_EQ(Shown(), QStringLiteral("A2 B5 C9"));
    EXPECT_EQ(Stored(), QStringLiteral("A2 B5 C9"));
}

TEST_F(ResourceListTest, AnySequenceOfMoves_LeavesTheRowInItsPlaceAndNoGaps) {
    AddResources(12);
    std::mt19937 random(11);
    QStringList names;
    for (int row = 1; row <= 12; ++row) {
        names += list_.At(row).longName;
    }
    for (int step = 0; step < 300; ++step) {
        const int from = static_cast<int>(random() % 12);
        const int to = static_cast<int>(random() % 12);
        Type(from + 1, ResourceList::kNumber, QString::number(to + 1));
        names.move(from, to);
        QStringList rows;
        for (int row = 0; row < 12; ++row) {
            rows += names[row] + QString::number(row + 1);
        }
        ASSERT_EQ(Shown(), rows.join(u' '));
    }
    while (!done_.empty()) {
        Undo();
    }
    EXPECT_EQ(Shown(), QStringLiteral("A1 B2 C3 D4 E5 F6 G7 H8 I9 J10 K11 L12"));
    EXPECT_EQ(Stored(), Shown());
}

TEST_F(ResourceListTest, Rows_StayUntilTheActionEnds) {
    AddResources(3);
    list_.BeginAction(QStringLiteral("Paste"));
    list_.Offer(1, ResourceList::kNumber, QStringLiteral("3"));
    list_.Offer(1, ResourceList::kName, QStringLiteral("First"));
    list_.Offer(2, ResourceList::kNumber, QStringLiteral("1"));
    list_.Offer(2, ResourceList::kName, QStringLiteral("Second"));
    EXPECT_EQ(Shown(), QStringLiteral("First1 Second2 C3"));
    list_.EndAction();
    EXPECT_EQ(Shown(), QStringLiteral("Second1 C2 First3"));
    ASSERT_EQ(done_.size(), 1U);
    Undo();
    EXPECT_EQ(Shown(), QStringLiteral("A1 B2 C3"));
}

TEST_F(ResourceListTest, Cost_ShowsWhatWillBeStored) {
    AddResources(1);
    EXPECT_EQ(Type(1, ResourceList::kCost, QStringLiteral("1250")).kind, Kind::kStored);
    const GridTable::Answer answer = Type(1, ResourceList::kCost, QStringLiteral("1,450"));
    EXPECT_EQ(answer.kind, Kind::kChanged);
    EXPECT_EQ(answer.text, QStringLiteral("1"));
    EXPECT_EQ(list_.Text(1, ResourceList::kCost), QStringLiteral("1"));
    EXPECT_EQ(Type(1, ResourceList::kCost, QStringLiteral("9e99")).kind, Kind::kRefused);
    EXPECT_EQ(list_.Text(1, ResourceList::kCost), QStringLiteral("1"));
    Type(1, ResourceList::kCost, QStringLiteral("2.5"));
    list_.Save();
    EXPECT_EQ(ResourceRecords::All().front().cost, 2.5F);
}

TEST_F(ResourceListTest, Insert_StoresTheNumbersOfAllRowsAtOnce) {
    AddResources(2);
    list_.Insert(QStringLiteral("Add"), Named(QStringLiteral("New")), 2);
    EXPECT_EQ(Shown(), QStringLiteral("A1 New2 B3"));
    EXPECT_EQ(Stored(), Shown());
    EXPECT_EQ(ResourceRecords::All()[1].unitType, QStringLiteral("item"));
    Undo();
    EXPECT_EQ(Stored(), QStringLiteral("A1 B2"));
    EXPECT_EQ(Shown(), Stored());
}

TEST_F(ResourceListTest, Delete_ComesBackWithKeySequenceAndValues) {
    AddResources(3);
    const Resource gone = list_.At(2);
    EXPECT_TRUE(list_.Delete(QStringLiteral("Delete"), 2));
    EXPECT_EQ(Shown(), QStringLiteral("A1 C2"));
    EXPECT_EQ(Stored(), Shown());
    Undo();
    EXPECT_EQ(list_.At(2), gone);
    EXPECT_EQ(ResourceRecords::All()[1], gone);
    EXPECT_EQ(Stored(), QStringLiteral("A1 B2 C3"));
    Redo();
    EXPECT_EQ(Stored(), QStringLiteral("A1 C2"));
}

TEST_F(ResourceListTest, Delete_WithoutARecord_ChangesNothing) {
    AddResources(2);
    ResourceRecords::Delete(list_.At(1).key);
    EXPECT_FALSE(list_.Delete(QStringLiteral("Delete"), 1));
    EXPECT_EQ(Shown(), QStringLiteral("A1 B2"));
    EXPECT_TRUE(done_.empty());
}

TEST_F(ResourceListTest, AppendedRows_BecomeResourcesWithTheirValues) {
    AddResources(1);
    list_.BeginAction(QStringLiteral("Paste"));
    EXPECT_EQ(list_.RoomForRows(), 9998);
    list_.AppendRows(2);
    list_.Offer(2, ResourceList::kName, QStringLiteral("N1"));
    list_.Offer(2, ResourceList::kCost, QStringLiteral("7"));
    list_.Offer(3, ResourceList::kName, QStringLiteral("N2"));
    list_.Offer(3, ResourceList::kNumber, QStringLiteral("1"));
    list_.EndAction();
    EXPECT_EQ(Shown(), QStringLiteral("N21 A2 N13"));
    EXPECT_GT(list_.RowData(1), 0);
    EXPECT_EQ(tblSRMasterList->RecordCount(), 3) << "at once";
    list_.Save();
    EXPECT_EQ(Stored(), Shown());
    EXPECT_EQ(ResourceRecords::All()[2].cost, 7.0F);
    EXPECT_EQ(ResourceRecords::All()[2].unitType, QStringLiteral("time"));
    ASSERT_EQ(done_.size(), 1U);
    EXPECT_EQ(names_, QStringList(QStringLiteral("Paste")));
    Undo();
    EXPECT_EQ(Stored(), QStringLiteral("A1"));
    Redo();
    EXPECT_EQ(Stored(), QStringLiteral("N21 A2 N13"));
}

TEST_F(ResourceListTest, AppendedRowThatIsRefused_LeavesNoneOfThem) {
    AddResources(1);
    list_.BeginAction(QStringLiteral("Paste"));
    list_.AppendRows(2);
    list_.Offer(2, ResourceList::kName, QStringLiteral("N1"));
    list_.Offer(3, ResourceList::kName, QString(60, u'x'));
    EXPECT_THROW(list_.EndAction(), platform::RuntimeError);
    EXPECT_EQ(Shown(), QStringLiteral("A1"));
    EXPECT_EQ(Stored(), QStringLiteral("A1"));
    EXPECT_TRUE(done_.empty());
}

TEST_F(ResourceListTest, Load_DropsWhatWasTypedAndNotSaved) {
    AddResources(1);
    Type(1, ResourceList::kName, QStringLiteral("typed"));
    list_.Load();
    EXPECT_EQ(Shown(), QStringLiteral("A1"));
    // What a save of the typed row would overwrite.
    Resource other = list_.At(1);
    other.longName = QStringLiteral("other");
    ResourceRecords::Save(other);
    list_.Save();
    EXPECT_EQ(Stored(), QStringLiteral("other1"));
}

TEST_F(ResourceListTest, Save_RowWithoutARecord_DoesNotKeepTheOthersFromBeingSaved) {
    AddResources(2);
    ResourceRecords::Delete(list_.At(1).key);
    Type(1, ResourceList::kName, QStringLiteral("gone"));
    Type(2, ResourceList::kName, QStringLiteral("kept"));
    try {
        list_.Save();
        ADD_FAILURE() << "saved a row that has no record";
    } catch (const platform::RuntimeError& error) {
        EXPECT_EQ(error.Subject(), QStringLiteral("gone"));
    }
    EXPECT_EQ(Stored(), QStringLiteral("kept2"));
}

}  // namespace
