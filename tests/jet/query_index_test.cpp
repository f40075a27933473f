// Queries that an index answers give the same rows in the same order as those that look at every
// row.
#include <gtest/gtest.h>

#include <random>

#include "jet/database.h"
#include "jet/query.h"
#include "jet/recordset.h"
#include "sample_table.h"
#include "support/jet_files.h"
#include "support/temp_folder.h"
#include "values/collation.h"
#include "values/key.h"
#include "values/text.h"

namespace jet {
namespace {

// Texts of few letters, so that many are equal, some only after case, blanks and the letters that
// stand for two are taken into account.
std::u16string RandomText(std::mt19937& random) {
    static const std::vector<std::u16string> kPieces = {
        u"a",      u"A",      u"b",  u"s", u"ss", u" ", u"\u00DF",
        u"\u00E4", u"\u00E6", u"ae", u"-", u"'",  u"1"};
    std::u16string text;
    for (auto count = random() % 4; count > 0; --count) text += kPieces[random() % kPieces.size()];
    return text;
}

std::string Quoted(const std::u16string& text) {
    std::string quoted = "'";
    for (const char c : NarrowName(text)) quoted += c == '\'' ? "''" : std::string(1, c);
    return quoted + "'";
}

class QueryIndexTest : public testing::TestWithParam<Version> {
protected:
    // The same rows twice, in the same order: in "Keyed" with an index for each field, in "Plain"
    // without any.
    QueryIndexTest() {
        database_ = Database::Create(Path(), GetParam());
        TableSchema schema;
        schema.columns = {{.name = "ID"},
                          {.name = "Name", .type = ColumnType::kText, .length = 20},
                          {.name = "Level", .type = ColumnType::kInteger},
                          {.name = "Class", .type = ColumnType::kByte},
                          {.name = "Score", .type = ColumnType::kSingle},
                          {.name = "Note", .type = ColumnType::kText, .length = 200}};
        schema.name = "Plain";
        database_->CreateTable(schema);
        schema.name = "Keyed";
        schema.indexes = {{.name = "Name", .columns = {{"Name"}, {"ID", false}}},
                          {.name = "Level", .columns = {{"Level", false}}, .ignoreNulls = true},
                          {.name = "Class", .columns = {{"Class"}, {"Name"}}},
                          {.name = "Score", .columns = {{"Score"}}}};
        database_->CreateTable(schema);
    }
    ~QueryIndexTest() override {
        database_->Close();
        tarn_test::ExpectSound(Path());
    }

    [[nodiscard]] std::filesystem::path Path() const { return folder_ / "some data.mdb"; }

    void Fill(const std::string& table, std::mt19937 random) {
        const auto rows = database_->OpenTable(table);
        for (std::int32_t id = 0; id < 600; ++id) {
            rows->AddNew();
            rows->Set("ID", id);
            rows->Set("Name", random() % 9 == 0 ? Value() : Value(RandomText(random)));
            rows->Set("Level", random() % 9 == 0
                                   ? Value()
                                   : Value(static_cast<std::int32_t>(random() % 7) - 3));
            rows->Set("Class", static_cast<std::int32_t>(random() % 5));
            rows->Set("Score", random() % 3 == 0 ? -0.0F : static_cast<float>(random() % 4));
            rows->Update();
        }
        // Rows that moved, and gaps.
        int row = 0;
        for (rows->MoveFirst(); !rows->IsEof(); rows->MoveNext(), ++row) {
            if (row % 7 == 3) {
                rows->Edit();
                rows->Set("Note", std::u16string(150, u'n'));
                rows->Set("Name", RandomText(random));
                rows->Update();
            } else if (row % 11 == 5) {
                rows->Delete();
            }
        }
    }

    std::vector<std::int32_t> Found(const std::string& table, const std::string& rest) {
        std::vector<std::int32_t> found;
        const auto rows = database_->OpenQuery("SELECT ID FROM " + table + " WHERE " + rest);
        for (; !rows->IsEof(); rows->MoveNext()) found.push_back(rows->Get("ID").AsLong());
        return found;
    }

    void ExpectSame(const std::string& rest) {
        EXPECT_EQ(Found("Keyed", rest), Found("Plain", rest)) << rest;
    }

    tarn_test::TempFolder folder_;
    std::unique_ptr<Database> database_;
};

TEST_P(QueryIndexTest, Equality_GivesTheRowsAndTheOrderOfALookAtAllRows) {
    for (const char* table : {"Keyed", "Plain"}) Fill(table, std::mt19937(5));
    std::mt19937 random(17);
    std::size_t rows = 0;
    for (int i = 0; i < 150; ++i) {
        const std::string name = "Name = " + Quoted(RandomText(random));
        ExpectSame(name);
        ExpectSame("Class = " + std::to_string(random() % 6) + " AND " + name);
        ExpectSame(name + " ORDER BY Level DESC, Class");
        rows += Found("Keyed", name).size();
    }
    EXPECT_GT(rows, 150U);
    for (int level = -4; level <= 4; ++level) {
        ExpectSame("Level = " + std::to_string(level));
        ExpectSame("Level = " + std::to_string(level) + " ORDER BY Name");
    }
}

TEST_P(QueryIndexTest, NumbersThatNoKeyCanHold_FindWhatALookAtAllRowsFinds) {
    for (const char* table : {"Keyed", "Plain"}) Fill(table, std::mt19937(6));
    for (const char* number : {"1.5", "-1", "256", "70000", "1e30", "0", "1.0"}) {
        for (const char* field : {"Level", "Class", "Score"}) {
            ExpectSame(std::string(field) + " = " + number);
        }
    }
    EXPECT_FALSE(Found("Keyed", "Score = 0").empty());
}

TEST_P(QueryIndexTest, LiteralOfAnotherType_IsRefusedAsWithoutAnIndex) {
    Fill("Keyed", std::mt19937(7));
    EXPECT_EQ(ErrorOf([&] { Found("Keyed", "Name = 5"); }), ErrorKind::kTypeMismatch);
    EXPECT_EQ(ErrorOf([&] { Found("Keyed", "Level = 'a'"); }), ErrorKind::kTypeMismatch);
}

INSTANTIATE_TEST_SUITE_P(BothVersions, QueryIndexTest,
                         testing::Values(Version::kJet3, Version::kJet4),
                         [](const auto& tested) { return VersionName(tested.param); });

TEST(KeyStart, IsCommonToTheKeysOfBothWaysOfCountingLetters) {
    std::mt19937 random(3);
    for (int i = 0; i < 500; ++i) {
        const std::u16string text = RandomText(random) + RandomText(random);
        for (const bool ascending : {true, false}) {
            Key start;
            AppendGeneralLegacyStart(start, text, ascending);
            for (const LetterCount letters : {LetterCount::kWeights, LetterCount::kCharacters}) {
                Key key;
                AppendGeneralLegacy(key, text, ascending, letters);
                ASSERT_LT(start.size(), key.size());
                key.resize(start.size());
                EXPECT_EQ(key, start);
            }
        }
    }
}

}  // namespace
}  // namespace jet
