// The catalog: names, permissions of new tables, and catalogs that make no sense.
#include "catalog/catalog.h"

#include <gtest/gtest.h>

#include "jet/database.h"
#include "jet/file.h"
#include "page/bytes.h"
#include "recordset/open_file.h"
#include "sample_table.h"

namespace jet {
namespace {

class CatalogTest : public testing::TestWithParam<Version> {
protected:
    CatalogTest()
        : files_(MakeMemoryFileSystem()),
          database_(Database::Create("catalog.mdb", GetParam(), *files_)) {}

    Catalog& Tables() { return database_->Internals().file->Tables(); }
    // The permissions on an object, as (holder, mask) in stored order.
    std::vector<std::pair<Value, Value>> PermissionsOn(std::uint32_t object) {
        std::vector<std::pair<Value, Value>> found;
        const auto permissions = database_->OpenTable("MSysACEs");
        for (; !permissions->IsEof(); permissions->MoveNext()) {
            if (permissions->Get("ObjectId") != Value(static_cast<std::int32_t>(object))) continue;
            found.emplace_back(permissions->Get("SID"), permissions->Get("ACM"));
        }
        return found;
    }

    std::unique_ptr<FileSystem> files_;
    std::unique_ptr<Database> database_;
};

TEST_P(CatalogTest, NewTable_InheritsWhatItsContainerGrants) {
    database_->CreateTable(ZonesSchema());
    const SecurityId mask = GetParam() == Version::kJet3 ? SecurityId{} : SecurityId{0x67, 0x8A};
    const auto granted = PermissionsOn(Tables().Find(u"Zones")->definition.value);
    ASSERT_EQ(granted.size(), 2U);
    EXPECT_EQ(granted[0].first, Value(MaskedId(kAdminId, mask)));
    EXPECT_EQ(granted[0].second, Value(0xF00FE));
    EXPECT_EQ(granted[1].first, Value(MaskedId(kUsersId, mask)));
    EXPECT_EQ(granted[1].second, Value(0xFFEFF));
}

TEST_P(CatalogTest, NewTable_IsOwnedByTheDatabasesOwner) {
    database_->CreateTable(ZonesSchema());
    const auto objects = database_->OpenTable("MSysObjects");
    objects->SetIndex("Id");
    ASSERT_TRUE(objects->Seek(Comparison::kEqual, {static_cast<std::int32_t>(kDatabaseId)}));
    const Value owner = objects->Get("Owner");
    objects->SetIndex("ParentIdName");
    ASSERT_TRUE(
        objects->Seek(Comparison::kEqual, {static_cast<std::int32_t>(kTablesId), Value(u"zones")}));
    EXPECT_EQ(objects->Get("Owner"), owner);
    EXPECT_EQ(objects->Get("Flags"), Value(0));
    EXPECT_TRUE(objects->Get("LvProp").IsNull());
    EXPECT_GT(objects->Get("DateCreate").AsDouble(), 40000);
}

TEST_P(CatalogTest, Names_IgnoreCaseBeyondThePlainLetters) {
    TableSchema schema = ZonesSchema();
    schema.name = "\xC3\x84rger";  // with a capital umlaut
    database_->CreateTable(schema);
    EXPECT_TRUE(database_->HasTable("\xC3\xA4RGER"));
    EXPECT_FALSE(database_->HasTable("arger"));
    schema.name = "\xC3\xA4rger";
    EXPECT_EQ(ErrorOf([&] { database_->CreateTable(schema); }), ErrorKind::kAlreadyExists);
}

TEST_P(CatalogTest, OpeningATableTwice_GivesTheSameTable) {
    database_->CreateTable(ZonesSchema());
    EXPECT_EQ(&Tables().Open(*Tables().Find(u"Zones")), &Tables().Open(*Tables().Find(u"ZONES")));
}

TEST_P(CatalogTest, EntryWithoutADefinition_FailsOnlyForThatTable) {
    database_->CreateTable(ZonesSchema());
    database_->CreateTable(PeopleSchema());
    const PageNumber page = Tables().Find(u"People")->definition;
    Pager& pager = database_->Internals().file->Pages();
    {
        Operation operation(pager);
        WriteU16(operation.Change(page), 0, 0x0101);
        operation.Commit();
    }
    EXPECT_EQ(database_->TableNames().size(), 2U);
    EXPECT_EQ(ErrorOf([&] { static_cast<void>(database_->OpenTable("People")); }),
              ErrorKind::kDamaged);
    EXPECT_EQ(ErrorOf([&] { static_cast<void>(database_->Describe("People")); }),
              ErrorKind::kDamaged);
    EXPECT_EQ(database_->OpenTable("Zones")->RecordCount(), 0);
}

TEST_P(CatalogTest, TableNamedByALongLine_IsRefusedAndAShortOneTaken) {
    TableSchema schema = ZonesSchema();
    schema.name = std::string(64, 'n');
    database_->CreateTable(schema);
    EXPECT_TRUE(database_->HasTable(std::string(64, 'N')));
    schema.name += "n";
    EXPECT_EQ(ErrorOf([&] { database_->CreateTable(schema); }), ErrorKind::kBadName);
}

INSTANTIATE_TEST_SUITE_P(BothVersions, CatalogTest, testing::Values(Version::kJet3, Version::kJet4),
                         [](const auto& tested) { return VersionName(tested.param); });

}  // namespace
}  // namespace jet
