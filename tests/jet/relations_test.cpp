// Relationships, kept when rows are added, changed and deleted.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "jet/check.h"
#include "jet/database.h"
#include "jet/recordset.h"
#include "relationship.h"
#include "sample_table.h"
#include "support/jet_files.h"
#include "support/temp_folder.h"

namespace jet {
namespace {

class RelationsTest : public testing::TestWithParam<Version> {
protected:
    void SetUp() override {
        database_ = Database::Create(kFile, GetParam(), *files_);
        TableSchema units;
        units.name = "Units";
        units.columns = {{.name = "Unit"},
                         {.name = "Name", .type = ColumnType::kText, .length = 9}};
        units.indexes = {{.name = "Key", .columns = {{"Unit"}}, .primary = true}};
        TableSchema zones;
        zones.name = "Zones";
        zones.columns = {{.name = "Zone"}, {.name = "Unit"}, {.name = "Above"}};
        zones.indexes = {{.name = "Key", .columns = {{"Zone"}}, .primary = true},
                         {.name = "Unit", .columns = {{"Unit"}}},
                         {.name = "Above", .columns = {{"Above"}}}};
        database_->CreateTable(units);
        database_->CreateTable(zones);
    }

    void Relate(const Cascades& cascades) {
        jet::Relate(*database_, u"Units", u"Key", u"Zones", u"Unit", cascades);
        Reopen();
    }
    void RelateToSelf(const Cascades& cascades) {
        jet::Relate(*database_, u"Zones", u"Key", u"Zones", u"Above", cascades);
        Reopen();
    }
    void Reopen() {
        units_.reset();
        zones_.reset();
        database_->Close();
        database_ = Database::Open(kFile, {}, *files_);
        units_ = database_->OpenTable("Units");
        zones_ = database_->OpenTable("Zones");
        units_->SetIndex("Key");
        zones_->SetIndex("Key");
    }
    void AddUnit(int unit) {
        units_->AddNew();
        units_->Set("Unit", unit);
        units_->Update();
    }
    void AddZone(int zone, const Value& unit, const Value& above = {}) {
        zones_->AddNew();
        zones_->Set("Zone", zone);
        zones_->Set("Unit", unit);
        zones_->Set("Above", above);
        zones_->Update();
    }
    static void Change(Recordset& rows, int key, const char* field, const Value& value) {
        ASSERT_TRUE(rows.Seek(Comparison::kEqual, {key}));
        rows.Edit();
        rows.Set(field, value);
        rows.Update();
    }
    static void Delete(Recordset& rows, int key) {
        ASSERT_TRUE(rows.Seek(Comparison::kEqual, {key}));
        rows.Delete();
    }
    // All zones as "zone:unit".
    std::string Zones() {
        std::string all;
        const auto zones = database_->OpenTable("Zones");
        zones->SetIndex("Key");
        for (; !zones->IsEof(); zones->MoveNext()) {
            const Value unit = zones->Get("Unit");
            all += std::to_string(zones->Get("Zone").AsLong()) + ":" +
                   (unit.IsNull() ? "-" : std::to_string(unit.AsLong())) + " ";
        }
        const CheckReport report = CheckDatabase(*database_);
        EXPECT_TRUE(report.IsSound()) << report.Text();
        return all;
    }

    static constexpr char kFile[] = "a file.mdb";
    std::unique_ptr<FileSystem> files_ = MakeMemoryFileSystem();
    std::unique_ptr<Database> database_;
    std::unique_ptr<Recordset> units_;
    std::unique_ptr<Recordset> zones_;
};

INSTANTIATE_TEST_SUITE_P(Versions, RelationsTest, testing::Values(Version::kJet3, Version::kJet4),
                         [](const auto& tested) { return VersionName(tested.param); });

TEST_P(RelationsTest, NoRowRefersToOneThatIsNotThere) {
    Relate({});
    AddUnit(1);
    AddZone(10, 1);
    AddZone(11, Value());
    EXPECT_EQ(ErrorOf([&] { AddZone(12, 2); }), ErrorKind::kNoRelatedRecord);
    EXPECT_EQ(ErrorOf([&] { Change(*zones_, 10, "Unit", 2); }), ErrorKind::kNoRelatedRecord);
    Change(*zones_, 10, "Above", 5);
    Change(*zones_, 11, "Unit", 1);
    EXPECT_EQ(Zones(), "10:1 11:1 ");
}

TEST_P(RelationsTest, WithoutCascades_AParentInUseStays) {
    Relate({});
    AddUnit(1);
    AddUnit(2);
    AddZone(10, 1);
    EXPECT_EQ(ErrorOf([&] { Delete(*units_, 1); }), ErrorKind::kRelatedRecords);
    EXPECT_EQ(ErrorOf([&] { Change(*units_, 1, "Unit", 3); }), ErrorKind::kRelatedRecords);
    Change(*units_, 1, "Name", u"one");
    Change(*units_, 2, "Unit", 4);
    Delete(*units_, 4);
    Delete(*zones_, 10);
    Delete(*units_, 1);
    EXPECT_EQ(Zones(), "");
    EXPECT_EQ(units_->RecordCount(), 0);
}

TEST_P(RelationsTest, Cascades_ChangeAndDeleteWhatRefers) {
    Relate({.updates = true, .deletes = true});
    AddUnit(1);
    AddUnit(2);
    for (int zone = 10; zone < 14; ++zone) AddZone(zone, zone % 2 + 1);
    ASSERT_TRUE(zones_->Seek(Comparison::kEqual, {10}));
    Change(*units_, 1, "Unit", 7);
    EXPECT_EQ(Zones(), "10:7 11:2 12:7 13:2 ");
    EXPECT_EQ(zones_->Get("Unit"), Value(7));
    Delete(*units_, 7);
    EXPECT_EQ(Zones(), "11:2 13:2 ");
    EXPECT_EQ(ErrorOf([&] { static_cast<void>(zones_->Get("Unit")); }),
              ErrorKind::kNoCurrentRecord);
    zones_->MoveNext();
    EXPECT_EQ(zones_->Get("Zone"), Value(11));
}

TEST_P(RelationsTest, ACascadeThatIsRefused_ChangesNothing) {
    Relate({.updates = true, .deletes = true});
    jet::Relate(*database_, u"Zones", u"Key", u"Zones", u"Above", {});
    Reopen();
    AddUnit(1);
    AddUnit(2);
    AddZone(10, 1);
    AddZone(11, 1);
    AddZone(12, 2, 11);
    EXPECT_EQ(ErrorOf([&] { Delete(*units_, 1); }), ErrorKind::kRelatedRecords);
    EXPECT_EQ(Zones(), "10:1 11:1 12:2 ");
    EXPECT_EQ(units_->RecordCount(), 2);
}

TEST_P(RelationsTest, TwoWaysToOneRow_DeleteItOnce) {
    Relate({.deletes = true});
    jet::Relate(*database_, u"Units", u"Key", u"Zones", u"Above", {.deletes = true});
    Reopen();
    AddUnit(1);
    AddUnit(2);
    for (int zone = 0; zone < 300; ++zone) AddZone(zone, 1, 1);
    AddZone(300, 2, 1);
    AddZone(301, 2, 2);
    const auto query = database_->OpenQuery("SELECT * FROM Zones");
    Delete(*units_, 1);
    EXPECT_EQ(Zones(), "301:2 ");
    EXPECT_EQ(query->RecordCount(), 1);
    EXPECT_EQ(zones_->RecordCount(), 1);
}

TEST_P(RelationsTest, ATable_CanReferToItself) {
    RelateToSelf({});
    AddZone(1, Value(), 1);
    AddZone(2, Value(), 1);
    EXPECT_EQ(ErrorOf([&] { AddZone(3, Value(), 4); }), ErrorKind::kNoRelatedRecord);
    EXPECT_EQ(ErrorOf([&] { Delete(*zones_, 1); }), ErrorKind::kRelatedRecords);
    Delete(*zones_, 2);
    Delete(*zones_, 1);
    EXPECT_EQ(Zones(), "");
}

TEST_P(RelationsTest, ADeletionThatSetsNull_LeavesTheRowsWithoutTheReference) {
    Relate({.nulls = true});
    AddUnit(1);
    AddUnit(2);
    for (int zone = 0; zone < 300; ++zone) AddZone(zone, zone < 2 ? 2 : 1);
    ASSERT_TRUE(zones_->Seek(Comparison::kEqual, {7}));
    const auto byUnit = database_->OpenTable("Zones");
    byUnit->SetIndex("Unit");
    ASSERT_TRUE(byUnit->Seek(Comparison::kEqual, {1}));
    Delete(*units_, 1);
    EXPECT_EQ(Zones().substr(0, 20), "0:2 1:2 2:- 3:- 4:- ");
    EXPECT_EQ(zones_->RecordCount(), 300);
    EXPECT_TRUE(zones_->Get("Unit").IsNull());
    EXPECT_TRUE(byUnit->Get("Unit").IsNull());
    EXPECT_FALSE(byUnit->Seek(Comparison::kEqual, {1}));
    // Only deletions set null: a key in use keeps its value.
    EXPECT_EQ(ErrorOf([&] { Change(*units_, 2, "Unit", 3); }), ErrorKind::kRelatedRecords);
    Delete(*units_, 2);
    EXPECT_EQ(Zones().substr(0, 8), "0:- 1:- ");
}

TEST_P(RelationsTest, RowsThatCannotBearTheNull_KeepTheirParent) {
    TableSchema posts;
    posts.name = "Posts";
    posts.columns = {{.name = "Post"}, {.name = "Unit", .required = true}};
    posts.indexes = {{.name = "Key", .columns = {{"Post"}}, .primary = true},
                     {.name = "Unit", .columns = {{"Unit"}}}};
    database_->CreateTable(posts);
    jet::Relate(*database_, u"Units", u"Key", u"Posts", u"Unit", {.nulls = true});
    Reopen();
    Relate({.nulls = true});
    AddUnit(1);
    AddZone(10, 1);
    const auto rows = database_->OpenTable("Posts");
    rows->AddNew();
    rows->Set("Post", 1);
    rows->Set("Unit", 1);
    rows->Update();
    EXPECT_EQ(ErrorOf([&] { Delete(*units_, 1); }), ErrorKind::kNullNotAllowed);
    EXPECT_EQ(Zones(), "10:1 ");
    rows->MoveFirst();
    rows->Delete();
    Delete(*units_, 1);
    EXPECT_EQ(Zones(), "10:- ");
}

TEST_P(RelationsTest, ARowThatOneRoadDeletesAndAnotherFrees_IsDeleted) {
    Relate({.nulls = true});
    jet::Relate(*database_, u"Units", u"Key", u"Zones", u"Above", {.deletes = true});
    Reopen();
    AddUnit(1);
    AddUnit(2);
    AddZone(10, 1, 1);
    AddZone(11, 1, 2);
    Delete(*units_, 1);
    EXPECT_EQ(Zones(), "11:- ");
}

TEST_P(RelationsTest, ADeletion_SetsNullInTheRowsBelowItsCascade) {
    Relate({.deletes = true});
    jet::Relate(*database_, u"Zones", u"Key", u"Zones", u"Above", {.nulls = true});
    Reopen();
    AddUnit(1);
    AddUnit(2);
    AddZone(10, 1, 10);
    AddZone(11, 2, 10);
    AddZone(12, 2, 11);
    Delete(*units_, 1);
    EXPECT_EQ(Zones(), "11:2 12:2 ");
    ASSERT_TRUE(zones_->Seek(Comparison::kEqual, {11}));
    EXPECT_TRUE(zones_->Get("Above").IsNull());
    ASSERT_TRUE(zones_->Seek(Comparison::kEqual, {12}));
    EXPECT_EQ(zones_->Get("Above"), Value(11));
}

TEST_P(RelationsTest, DeletionsThatAreToDoTwoThings_AreRefused) {
    Relate({.deletes = true, .nulls = true});
    AddUnit(1);
    AddZone(10, 1);
    EXPECT_EQ(ErrorOf([&] { Delete(*units_, 1); }), ErrorKind::kRelatedRecords);
    EXPECT_EQ(Zones(), "10:1 ");
}

TEST_P(RelationsTest, LongChainsOfCascades_EndWell) {
    RelateToSelf({.updates = true, .deletes = true});
    AddZone(0, 0, 0);
    for (int zone = 1; zone < 3000; ++zone) AddZone(zone, 0, zone - 1);
    Change(*zones_, 5, "Zone", 9000);
    ASSERT_TRUE(zones_->Seek(Comparison::kEqual, {6}));
    EXPECT_EQ(zones_->Get("Above"), Value(9000));
    Delete(*zones_, 0);
    EXPECT_EQ(Zones(), "");
}

TEST_P(RelationsTest, APartnerThatIsNotThere_MakesTheTableReadOnly) {
    jet::Relate(*database_, u"Units", u"Key", u"Zones", u"Unit", {});
    OpenFile& file = *database_->Internals().file;
    Definition units = file.Tables().Open(*file.Tables().Find(u"Units")).Def();
    std::erase_if(units.logicalIndexes,
                  [](const LogicalIndex& index) { return index.role == IndexRole::kRelation; });
    {
        Operation operation(file.Pages());
        WriteDefinition(operation, units);
        operation.Commit();
    }
    Reopen();
    EXPECT_EQ(ErrorOf([&] { AddZone(1, Value()); }), ErrorKind::kUnsupported);
}

// Files with relationships of another engine: one cascades deletions, the other one changes.
TEST(RelationsOfOthers, AreKept) {
    const auto corpus = tarn_test::SharedFolder() / "corpus";
    if (!std::filesystem::exists(corpus)) GTEST_SKIP() << tarn_test::kNoCorpus;
    for (const char* name : {"jackcess-indexTestV1997.mdb", "jackcess-indexTestV2000.mdb",
                             "jackcess-indexTestV2003.mdb"}) {
        SCOPED_TRACE(name);
        const tarn_test::TempFolder folder;
        const auto path = folder / name;
        std::filesystem::copy_file(corpus / name, path);
        const auto database = Database::Open(path);
        const auto rows = database->OpenTable("Table1");
        const auto deleting = database->OpenTable("Table2");
        const auto changing = database->OpenTable("Table3");
        const std::int32_t before = rows->RecordCount();
        ASSERT_GT(before, 0);
        const std::int32_t parent = rows->Get("otherfk2").AsLong();

        rows->Edit();
        rows->Set("otherfk1", 9999);
        EXPECT_EQ(ErrorOf([&] { rows->Update(); }), ErrorKind::kNoRelatedRecord);
        rows->CancelUpdate();
        changing->SetIndex("PrimaryKey");
        ASSERT_TRUE(changing->Seek(Comparison::kEqual, {parent}));
        EXPECT_EQ(ErrorOf([&] { changing->Delete(); }), ErrorKind::kRelatedRecords);
        changing->Edit();
        changing->Set("id", 9999);
        changing->Update();
        EXPECT_EQ(rows->Get("otherfk2"), Value(9999));
        deleting->SetIndex("PrimaryKey");
        ASSERT_TRUE(deleting->Seek(Comparison::kEqual, {rows->Get("otherfk1").AsLong()}));
        deleting->Delete();
        EXPECT_LT(rows->RecordCount(), before);
        database->Close();
        tarn_test::ExpectSound(path, corpus / name);
    }
}

}  // namespace
}  // namespace jet
