#include "jet/query.h"

#include <gtest/gtest.h>

#include "jet/error.h"

namespace jet {
namespace {

std::string SyntaxError(std::string_view sql) {
    try {
        (void)ParseQuery(sql);
    } catch (const Error& error) {
        EXPECT_EQ(error.Kind(), ErrorKind::kSyntax);
        EXPECT_EQ(error.Number(), 3075);
        return error.what();
    }
    return {};
}

TEST(ParseQuery, WholeTable_HasNeitherConditionsNorOrder) {
    const Query query = ParseQuery("SELECT * FROM AAC");
    EXPECT_TRUE(query.fields.empty());
    EXPECT_EQ(query.table, "AAC");
    EXPECT_TRUE(query.conditions.empty());
    EXPECT_TRUE(query.order.empty());
}

TEST(ParseQuery, ConditionAndOrder_AreTakenApart) {
    const Query query = ParseQuery("SELECT * FROM AAC WHERE FMZCode = 'A 1' ORDER BY UpAcres");
    ASSERT_EQ(query.conditions.size(), 1U);
    EXPECT_EQ(query.conditions[0].field, "FMZCode");
    EXPECT_EQ(query.conditions[0].comparison, Operator::kEqual);
    EXPECT_EQ(query.conditions[0].literal, Value(u"A 1"));
    ASSERT_EQ(query.order.size(), 1U);
    EXPECT_EQ(query.order[0].field, "UpAcres");
    EXPECT_TRUE(query.order[0].ascending);
}

TEST(ParseQuery, KeywordsInAnyCase_BracketsAndSeveralTerms) {
    const Query query = ParseQuery(
        "select [Order], b from [my table] where a>=1 and [b c]<>-2.5e1 AND d is not null and e IS "
        "NULL\norder by a desc, [b c] asc, d ; ");
    EXPECT_EQ(query.fields, (std::vector<std::string>{"Order", "b"}));
    EXPECT_EQ(query.table, "my table");
    ASSERT_EQ(query.conditions.size(), 4U);
    EXPECT_EQ(query.conditions[0].comparison, Operator::kGreaterOrEqual);
    EXPECT_EQ(query.conditions[0].literal, Value(1));
    EXPECT_EQ(query.conditions[1].field, "b c");
    EXPECT_EQ(query.conditions[1].comparison, Operator::kNotEqual);
    EXPECT_EQ(query.conditions[1].literal, Value(-25.0));
    EXPECT_EQ(query.conditions[2].comparison, Operator::kIsNotNull);
    EXPECT_EQ(query.conditions[3].comparison, Operator::kIsNull);
    ASSERT_EQ(query.order.size(), 3U);
    EXPECT_FALSE(query.order[0].ascending);
    EXPECT_EQ(query.order[1].field, "b c");
    EXPECT_TRUE(query.order[2].ascending);
}

TEST(ParseQuery, EveryComparison_IsKnown) {
    const std::pair<const char*, Operator> comparisons[] = {
        {"=", Operator::kEqual},   {"<>", Operator::kNotEqual},
        {"<", Operator::kLess},    {"<=", Operator::kLessOrEqual},
        {">", Operator::kGreater}, {">=", Operator::kGreaterOrEqual}};
    for (const auto& [sign, comparison] : comparisons) {
        const Query query = ParseQuery(std::string("SELECT * FROM t WHERE a ") + sign + " 3");
        EXPECT_EQ(query.conditions.at(0).comparison, comparison) << sign;
    }
}

TEST(ParseQuery, DoubledQuotes_StandForTheQuote) {
    EXPECT_EQ(ParseQuery("SELECT * FROM t WHERE a = 'it''s'").conditions[0].literal,
              Value(u"it's"));
    EXPECT_EQ(ParseQuery(R"(SELECT * FROM t WHERE a = "say ""it's""")").conditions[0].literal,
              Value(u"say \"it's\""));
    EXPECT_EQ(ParseQuery("SELECT * FROM t WHERE a = ''").conditions[0].literal, Value(u""));
}

TEST(ParseQuery, Text_IsUtf8) {
    EXPECT_EQ(ParseQuery("SELECT * FROM t WHERE a = '\xC3\xA9'").conditions[0].literal,
              Value(u"\u00E9"));
}

TEST(ParseQuery, LargeNumbers_BecomeDoubles) {
    EXPECT_EQ(ParseQuery("SELECT * FROM t WHERE a = 2147483647").conditions[0].literal,
              Value(INT32_MAX));
    EXPECT_EQ(ParseQuery("SELECT * FROM t WHERE a = 2147483648").conditions[0].literal,
              Value(2147483648.0));
    EXPECT_EQ(ParseQuery("SELECT * FROM t WHERE a = .5").conditions[0].literal, Value(0.5));
}

TEST(ParseQuery, UnbalancedQuote_IsASyntaxError) {
    EXPECT_NE(SyntaxError("SELECT * FROM AAC WHERE FMZCode = 'O'Hara' ORDER BY UpAcres"), "");
    EXPECT_NE(SyntaxError("SELECT * FROM AAC WHERE FMZCode = 'abc").find("character 35"),
              std::string::npos);
}

TEST(ParseQuery, AnythingElse_IsASyntaxError) {
    for (const char* sql : {"",
                            "SELECT",
                            "SELECT *",
                            "SELECT * FROM",
                            "DELETE FROM t",
                            "SELECT * FROM t, u",
                            "SELECT a b FROM t",
                            "SELECT * FROM t WHERE",
                            "SELECT * FROM t WHERE a",
                            "SELECT * FROM t WHERE a =",
                            "SELECT * FROM t WHERE a = b",
                            "SELECT * FROM t WHERE a LIKE 'x'",
                            "SELECT * FROM t WHERE a = 1 OR b = 2",
                            "SELECT * FROM t WHERE a IS 1",
                            "SELECT * FROM t WHERE (a = 1)",
                            "SELECT * FROM t ORDER a",
                            "SELECT * FROM t ORDER BY",
                            "SELECT * FROM t ORDER BY a,",
                            "SELECT * FROM t; SELECT * FROM t",
                            "SELECT * FROM [t",
                            "SELECT * FROM []",
                            "SELECT * FROM t WHERE a = 1x",
                            "SELECT * FROM t WHERE a = 1.2.3",
                            "SELECT * FROM t WHERE a = 1e",
                            "SELECT , FROM t",
                            "SELECT FROM FROM t"}) {
        EXPECT_NE(SyntaxError(sql), "") << sql;
    }
}

Value LiteralIn(const std::string& sign) {
    return ParseQuery("SELECT * FROM t WHERE a = " + sign).conditions.at(0).literal;
}

TEST(ParseQuery, Numbers_InEveryForm) {
    EXPECT_EQ(LiteralIn("+7"), Value(7));
    EXPECT_EQ(LiteralIn("-7"), Value(-7));
    EXPECT_EQ(LiteralIn(".5"), Value(0.5));
    EXPECT_EQ(LiteralIn("-.5"), Value(-0.5));
    EXPECT_EQ(LiteralIn("+.5"), Value(0.5));
    EXPECT_EQ(LiteralIn("2e3"), Value(2000.0));
    EXPECT_EQ(LiteralIn("2E+3"), Value(2000.0));
    EXPECT_EQ(LiteralIn("2e-3"), Value(0.002));
    EXPECT_EQ(LiteralIn("3000000000"), Value(3e9));
    for (const char* wrong :
         {"1-2", "1+2", "1.2.3", "2e", "-", "+x", ".", ".x", "5x", "5_", "1e999"}) {
        EXPECT_NE(SyntaxError(std::string("SELECT * FROM t WHERE a = ") + wrong), "") << wrong;
    }
}

TEST(ParseQuery, BlanksOfEveryKind_AndNamesOfEveryLetter) {
    const Query query = ParseQuery("SELECT\t_x9,\r\nZ\xC3\xA9z FROM\tt");
    EXPECT_EQ(query.fields, (std::vector<std::string>{"_x9", "Z\xC3\xA9z"}));
    EXPECT_EQ(query.table, "t");
    for (const char* wrong :
         {"SELECT * FROM t{", "SELECT * FROM t^", "SELECT ~ FROM t", "SEL{CT * FROM t"}) {
        EXPECT_NE(SyntaxError(wrong), "") << wrong;
    }
}

}  // namespace
}  // namespace jet
