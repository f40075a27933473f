// Whole files: making, opening, describing; sequences of changes against a model; files of other
// origin.
#include "jet/database.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <map>
#include <random>
#include <set>

#include "jet/recordset.h"
#include "page/format.h"
#include "sample_table.h"
#include "support/jet_files.h"
#include "support/temp_folder.h"

namespace jet {
namespace {

using tarn_test::ExpectSound;

std::vector<char> FileBytes(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

class DatabaseTest : public testing::TestWithParam<Version> {
protected:
    [[nodiscard]] std::filesystem::path Path() const { return folder_ / "some data.mdb"; }
    tarn_test::TempFolder folder_;
};

TEST_P(DatabaseTest, NewFile_IsSoundAndEmpty) {
    const auto database = Database::Create(Path(), GetParam());
    EXPECT_EQ(database->FileVersion(), GetParam());
    EXPECT_TRUE(database->TableNames().empty());
    EXPECT_EQ(
        database->SystemTableNames(),
        (std::vector<std::string>{"MSysObjects", "MSysACEs", "MSysQueries", "MSysRelationships"}));
    database->Close();
    EXPECT_FALSE(std::filesystem::exists(Path().string() + "-log"));
    ExpectSound(Path());
}

TEST_P(DatabaseTest, Create_WhereAFileIs_LeavesItAlone) {
    std::ofstream(Path()) << "something";
    EXPECT_EQ(ErrorOf([&] { static_cast<void>(Database::Create(Path(), GetParam())); }),
              ErrorKind::kAlreadyExists);
    EXPECT_EQ(FileBytes(Path()).size(), 9U);
}

TEST_P(DatabaseTest, SameSteps_GiveTheSameFileButForTheDates) {
    for (const char* name : {"a.mdb", "b.mdb"}) {
        const auto database = Database::Create(folder_ / name, GetParam());
        database->CreateTable(ZonesSchema());
        const auto zones = database->OpenTable("Zones");
        for (std::int32_t i = 0; i < 500; ++i) AddZone(*zones, i * 7 % 500, i, 1);
        database->Close();
    }
    const auto a = FileBytes(folder_ / "a.mdb");
    const auto b = FileBytes(folder_ / "b.mdb");
    ASSERT_EQ(a.size(), b.size());
    const std::size_t page = GetParam() == Version::kJet3 ? 2048 : 4096;
    std::set<std::size_t> different;
    for (std::size_t i = 0; i < a.size(); ++i) {
        if (a[i] != b[i]) different.insert(i / page);
    }
    EXPECT_LE(different.size(), 1U);  // the catalog's page, when a second has passed
}

TEST_P(DatabaseTest, Describe_GivesBackWhatATableWasMadeFrom) {
    TableSchema schema = PeopleSchema();
    schema.columns[1].required = true;
    schema.columns[1].allowZeroLength = false;
    schema.columns[4].defaultValue = "1.5";
    schema.columns[2].defaultValue = "\"Bern\"";
    const auto database = Database::Create(Path(), GetParam());
    database->CreateTable(schema);
    database->Close();
    const auto again = Database::Open(Path());
    EXPECT_EQ(again->TableNames(), std::vector<std::string>{"People"});
    EXPECT_TRUE(again->HasTable("pEOPLE"));
    EXPECT_FALSE(again->HasTable("Persons"));
    const TableSchema found = again->Describe("people");
    ASSERT_EQ(found.columns.size(), schema.columns.size());
    for (std::size_t i = 0; i < schema.columns.size(); ++i) {
        EXPECT_EQ(found.columns[i].name, schema.columns[i].name);
        EXPECT_EQ(found.columns[i].type, schema.columns[i].type);
        EXPECT_EQ(found.columns[i].autoNumber, schema.columns[i].autoNumber);
        EXPECT_EQ(found.columns[i].required, schema.columns[i].required);
        EXPECT_EQ(found.columns[i].allowZeroLength, schema.columns[i].allowZeroLength);
        EXPECT_EQ(found.columns[i].defaultValue, schema.columns[i].defaultValue);
        if (schema.columns[i].length != 0) {
            EXPECT_EQ(found.columns[i].length, schema.columns[i].length);
        }
    }
    ASSERT_EQ(found.indexes.size(), schema.indexes.size());
    for (std::size_t i = 0; i < schema.indexes.size(); ++i) {
        EXPECT_EQ(found.indexes[i].name, schema.indexes[i].name);
        EXPECT_EQ(found.indexes[i].primary, schema.indexes[i].primary);
        EXPECT_EQ(found.indexes[i].ignoreNulls, schema.indexes[i].ignoreNulls);
        ASSERT_EQ(found.indexes[i].columns.size(), schema.indexes[i].columns.size());
        for (std::size_t k = 0; k < schema.indexes[i].columns.size(); ++k) {
            EXPECT_EQ(found.indexes[i].columns[k].name, schema.indexes[i].columns[k].name);
            EXPECT_EQ(found.indexes[i].columns[k].ascending,
                      schema.indexes[i].columns[k].ascending);
        }
    }
    again->Close();
    ExpectSound(Path());
}

TEST_P(DatabaseTest, RequiredAndDefault_AreHonored) {
    TableSchema schema = PeopleSchema();
    schema.columns[1].required = true;
    schema.columns[4].defaultValue = "=1.5";
    schema.columns[2].defaultValue = "\"Bern\"";
    schema.columns[3].defaultValue = "Now()";
    const auto database = Database::Create(Path(), GetParam());
    database->CreateTable(schema);
    const auto people = database->OpenTable("People");
    people->AddNew();
    EXPECT_EQ(people->Get("Town"), Value(u"Bern"));
    EXPECT_EQ(people->Get("Score"), Value(1.5F));
    EXPECT_TRUE(people->Get("Age").IsNull());
    EXPECT_EQ(ErrorOf([&] { people->Update(); }), ErrorKind::kNullNotAllowed);
    people->Set("Name", u"Anna");
    people->Update();
    people->MoveFirst();
    people->Edit();
    people->Set("Name", Value());
    EXPECT_EQ(ErrorOf([&] { people->Update(); }), ErrorKind::kNullNotAllowed);
    people->CancelUpdate();
    EXPECT_EQ(people->Get("Town"), Value(u"Bern"));
}

TEST_P(DatabaseTest, BadSchemas_AreRefusedAndLeaveNothing) {
    const auto database = Database::Create(Path(), GetParam());
    const auto refuse = [&](TableSchema schema, ErrorKind kind) {
        EXPECT_EQ(ErrorOf([&] { database->CreateTable(schema); }), kind) << schema.name;
    };
    for (const char* name : {"", " Zones", "a.b", "a!b", "a[b", "a`b", "a\tb"}) {
        TableSchema schema = ZonesSchema();
        schema.name = name;
        refuse(schema, ErrorKind::kBadName);
    }
    TableSchema schema = ZonesSchema();
    schema.name = std::string(65, 'x');
    refuse(schema, ErrorKind::kBadName);
    schema = ZonesSchema();
    schema.columns.push_back({.name = "ZONE"});
    refuse(schema, ErrorKind::kAlreadyExists);
    schema = ZonesSchema();
    schema.indexes.push_back({.name = "primarykey", .columns = {{"Acres"}}});
    refuse(schema, ErrorKind::kAlreadyExists);
    schema = ZonesSchema();
    schema.indexes[0].columns[1].name = "Nothing";
    refuse(schema, ErrorKind::kNoSuchField);
    schema = ZonesSchema();
    schema.columns.push_back({.name = "Ole", .type = ColumnType::kOle});
    schema.indexes.push_back({.name = "Ole", .columns = {{"Ole"}}});
    refuse(schema, ErrorKind::kUnsupported);
    schema = ZonesSchema();
    schema.columns[2].autoNumber = true;
    refuse(schema, ErrorKind::kUnsupported);
    schema = ZonesSchema();
    schema.columns.clear();
    refuse(schema, ErrorKind::kUnsupported);
    EXPECT_TRUE(database->TableNames().empty());
    database->CreateTable(ZonesSchema());
    schema = ZonesSchema();
    schema.name = "zones";
    refuse(schema, ErrorKind::kAlreadyExists);
    schema.name = "msysobjects";
    refuse(schema, ErrorKind::kAlreadyExists);
    database->Close();
    ExpectSound(Path());
}

TEST_P(DatabaseTest, Decimal_NeedsJet4) {
    TableSchema schema;
    schema.name = "Money";
    schema.columns = {{.name = "Sum", .type = ColumnType::kDecimal, .precision = 10, .scale = 2},
                      {.name = "Who", .type = ColumnType::kGuid}};
    schema.indexes = {{.name = "Sum", .columns = {{"Sum"}}}, {.name = "Who", .columns = {{"Who"}}}};
    const auto database = Database::Create(Path(), GetParam());
    if (GetParam() == Version::kJet3) {
        EXPECT_EQ(ErrorOf([&] { database->CreateTable(schema); }), ErrorKind::kUnsupported);
        return;
    }
    database->CreateTable(schema);
    const auto money = database->OpenTable("Money");
    for (const double sum : {12.34, -5.0, 0.0}) {
        money->AddNew();
        money->Set("Sum", sum);
        money->Update();
    }
    money->SetIndex("Sum");
    EXPECT_EQ(money->Get("Sum").AsText(), u"-5");
    EXPECT_TRUE(money->Seek(Comparison::kEqual, {12.34}));
    database->Close();
    ExpectSound(Path());
}

TEST_P(DatabaseTest, WidestTable_TakesSeveralDefinitionPages) {
    TableSchema schema;
    schema.name = "Wide";
    for (int i = 0; i < 255; ++i) {
        schema.columns.push_back(
            {.name = "A field with quite a long name, number " + std::to_string(i),
             .type = i % 2 == 0 ? ColumnType::kText : ColumnType::kInteger,
             .length = i % 2 == 0 ? 10 : 0});
    }
    for (int i = 0; i < 30; ++i) {
        schema.indexes.push_back({.name = "Index " + std::to_string(i),
                                  .columns = {{schema.columns[static_cast<std::size_t>(i)].name},
                                              {schema.columns[200].name, false}}});
    }
    const auto database = Database::Create(Path(), GetParam());
    database->CreateTable(schema);
    auto wide = database->OpenTable("Wide");
    for (int row = 0; row < 30; ++row) {
        wide->AddNew();
        for (int i = row; i < 255; i += 3)
            wide->Set(FieldId{i}, i % 2 == 0 ? Value(u"ab") : Value(i));
        wide->Update();
    }
    wide.reset();
    database->Close();
    const auto again = Database::Open(Path());
    EXPECT_EQ(again->Describe("Wide").columns.size(), 255U);
    const auto reread = again->OpenTable("Wide");
    EXPECT_EQ(reread->RecordCount(), 30);
    EXPECT_EQ(reread->Get(FieldId{3}), Value(3));
    EXPECT_TRUE(reread->Get(FieldId{4}).IsNull());
    again->Close();
    ExpectSound(Path());
}

TEST_P(DatabaseTest, SystemTables_OpenForReadingOnly) {
    const auto database = Database::Create(Path(), GetParam());
    const auto objects = database->OpenTable("MSysObjects");
    EXPECT_EQ(objects->RecordCount(), 8);
    objects->SetIndex("ParentIdName");
    EXPECT_TRUE(objects->Seek(Comparison::kEqual, {0x0F000001, Value(u"msysaces")}));
    EXPECT_EQ(ErrorOf([&] { objects->AddNew(); }), ErrorKind::kReadOnly);
    EXPECT_EQ(ErrorOf([&] { objects->Edit(); }), ErrorKind::kReadOnly);
    EXPECT_EQ(ErrorOf([&] { objects->Delete(); }), ErrorKind::kReadOnly);
}

TEST_P(DatabaseTest, ReadOnlyOpening_ReadsAndRefusesToWrite) {
    {
        const auto database = Database::Create(Path(), GetParam());
        database->CreateTable(ZonesSchema());
        AddZone(*database->OpenTable("Zones"), 1, 1, 1);
    }
    const auto before = FileBytes(Path());
    {
        const auto database = Database::Open(Path(), {.exclusive = false, .readOnly = true});
        EXPECT_TRUE(database->IsReadOnly());
        const auto zones = database->OpenTable("Zones");
        EXPECT_EQ(zones->Get("Zone"), Value(1));
        EXPECT_EQ(ErrorOf([&] { zones->Edit(); }), ErrorKind::kReadOnly);
        EXPECT_EQ(ErrorOf([&] { database->CreateTable(PeopleSchema()); }), ErrorKind::kReadOnly);
    }
    EXPECT_EQ(FileBytes(Path()), before);
}

TEST_P(DatabaseTest, ExclusiveFile_CannotBeOpenedAgain) {
    const auto database = Database::Create(Path(), GetParam());
    EXPECT_EQ(ErrorOf([&] { static_cast<void>(Database::Open(Path())); }), ErrorKind::kFileInUse);
}

// A table with all kinds of fields against a map from its number to its values.
class Model {
public:
    Model(const std::filesystem::path& path, Version version, unsigned seed)
        : path_(path), random_(seed), database_(Database::Create(path, version)) {
        database_->CreateTable(PeopleSchema());
        Reopen(false);
    }

    void Step() {
        const unsigned what = Below(100);
        if (what < 50 || rows_.empty()) {
            Add();
        } else if (what < 80) {
            Change();
        } else if (what < 97) {
            Remove();
        } else if (what < 99) {
            database_->MakeDurable();
        } else {
            Reopen(true);
        }
    }

    void Compare() {
        people_->SetIndex("PrimaryKey");
        ASSERT_EQ(people_->RecordCount(), static_cast<std::int32_t>(rows_.size()));
        auto expected = rows_.begin();
        for (people_->MoveFirst(); !people_->IsEof(); people_->MoveNext(), ++expected) {
            ASSERT_NE(expected, rows_.end());
            ASSERT_EQ(people_->Get("ID"), Value(expected->first));
            for (std::size_t i = 1; i < expected->second.size(); ++i) {
                ASSERT_EQ(people_->Get(FieldId{static_cast<int>(i)}), expected->second[i])
                    << "record " << expected->first << " field " << i;
            }
        }
        ASSERT_EQ(expected, rows_.end());
    }

    void Close() {
        people_.reset();
        database_->Close();
    }

private:
    using Row = std::vector<Value>;

    unsigned Below(unsigned limit) { return static_cast<unsigned>(random_() % limit); }

    void Reopen(bool close) {
        people_.reset();
        if (close) {
            database_->Close();
            database_ = Database::Open(path_);
        }
        people_ = database_->OpenTable("People");
        people_->SetIndex("PrimaryKey");
    }

    std::u16string Text(unsigned most) {
        std::u16string text;
        const unsigned size = Below(most + 1);
        for (unsigned i = 0; i < size; ++i) {
            text.push_back(
                static_cast<char16_t>(Below(30) == 0 ? 0xE0 + Below(30) : 'a' + Below(6)));
        }
        return text;
    }

    Value RandomValue(int field) {
        if (Below(6) == 0) return field == 9 ? Value(false) : Value();
        switch (field) {
            case 1:
                return Text(8) + u"-" + Value(static_cast<std::int32_t>(++serial_)).AsText();
            case 2:
                return Text(5);
            case 3:
                return static_cast<std::int32_t>(Below(60)) - 30;
            case 4:
                return static_cast<float>(Below(1000)) / 7;
            case 5:
                return static_cast<double>(Below(1000)) / -3;
            case 6:
                return Currency{static_cast<std::int64_t>(Below(1000000)) * -77};
            case 7:
                return Date{static_cast<double>(Below(40000)) + 0.25};
            case 8:
                return static_cast<std::int32_t>(Below(256));
            case 9:
                return Below(2) == 0;
            case 10:
                return Text(Below(8) == 0 ? 9000 : Below(2) == 0 ? 900 : 40);
            case 11:
                return Binary(Below(8) == 0 ? Below(9000) : Below(60), std::byte{0x5A});
            default:
                return Binary(Below(13), static_cast<std::byte>(Below(256)));
        }
    }

    void SetRandom(Row& row, unsigned share) {
        for (int field = 1; field < 13; ++field) {
            if (Below(share) != 0) continue;
            const Value value = RandomValue(field);
            people_->Set(FieldId{field}, value);
            row[static_cast<std::size_t>(field)] = value;
        }
    }

    void Add() {
        Row row(13);
        row[9] = false;
        people_->AddNew();
        SetRandom(row, 2);
        const std::int32_t id = people_->Get("ID").AsLong();
        people_->Update();
        rows_[id] = row;
    }

    bool SeekRandom() {
        auto at = rows_.lower_bound(
            static_cast<std::int32_t>(Below(static_cast<unsigned>(rows_.rbegin()->first) + 1)));
        return people_->Seek(Comparison::kEqual, {at->first});
    }

    void Change() {
        ASSERT_TRUE(SeekRandom());
        const std::int32_t id = people_->Get("ID").AsLong();
        Row row = rows_[id];
        people_->Edit();
        SetRandom(row, 4);
        people_->Update();
        rows_[id] = row;
    }

    void Remove() {
        ASSERT_TRUE(SeekRandom());
        rows_.erase(people_->Get("ID").AsLong());
        people_->Delete();
    }

    std::filesystem::path path_;
    std::mt19937 random_;
    std::unique_ptr<Database> database_;
    std::unique_ptr<Recordset> people_;
    std::map<std::int32_t, Row> rows_;
    unsigned serial_ = 0;
};

TEST_P(DatabaseTest, RandomChanges_AgreeWithTheModel) {
    const char* asked = std::getenv("TARN_LONG_STEPS");
    const int steps = asked != nullptr ? std::atoi(asked) : 4000;
    Model model(Path(), GetParam(), 42);
    for (int step = 1; step <= steps; ++step) {
        ASSERT_NO_FATAL_FAILURE(model.Step()) << "step " << step;
        if (step % 1000 == 0) {
            ASSERT_NO_FATAL_FAILURE(model.Compare()) << "step " << step;
        }
    }
    ASSERT_NO_FATAL_FAILURE(model.Compare());
    model.Close();
    ExpectSound(Path());
}

TEST_P(DatabaseTest, DeletedRecords_GiveTheirPagesBack) {
    const auto database = Database::Create(Path(), GetParam());
    database->CreateTable(PeopleSchema());
    const auto people = database->OpenTable("People");
    std::uintmax_t first = 0;
    for (int round = 0; round < 6; ++round) {
        for (int i = 0; i < 300; ++i) {
            people->AddNew();
            people->Set("Story", std::u16string(3000, u'x'));
            people->Set("Name", Value(round * 1000 + i).AsText());
            people->Update();
        }
        for (people->MoveFirst(); !people->IsEof(); people->MoveNext()) people->Delete();
        database->MakeDurable();
        if (round == 0) first = std::filesystem::file_size(Path());
    }
    EXPECT_LE(std::filesystem::file_size(Path()), first + 64 * 1024);
    database->Close();
    ExpectSound(Path());
}

// What an independent reader makes of a table, as lines of comma-separated values.
std::string ExportedTable(const std::filesystem::path& file, const std::string& table) {
    return tarn_test::RunCommand("mdb-export " + tarn_test::Quoted(file) + " " + table).output;
}

TEST_P(DatabaseTest, FilledTable_ReadsTheSameElsewhere) {
    if (tarn_test::RunCommand("mdb-export --version").status != 0) {
        GTEST_SKIP() << "mdb-export of mdbtools, which reads the file, is not installed.";
    }
    const auto database = Database::Create(Path(), GetParam());
    TableSchema schema;
    schema.name = "Notes";
    schema.columns = {{.name = "ID", .autoNumber = true},
                      {.name = "Title", .type = ColumnType::kText, .length = 60},
                      {.name = "Body", .type = ColumnType::kMemo},
                      {.name = "Amount", .type = ColumnType::kDouble}};
    schema.indexes = {{.name = "PrimaryKey", .columns = {{"ID"}}, .primary = true}};
    database->CreateTable(schema);
    const auto notes = database->OpenTable("Notes");
    std::string expected = "ID,Title,Body,Amount\n";
    for (int i = 1; i <= 400; ++i) {
        const std::size_t length = static_cast<std::size_t>(i * i % 7001) + 1;
        notes->AddNew();
        notes->Set("Title", u"title " + Value(i).AsText());
        notes->Set("Body", std::u16string(length, u'b'));
        if (i % 2 == 0) notes->Set("Amount", i + 0.5);
        notes->Update();
        expected += std::to_string(i) + ",\"title " + std::to_string(i) + "\",\"" +
                    std::string(length, 'b') + "\"," +
                    (i % 2 == 0 ? std::to_string(i) + ".5" : "") + "\n";
    }
    database->Close();
    EXPECT_EQ(ExportedTable(Path(), "Notes"), expected);
}

INSTANTIATE_TEST_SUITE_P(BothVersions, DatabaseTest,
                         testing::Values(Version::kJet3, Version::kJet4),
                         [](const auto& tested) { return VersionName(tested.param); });

// Bytes of a new Jet 4 file that differ from those of a file that the original engine made.
TEST(NewJet4File, EqualsTheOriginalEngines) {
    const auto original = tarn_test::SharedFolder() / "corpus" / "jackcess-adox_jet4.mdb";
    if (!std::filesystem::exists(original)) GTEST_SKIP() << tarn_test::kNoCorpus;
    const tarn_test::TempFolder folder;
    Database::Create(folder / "new.mdb", Version::kJet4)->Close();
    const auto ours = FileBytes(folder / "new.mdb");
    const auto theirs = FileBytes(original);
    ASSERT_EQ(ours.size(), theirs.size());
    std::map<std::size_t, int> different;
    for (std::size_t i = 0; i < ours.size(); ++i) {
        if (ours[i] != theirs[i] && i / 4096 != 0) ++different[i / 4096];
    }
    // In the definitions there are left-over bytes in unused fields; in the catalog the dates.
    for (const auto& [page, count] : different) {
        EXPECT_TRUE(page <= 5 || page == 14) << "page " << page;
        EXPECT_LE(count, page == 14 ? 8 * 16 : 60) << "page " << page;
    }
}

TEST(CorpusFiles, EveryTableAndIndex_IsReadWhole) {
    const auto files = tarn_test::CorpusFiles();
    if (files.empty()) GTEST_SKIP() << tarn_test::kNoCorpus;
    int tables = 0;
    for (const auto& file : files) {
        std::unique_ptr<Database> database;
        try {
            database = Database::Open(file, {.exclusive = false, .readOnly = true});
        } catch (const Error& error) {
            EXPECT_EQ(error.Kind(), ErrorKind::kEncrypted) << file;
            continue;
        }
        for (const std::string& name : database->TableNames()) {
            ++tables;
            const auto records = database->OpenTable(name);
            std::int32_t rows = 0;
            for (; !records->IsEof(); records->MoveNext()) {
                ++rows;
                for (int i = 0; i < static_cast<int>(records->Fields().size()); ++i) {
                    static_cast<void>(records->Get(FieldId{i}));
                }
            }
            for (const IndexSchema& index : database->Describe(name).indexes) {
                records->SetIndex(index.name);
                std::int32_t entries = 0;
                for (; !records->IsEof(); records->MoveNext()) ++entries;
                EXPECT_TRUE(entries == rows || index.ignoreNulls) << file << " " << index.name;
                if (entries == 0) continue;
                for (records->MoveLast(); !records->IsBof(); records->MovePrevious()) --entries;
                EXPECT_EQ(entries, 0) << file << " " << index.name;
            }
        }
    }
    EXPECT_GT(tables, 100);
}

// A value of the field's type that differs from those around it.
Value SomeValue(const ColumnSchema& column, int round) {
    switch (column.type) {
        case ColumnType::kBoolean:
            return round % 2 == 0;
        case ColumnType::kByte:
            return 100 + round % 100;
        case ColumnType::kText: {
            const std::u16string text = u"z" + Value(round).AsText() + u" entry, changed";
            return text.substr(0, static_cast<std::size_t>(column.length));
        }
        case ColumnType::kMemo:
            return std::u16string(static_cast<std::size_t>(round * 1500), u'm');
        case ColumnType::kOle:
            return Binary(static_cast<std::size_t>(round * 1500), std::byte{1});
        case ColumnType::kBinary:
            return Binary(static_cast<std::size_t>(column.length), static_cast<std::byte>(round));
        case ColumnType::kGuid: {
            Guid guid;
            guid.bytes[0] = static_cast<std::byte>(round);
            return guid;
        }
        default:
            return 20000 + round;
    }
}

// Adds, changes and deletes in one table; false where the engine declines to write.
bool EditTable(Database& database, const std::string& name) {
    const auto records = database.OpenTable(name);
    std::int32_t expected = records->RecordCount();
    try {
        for (int round = 0; round < 12; ++round) {
            records->AddNew();
            for (int i = 0; i < static_cast<int>(records->Fields().size()); ++i) {
                const ColumnSchema& column = records->Fields()[static_cast<std::size_t>(i)];
                if (column.autoNumber || column.type == ColumnType::kFixedBinary) continue;
                records->Set(FieldId{i}, SomeValue(column, round));
            }
            records->Update();
            ++expected;
        }
        int at = 0;
        for (records->MoveFirst(); !records->IsEof() && at < 60; records->MoveNext(), ++at) {
            if (at % 5 == 4) {
                records->Delete();
                --expected;
                continue;
            }
            records->Edit();
            for (int i = 0; i < static_cast<int>(records->Fields().size()); ++i) {
                const ColumnSchema& column = records->Fields()[static_cast<std::size_t>(i)];
                if (column.autoNumber || column.type == ColumnType::kFixedBinary) continue;
                if ((i + at) % 3 == 0) records->Set(FieldId{i}, SomeValue(column, 30 + at));
            }
            try {
                records->Update();
            } catch (const Error& error) {
                if (error.Kind() != ErrorKind::kDuplicateKey) throw;
                records->CancelUpdate();
            }
        }
    } catch (const Error& error) {
        constexpr ErrorKind kDeclining[] = {
            ErrorKind::kUnsupported,          ErrorKind::kDuplicateKey,
            ErrorKind::kRecordTooLarge,       ErrorKind::kOverflow,
            ErrorKind::kRelatedRecords,       ErrorKind::kNoRelatedRecord,
            ErrorKind::kZeroLengthNotAllowed, ErrorKind::kRuleViolated};
        const bool declined = std::find(std::begin(kDeclining), std::end(kDeclining),
                                        error.Kind()) != std::end(kDeclining);
        EXPECT_TRUE(declined) << name << ": " << error.what();
        return false;
    }
    EXPECT_EQ(records->RecordCount(), expected);
    return true;
}

TEST(CorpusFiles, EditsInACopy_LeaveItAsSoundAsItWas) {
    const auto files = tarn_test::CorpusFiles();
    if (files.empty()) GTEST_SKIP() << tarn_test::kNoCorpus;
    const tarn_test::TempFolder folder;
    int edited = 0;
    for (const auto& file : files) {
        const auto copy = folder / file.filename().string();
        std::filesystem::copy_file(file, copy);
        std::filesystem::permissions(copy, std::filesystem::perms::owner_all);
        try {
            const auto database = Database::Open(copy);
            for (const std::string& name : database->TableNames()) {
                if (EditTable(*database, name)) ++edited;
            }
            database->CreateTable(PeopleSchema());
            AddZone(
                *[&] {
                    database->CreateTable(ZonesSchema());
                    return database->OpenTable("Zones");
                }(),
                1, 1, 1);
            database->Close();
        } catch (const Error& error) {
            EXPECT_TRUE(error.Kind() == ErrorKind::kEncrypted ||
                        error.Kind() == ErrorKind::kUnsupported)
                << file << ": " << error.what();
            continue;
        }
        ExpectSound(copy, file);
    }
    EXPECT_GT(edited, 60);
}

}  // namespace
}  // namespace jet
