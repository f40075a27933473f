// Database and record set as the program speaks of them.
#include <gtest/gtest.h>

#include <QDir>
#include <QSize>
#include <QTemporaryDir>

#include <cstdint>
#include <functional>
#include <limits>
#include <memory>

#include "jet/database.h"
#include "jet/file.h"
#include "platform/dao/Convert.h"
#include "platform/dao/Database.h"
#include "platform/dao/Recordset.h"

namespace {

int NumberOf(const std::function<void()>& body) {
    try {
        body();
    } catch (const platform::RuntimeError& error) {
        EXPECT_FALSE(error.Description().isEmpty());
        return error.Number();
    }
    return 0;
}

class DaoTest : public testing::Test {
protected:
    DaoTest() : folder_(QDir::tempPath() + QStringLiteral("/tarn dao XXXXXX")) {
        jet::Database::Create(dao::ToPath(path_), jet::Version::kJet4)->Close();
        const auto database = Open();
        dao::TableDefinition table;
        table.name = QStringLiteral("Zones");
        table.fields = {{QStringLiteral("Key"), dao::FieldType::kLong, 0, true},
                        {QStringLiteral("Name"), dao::FieldType::kText, 20},
                        {QStringLiteral("Size"), dao::FieldType::kSingle},
                        {QStringLiteral("Count"), dao::FieldType::kLong},
                        {QStringLiteral("Note"), dao::FieldType::kMemo}};
        table.indexes = {{QStringLiteral("PrimaryKey"), {QStringLiteral("Key")}, true, true},
                         {QStringLiteral("Name"), {QStringLiteral("Name")}}};
        database->AppendTable(table);
        database->Close();
    }

    [[nodiscard]] std::unique_ptr<dao::Database> Open() const {
        return dao::Database::Open(path_, dao::OpenMode::kExclusive);
    }
    static void Add(dao::Recordset& zones, const QString& name, float size) {
        zones.AddNew();
        zones.SetField(QStringLiteral("Name"), name);
        zones.SetField(QStringLiteral("size"), size);
        zones.Update();
    }

    QTemporaryDir folder_;
    QString path_ = folder_.filePath(QStringLiteral("zones.mdb"));
};

TEST_F(DaoTest, Fields_OfEachType_ComeBackAsTheyWent) {
    const auto database = Open();
    const auto zones = database->OpenTable(QStringLiteral("zones"));
    const QString name = QStringLiteral("Größe \U0001F525");
    const QString note = QChar(0xFEFF) + QString(70000, QChar(0x3B1));
    zones->AddNew();
    zones->SetField(QStringLiteral("NAME"), name);
    zones->SetField(QStringLiteral("Size"), -0.25F);
    zones->SetField(QStringLiteral("Count"), std::numeric_limits<std::int32_t>::min());
    zones->SetField(QStringLiteral("Note"), note);
    zones->Update();
    zones->MoveLast();
    EXPECT_EQ(zones->Field(QStringLiteral("Key")).toInt(), 1);
    EXPECT_EQ(zones->Text(QStringLiteral("name")), name);
    EXPECT_EQ(zones->Single(QStringLiteral("Size")), -0.25F);
    EXPECT_EQ(zones->Field(QStringLiteral("Size")).typeId(), QMetaType::Float);
    EXPECT_EQ(zones->Long(QStringLiteral("Count")), std::numeric_limits<std::int32_t>::min());
    EXPECT_EQ(zones->Text(QStringLiteral("Note")), note);
}

TEST_F(DaoTest, Null_IsAnInvalidVariantBothWays) {
    const auto database = Open();
    const auto zones = database->OpenTable(QStringLiteral("Zones"));
    Add(*zones, QStringLiteral("A"), 1);
    zones->MoveLast();
    zones->Edit();
    zones->SetField(QStringLiteral("Size"), QVariant());
    zones->Update();
    EXPECT_TRUE(zones->IsNull(QStringLiteral("Size")));
    EXPECT_FALSE(zones->Field(QStringLiteral("Size")).isValid());
    EXPECT_EQ(zones->Single(QStringLiteral("Size")), 0.0F);
    EXPECT_EQ(zones->Text(QStringLiteral("Note")), QString());
}

TEST_F(DaoTest, Seek_EachComparison_FindsWhatItSays) {
    const auto database = Open();
    const auto zones = database->OpenTable(QStringLiteral("Zones"));
    for (const char* name : {"B", "D", "F"}) {
        Add(*zones, QString::fromLatin1(name), 0);
    }
    zones->SetIndex(QStringLiteral("Name"));
    const auto found = [&](std::string_view comparison, const char* key) {
        zones->Seek(comparison, {QString::fromLatin1(key)});
        return zones->NoMatch() ? QString() : zones->Text(QStringLiteral("Name"));
    };
    EXPECT_EQ(found("=", "d"), QStringLiteral("D"));
    EXPECT_EQ(found("=", "C"), QString());
    EXPECT_EQ(found(">=", "C"), QStringLiteral("D"));
    EXPECT_EQ(found(">", "D"), QStringLiteral("F"));
    EXPECT_EQ(found("<", "D"), QStringLiteral("B"));
    EXPECT_EQ(found("<=", "D"), QStringLiteral("D"));
    EXPECT_EQ(NumberOf([&] { zones->Seek("<>", {QStringLiteral("D")}); }),
              platform::kInvalidArgument);
}

TEST_F(DaoTest, Errors_OfTheEngine_BringTheirNumbers) {
    const auto database = Open();
    EXPECT_EQ(NumberOf([&] { (void)database->OpenTable(QStringLiteral("Nothing")); }), 3078);
    EXPECT_EQ(NumberOf([&] { (void)database->OpenDynaset(QStringLiteral("SELECT '")); }), 3075);
    const auto zones = database->OpenTable(QStringLiteral("Zones"));
    EXPECT_EQ(NumberOf([&] { zones->SetIndex(QStringLiteral("Nothing")); }), 3015);
    EXPECT_EQ(NumberOf([&] { (void)zones->Field(QStringLiteral("Nothing")); }), 3265);
    EXPECT_EQ(NumberOf([&] { zones->Edit(); }), 3021);
    EXPECT_EQ(NumberOf([&] { zones->Update(); }), 3020);
    zones->AddNew();
    EXPECT_EQ(NumberOf([&] { zones->SetField(QStringLiteral("Size"), 1e300); }), 6);
    EXPECT_EQ(NumberOf([&] { zones->SetField(QStringLiteral("Name"), QString(21, u'x')); }), 3163);
    EXPECT_EQ(NumberOf([&] { zones->SetField(QStringLiteral("Name"), QVariant(QSize())); }), 13);
    zones->CancelUpdate();
    database->Close();
    EXPECT_EQ(NumberOf([&] { zones->MoveFirst(); }), 3420);
    EXPECT_EQ(NumberOf([&] {
                  (void)dao::Database::Open(folder_.filePath(QStringLiteral("none.mdb")),
                                            dao::OpenMode::kExclusive);
              }),
              3024);
}

TEST_F(DaoTest, Dynaset_WithConditionAndOrder_GivesItsRows) {
    const auto database = Open();
    {
        const auto zones = database->OpenTable(QStringLiteral("Zones"));
        Add(*zones, QStringLiteral("a"), 3);
        Add(*zones, QStringLiteral("b"), 2);
        Add(*zones, QStringLiteral("A"), 1);
    }
    const auto rows =
        database->OpenDynaset(QStringLiteral("SELECT * FROM Zones WHERE Name = 'a' ORDER BY Size"));
    EXPECT_EQ(rows->Single(QStringLiteral("Size")), 1.0F);
    rows->MoveNext();
    EXPECT_EQ(rows->Single(QStringLiteral("Size")), 3.0F);
    rows->MoveNext();
    EXPECT_TRUE(rows->EndOfFile());
}

TEST_F(DaoTest, Exclusive_HeldByOne_IsRefusedToTheNext) {
    const auto database = Open();
    EXPECT_EQ(NumberOf([&] { (void)Open(); }), 3045);
    EXPECT_EQ(NumberOf([&] { dao::Database::RequireFree(path_); }), 3045);
    database->Close();
    EXPECT_EQ(NumberOf([&] { dao::Database::RequireFree(path_); }), 0);
    EXPECT_EQ(
        NumberOf([&] { dao::Database::RequireFree(folder_.filePath(QStringLiteral("none.mdb"))); }),
        0);
}

TEST_F(DaoTest, RequireFree_WhereALockFileIsHeld_IsRefused) {
    QString lock = path_;
    lock.replace(QStringLiteral(".mdb"), QStringLiteral(".ldb"));
    const std::filesystem::path lockPath = dao::ToPath(lock);
    auto holder = jet::HostFileSystem().Open(lockPath, jet::OpenMode::kCreateNew);
    ASSERT_TRUE(holder->TryLock(true));
    EXPECT_EQ(NumberOf([&] { dao::Database::RequireFree(path_); }), 3045);
    holder.reset();
    EXPECT_EQ(NumberOf([&] { dao::Database::RequireFree(path_); }), 0);
}

TEST_F(DaoTest, Shared_TwoReaders_BothOpen) {
    const auto first = dao::Database::Open(path_, dao::OpenMode::kReading);
    const auto second = dao::Database::Open(path_, dao::OpenMode::kReading);
    EXPECT_EQ(second->OpenTable(QStringLiteral("Zones"))->RecordCount(), 0);
    EXPECT_EQ(NumberOf([&] { (void)Open(); }), 3045);
}

TEST(DaoValues, Variants_OfEachNumberType_KeepTheirValue) {
    EXPECT_EQ(dao::ToValue(QVariant(7)), jet::Value(7));
    EXPECT_EQ(dao::ToValue(QVariant(qlonglong(7))), jet::Value(7));
    EXPECT_EQ(dao::ToValue(QVariant(qlonglong(1) << 40)), jet::Value(1099511627776.0));
    EXPECT_EQ(dao::ToValue(QVariant(0.5F)), jet::Value(0.5F));
    EXPECT_EQ(dao::ToValue(QVariant(0.1)), jet::Value(0.1));
    EXPECT_EQ(dao::ToValue(QVariant(QStringLiteral("x"))), jet::Value(u"x"));
    EXPECT_TRUE(dao::ToValue(QVariant()).IsNull());
    EXPECT_EQ(dao::ToVariant(jet::Value(true)), QVariant(-1));
    EXPECT_EQ(dao::ToVariant(jet::Value(jet::Currency{12345})), QVariant(1.2345));
    EXPECT_EQ(dao::ToVariant(jet::Value(jet::Date{2.5})), QVariant(2.5));
}

TEST(DaoValues, VariantsOfOtherKinds_KeepTheirValueOrAreRefused) {
    EXPECT_EQ(dao::ToValue(QVariant(true)), jet::Value(true));
    EXPECT_EQ(dao::ToValue(QVariant::fromValue(std::int16_t{-7})), jet::Value(-7));
    EXPECT_EQ(dao::ToValue(QVariant::fromValue(std::uint16_t{7})), jet::Value(7));
    EXPECT_EQ(dao::ToValue(QVariant(7U)), jet::Value(7));
    EXPECT_EQ(dao::ToValue(QVariant::fromValue(-7L)), jet::Value(-7));
    EXPECT_EQ(dao::ToValue(QVariant(-(qlonglong(1) << 40))), jet::Value(-1099511627776.0));
    EXPECT_EQ(NumberOf([] { (void)dao::ToValue(QVariant(QSize(1, 2))); }), platform::kTypeMismatch);
    EXPECT_EQ(dao::ToVariant(jet::Value(false)), QVariant(0));
    const jet::Binary bytes{std::byte{1}, std::byte{0}, std::byte{255}};
    EXPECT_EQ(dao::ToValue(dao::ToVariant(jet::Value(bytes))), jet::Value(bytes));
    jet::Guid guid;
    guid.bytes[15] = std::byte{9};
    EXPECT_EQ(dao::ToVariant(jet::Value(guid)).toByteArray().size(), 16);
    EXPECT_EQ(dao::ToVariant(jet::Value(guid)).toByteArray().back(), char{9});
}

TEST_F(DaoTest, PrimaryIndex_IsUniqueWithoutBeingCalledSo) {
    const auto database = Open();
    dao::TableDefinition table;
    table.name = QStringLiteral("Names");
    table.fields = {{QStringLiteral("Name"), dao::FieldType::kText, 20}};
    table.indexes = {{QStringLiteral("PrimaryKey"), {QStringLiteral("Name")}, true, false}};
    database->AppendTable(table);
    const auto names = database->OpenTable(QStringLiteral("Names"));
    names->AddNew();
    names->SetField(QStringLiteral("Name"), QStringLiteral("a"));
    names->Update();
    names->AddNew();
    names->SetField(QStringLiteral("Name"), QStringLiteral("A"));
    EXPECT_EQ(NumberOf([&] { names->Update(); }), platform::kDuplicateKey);
}

}  // namespace
