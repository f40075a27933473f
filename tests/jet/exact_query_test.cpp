// Conditions on numbers that doubles cannot distinguish, and values that are bound to a query.
#include <gtest/gtest.h>

#include "jet/convert.h"
#include "jet/database.h"
#include "jet/query.h"
#include "jet/recordset.h"
#include "sample_table.h"
#include "values/decimal.h"

namespace jet {
namespace {

constexpr std::int64_t kLarge = 9'007'199'254'740'993;  // the first whole number that no double is

class ExactQuery : public testing::Test {
protected:
    void SetUp() override {
        database_ = Database::Create("a file.mdb", Version::kJet4, *files_);
        TableSchema schema;
        schema.name = "Sums";
        schema.columns = {
            {.name = "Id"},
            {.name = "Money", .type = ColumnType::kCurrency},
            {.name = "Exact", .type = ColumnType::kDecimal, .precision = 28, .scale = 4},
            {.name = "Mark", .type = ColumnType::kGuid}};
        database_->CreateTable(schema);
        const auto sums = database_->OpenTable("Sums");
        for (int id = -1; id <= 1; ++id) {
            sums->AddNew();
            sums->Set("Id", id);
            sums->Set("Money", Currency{kLarge + id});
            sums->Set("Exact", *ParseDecimal(u"900719925474." + Value(993 + id).AsText() + u"1"));
            sums->Set("Mark", Mark(id));
            sums->Update();
        }
        sums->AddNew();
        sums->Update();
    }

    static Guid Mark(int id) {
        Guid guid;
        guid.bytes[0] = static_cast<std::byte>(id & 0xFF);
        return guid;
    }
    template <typename... Parameters>
    std::string Ids(const std::string& condition, const Parameters&... parameters) {
        std::string ids;
        const auto found =
            database_->OpenQuery("SELECT Id FROM Sums WHERE " + condition, {Value(parameters)...});
        for (; !found->IsEof(); found->MoveNext()) {
            ids += std::to_string(found->Get(FieldId{0}).AsLong()) + " ";
        }
        return ids;
    }

    std::unique_ptr<FileSystem> files_ = MakeMemoryFileSystem();
    std::unique_ptr<Database> database_;
};

TEST_F(ExactQuery, Currency_IsComparedToTheLastPlace) {
    EXPECT_EQ(Ids("Money = 900719925474.0993"), "0 ");
    EXPECT_EQ(Ids("Money < 900719925474.0993"), "-1 ");
    EXPECT_EQ(Ids("Money > 900719925474.0993"), "1 ");
    EXPECT_EQ(Ids("Money >= 900719925474.09930001"), "1 ");
    EXPECT_EQ(Ids("Money <> 900719925474.0993"), "-1 1 ");
    EXPECT_EQ(Ids("Money > -922337203685477.5809"), "-1 0 1 ");
    EXPECT_EQ(Ids("Money < 1e300"), "-1 0 1 ");
    EXPECT_EQ(Ids("Money < -1e300"), "");
    EXPECT_EQ(Ids("Money = ?", Currency{kLarge}), "0 ");
}

TEST_F(ExactQuery, TheLowestCurrency_IsEqualToItself) {
    const auto sums = database_->OpenTable("Sums");
    sums->Edit();
    sums->Set("Money", Currency{INT64_MIN});
    sums->Update();
    EXPECT_EQ(Ids("Money = -922337203685477.5808"), "-1 ");
    EXPECT_EQ(Ids("Money < -922337203685477.58079"), "-1 ");
    EXPECT_EQ(Ids("Money <= -922337203685477.58081"), "");
}

TEST_F(ExactQuery, Decimals_AreComparedWhateverTheirScale) {
    EXPECT_EQ(Ids("Exact = 900719925474.9931000"), "0 ");
    EXPECT_EQ(Ids("Exact < 900719925474.9931"), "-1 ");
    EXPECT_EQ(Ids("Exact > 900719925474.99309999999999"), "0 1 ");
    EXPECT_EQ(Ids("Exact > -0.1"), "-1 0 1 ");
    EXPECT_EQ(Ids("Exact = ?", *ParseDecimal(u"900719925474.9931")), "0 ");
}

TEST_F(ExactQuery, WholeNumbers_AreNotTakenForTheirNeighbors) {
    EXPECT_EQ(Ids("Id = 1.00000000000000000001"), "");
    EXPECT_EQ(Ids("Id < 1.00000000000000000001"), "-1 0 1 ");
    EXPECT_EQ(Ids("Id > -0.5"), "0 1 ");
    EXPECT_EQ(Ids("Id = 99999999999999999999"), "");
}

TEST_F(ExactQuery, Guids_AreEqualOrNot) {
    EXPECT_EQ(Ids("Mark = ?", Mark(0)), "0 ");
    EXPECT_EQ(Ids("Mark <> ?", Mark(0)), "-1 1 ");
    EXPECT_EQ(Ids("Mark = '" + GuidText(Mark(1)) + "'"), "1 ");
    EXPECT_EQ(ErrorOf([&] { Ids("Mark < ?", Mark(0)); }), ErrorKind::kTypeMismatch);
    EXPECT_EQ(ErrorOf([&] { Ids("Mark = 1"); }), ErrorKind::kTypeMismatch);
    EXPECT_EQ(ErrorOf([&] { Ids("Id = ?", Mark(0)); }), ErrorKind::kTypeMismatch);
}

TEST_F(ExactQuery, Parameters_StandWhereTheQuestionMarksStand) {
    EXPECT_EQ(Ids("Id >= ? AND Id < ?", 0, 1), "0 ");
    EXPECT_EQ(Ids("Id = ?", 1), "1 ");
    EXPECT_EQ(Ids("Id = ? AND Money IS NOT NULL", Value()), "");
    EXPECT_EQ(ErrorOf([&] { Ids("Id = ?"); }), ErrorKind::kSyntax);
    EXPECT_EQ(ErrorOf([&] { Ids("Id = 1", 1); }), ErrorKind::kSyntax);
    EXPECT_EQ(ErrorOf([&] { Ids("Id = ?", 1, 2); }), ErrorKind::kSyntax);
    EXPECT_EQ(ErrorOf([&] { Ids("Id = ?", u"one"); }), ErrorKind::kTypeMismatch);
}

TEST_F(ExactQuery, AQuery_CanBeMadeWithoutText) {
    Query query;
    query.fields = {"Id"};
    query.table = "Sums";
    query.conditions = {{.field = "Id", .comparison = Operator::kLess, .literal = 1}};
    query.order = {{.field = "Id", .ascending = false}};
    const auto found = database_->OpenQuery(query);
    EXPECT_EQ(found->RecordCount(), 2);
    EXPECT_EQ(found->Get("Id"), Value(0));
}

TEST(Decimals, Text_IsReadExactly) {
    const auto order = [](std::u16string_view left, std::u16string_view right) {
        return CompareDecimals(ParseDecimal(left).value(), ParseDecimal(right).value());
    };
    EXPECT_EQ(order(u"1.50", u"1.5"), 0);
    EXPECT_EQ(order(u"15e-1", u"1.5"), 0);
    EXPECT_EQ(order(u"1.5E+2", u"150"), 0);
    EXPECT_EQ(order(u"-0", u"0"), 0);
    EXPECT_LT(order(u"-2", u"-1"), 0);
    EXPECT_LT(order(u"0.09", u"0.1"), 0);
    EXPECT_GT(order(u"1e-300", u"0"), 0);
    EXPECT_GT(order(u"10", u"9.99"), 0);
    for (const char16_t* wrong : {u"", u".", u"-", u"1.2.3", u"1e", u"1e5x", u"x", u"1e999"}) {
        EXPECT_FALSE(ParseDecimal(wrong).has_value());
    }
}

}  // namespace
}  // namespace jet
