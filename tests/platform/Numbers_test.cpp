#include "platform/text/Numbers.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QRegularExpression>

#include <bit>
#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include "platform/RuntimeError.h"
#include "support/paths.h"

namespace {

using platform::Format;
using platform::Str;
using platform::Val;

template <typename Body>
int ErrorOf(Body body) {
    try {
        body();
    } catch (const platform::RuntimeError& error) {
        return error.Number();
    }
    return 0;
}

struct ReadingCase {
    QString typed;
    bool whole = false;
    double number = 0;
};

// The cases that the header gives beside the rule, so that what it says is what is done.
std::vector<ReadingCase> CasesOfTheHeader() {
    QFile header(QString::fromStdString(support::SourceFolder().string()) +
                 QStringLiteral("/platform/text/Numbers.h"));
    EXPECT_TRUE(header.open(QIODevice::ReadOnly));
    static const QRegularExpression kCase(
        QStringLiteral(R"x(^//   "([^"]*)" +(whole|leading) (\S+)$)x"));
    static const QRegularExpression kEscape(QStringLiteral(R"(\\u([0-9a-f]{4}))"));
    std::vector<ReadingCase> cases;
    for (const QString& line : QString::fromUtf8(header.readAll()).split(u'\n')) {
        const QRegularExpressionMatch match = kCase.match(line);
        if (!match.hasMatch()) {
            continue;
        }
        QString typed = match.captured(1);
        const QRegularExpressionMatch escape = kEscape.match(typed);
        if (escape.hasMatch()) {
            typed.replace(escape.captured(0), QChar(escape.captured(1).toUShort(nullptr, 16)));
        }
        cases.push_back(
            {typed, match.captured(2) == QStringLiteral("whole"), match.captured(3).toDouble()});
    }
    return cases;
}

TEST(Val, CasesOfTheHeader_AreReadAsItSays) {
    const std::vector<ReadingCase> cases = CasesOfTheHeader();
    ASSERT_EQ(cases.size(), 30U) << "a line of the table that is not understood is not tested";
    for (const ReadingCase& one : cases) {
        SCOPED_TRACE(one.typed.toStdString());
        EXPECT_EQ(Val(one.typed), one.number);
        EXPECT_EQ(platform::IsPlainNumber(one.typed), one.whole);
        EXPECT_EQ(platform::TypedSingle(one.typed), static_cast<float>(one.number));
    }
}

TEST(Val, LeadingNumber_IsTaken) {
    const struct {
        const char* text;
        double value;
    } cases[] = {
        {" 1 2", 12}, {"1\t2\r\n3", 123}, {"-.5", -0.5},    {"1E+3", 1000},
        {"1e+", 1},   {"1ex", 1},         {"--1", 0},       {".25", 0.25},
        {"&H1F", 31}, {"&hff", 255},      {"&O18", 1},      {"&HG", 0},
        {"&", 0},     {"-&H10", 0},       {"12\u00e9", 12}, {"1e5e5", 100000},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(Val(QString::fromUtf8(c.text)), c.value) << c.text;
    }
}

TEST(Val, NumberTooLargeForADouble_Overflows) {
    EXPECT_EQ(ErrorOf([] { (void)Val("1e999"); }), platform::kOverflow);
    EXPECT_EQ(ErrorOf([] { (void)Val("-1e999"); }), platform::kOverflow);
}

TEST(Val, AnyText_ReadsOrOverflows) {
    std::mt19937 random(7);
    const QString letters = QStringLiteral("0123456789.eEdD+-&HhOo ,$x\t");
    for (int i = 0; i < 20000; ++i) {
        QString text;
        for (auto n = random() % 12; n > 0; --n) {
            text += letters[static_cast<qsizetype>(random() % letters.size())];
        }
        const int error = ErrorOf([&] { (void)Val(text); });
        EXPECT_TRUE(error == 0 || error == platform::kOverflow) << text.toStdString();
    }
}

TEST(TypedSingle, NumberTooLargeForASingle_IsNone) {
    EXPECT_EQ(platform::TypedSingle("3.4e38"), 3.4e38F);
    for (const char* text : {"1e39", "-9e99", "1e999"}) {
        EXPECT_EQ(platform::TypedSingle(text), std::nullopt) << text;
    }
    EXPECT_EQ(platform::TooLarge("9e99"), "The number \"9e99\" is too large.");
}

TEST(IsPlainNumber, OnlyWholeTextCounts) {
    for (const char* text : {"12", "-1.5", " 7 ", ".5", "5.", "1e3"}) {
        EXPECT_TRUE(platform::IsPlainNumber(text)) << text;
    }
    for (const char* text : {"", " ", "12abc", "1,000", "$5", "1 2", "-", ".", "e5", "&H1"}) {
        EXPECT_FALSE(platform::IsPlainNumber(text)) << text;
    }
}

TEST(CDbl, WholeTextMustBeANumber) {
    EXPECT_EQ(platform::CDbl("1,250.5"), 1250.5);
    EXPECT_EQ(platform::CDbl(" $1,250 "), 1250);
    EXPECT_EQ(platform::CDbl("-$3"), -3);
    EXPECT_EQ(platform::CDbl("(4.5)"), -4.5);
    EXPECT_EQ(platform::CDbl("1e2"), 100);
    EXPECT_EQ(platform::CDbl("+7"), 7);
    EXPECT_EQ(platform::CDbl("(-2)"), 2);
    for (const char* text :
         {"", "abc", "12abc", "--1", "1.2.3", "$", "()", "-", "$-", "(5", "$+5"}) {
        EXPECT_EQ(ErrorOf([&] { (void)platform::CDbl(text); }), platform::kTypeMismatch) << text;
    }
    EXPECT_EQ(platform::CSng("0.1"), 0.1F);
}

TEST(CLng, HalvesGoToTheEvenNeighbor) {
    EXPECT_EQ(platform::CLng(2.5), 2);
    EXPECT_EQ(platform::CLng(3.5), 4);
    EXPECT_EQ(platform::CLng(-0.5), 0);
    EXPECT_EQ(platform::CLng(-1.5), -2);
    EXPECT_EQ(platform::CLng(2147483647.4), 2147483647);
    EXPECT_EQ(platform::CLng(-2147483648.5), std::numeric_limits<std::int32_t>::min());
    EXPECT_EQ(ErrorOf([] { (void)platform::CLng(2147483647.5); }), platform::kOverflow);
    EXPECT_EQ(ErrorOf([] { (void)platform::CLng(std::nan("")); }), platform::kOverflow);
}

TEST(ToSingle, RoundsOrOverflows) {
    EXPECT_EQ(platform::ToSingle(0.1), 0.1F);
    EXPECT_EQ(platform::ToSingle(std::numeric_limits<float>::max()),
              std::numeric_limits<float>::max());
    EXPECT_EQ(platform::ToSingle(3.40282356e38), std::numeric_limits<float>::max());
    EXPECT_EQ(ErrorOf([] { (void)platform::ToSingle(3.5e38); }), platform::kOverflow);
    EXPECT_EQ(ErrorOf([] { (void)platform::ToSingle(-1e300); }), platform::kOverflow);
    EXPECT_TRUE(std::isnan(platform::ToSingle(std::nan(""))));
}

TEST(Str, ShortestText) {
    EXPECT_EQ(Str(0.0F), "0");
    EXPECT_EQ(Str(-0.0F), "0");
    EXPECT_EQ(Str(0.5F), "0.5");
    EXPECT_EQ(Str(-12.5F), "-12.5");
    EXPECT_EQ(Str(0.1F), "0.1");
    EXPECT_EQ(Str(9999999.0F), "9999999");
    EXPECT_EQ(Str(100000000.0F), "100000000");
    EXPECT_EQ(Str(1e10F), "1E+10");
    EXPECT_EQ(Str(1.5e-20F), "1.5E-20");
    EXPECT_EQ(Str(0.000012F), "0.000012");
    EXPECT_EQ(Str(1234567890123.25), "1234567890123.25");
    EXPECT_EQ(Str(0.1 + 0.2), "0.30000000000000004");
    EXPECT_EQ(Str(1e100), "1E+100");
    EXPECT_EQ(Str(std::int32_t{-7}), "-7");
    EXPECT_EQ(Str(std::nan("")), "NaN");
    EXPECT_EQ(Str(-HUGE_VAL), "-Inf");
}

TEST(Str, EveryFiniteSingle_ReadsBackAsItself) {
    std::mt19937 random(11);
    for (int i = 0; i < 300000; ++i) {
        const auto value = std::bit_cast<float>(static_cast<std::uint32_t>(random()));
        if (std::isfinite(value)) {
            ASSERT_EQ(platform::ToSingle(Val(Str(value))), value) << Str(value).toStdString();
        }
    }
    for (const float value : {std::numeric_limits<float>::min(), std::numeric_limits<float>::max(),
                              std::numeric_limits<float>::denorm_min()}) {
        EXPECT_EQ(platform::ToSingle(Val(Str(value))), value);
        EXPECT_EQ(platform::ToSingle(Val(Str(-value))), -value);
    }
}

TEST(Str, EveryFiniteDouble_ReadsBackAsItself) {
    std::mt19937_64 random(13);
    for (int i = 0; i < 100000; ++i) {
        const auto value = std::bit_cast<double>(static_cast<std::uint64_t>(random()));
        if (std::isfinite(value)) {
            ASSERT_EQ(Val(Str(value)), value) << Str(value).toStdString();
        }
    }
}

TEST(Format, Patterns) {
    const struct {
        double value;
        const char* pattern;
        const char* shown;
    } cases[] = {
        {0, "#.00", ".00"},
        {0.5, "#.00", ".50"},
        {-12.5, "#.00", "-12.50"},
        {-0.25, "#.00", "-.25"},
        {1234.5, "#.00", "1234.50"},
        {0.285, "#.00", ".29"},
        {1.005, "#.00", "1.01"},
        {-0.001, "#.00", ".00"},
        {0, "$#,#", "$"},
        {1250, "$#,#", "$1,250"},
        {-1250, "$#,#", "-$1,250"},
        {1234.4, "$#,0", "$1,234"},
        {1234.5, "$#,0", "$1,235"},
        {0, "$#,0", "$0"},
        {-1234567, "$#,0", "-$1,234,567"},
        {0.51, "#,#.00", ".51"},
        {5.1, "#,#.00", "5.10"},
        {1000, "#,#.00", "1,000.00"},
        {999.999, "#,#.00", "1,000.00"},
        {9999999, "#,#.00", "9,999,999.00"},
        {0, "#", ""},
        {2.5, "#", "3"},
        {7, "#", "7"},
        {0.9, "#.0", ".9"},
        {0.85, "#.0", ".9"},
        {0.94, "#.0", ".9"},
        {9.96, "#.0", "10.0"},
        {12, "00000", "00012"},
        {12.5, "0.0##", "12.5"},
        {3, "0 ac", "3 ac"},
        {0.5, "", "0.5"},
        {1e20, "#,#", "100,000,000,000,000,000,000"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(Format(c.value, c.pattern), c.shown) << c.value << " by " << c.pattern;
    }
    EXPECT_EQ(Format(std::nan(""), "#.00"), "NaN");
}

TEST(Val, NumbersNearerToZeroThanAnyDouble_AreZero) {
    EXPECT_EQ(platform::Val("1e-400"), 0);
    EXPECT_EQ(platform::Val("1d-400x"), 0);
    EXPECT_EQ(ErrorOf([] { (void)platform::Val("1e400"); }), platform::kOverflow);
    EXPECT_EQ(ErrorOf([] { (void)platform::Val(QString(400, u'9')); }), platform::kOverflow);
}

TEST(Str, WhatIsNoFiniteNumber_HasAName) {
    EXPECT_EQ(Str(std::numeric_limits<double>::infinity()), "Inf");
    EXPECT_EQ(Str(-std::numeric_limits<float>::infinity()), "-Inf");
    EXPECT_EQ(Str(std::nan("")), "NaN");
}

TEST(Format, DigitsThatAreAlwaysShown) {
    EXPECT_EQ(platform::Format(7, "000"), "007");
    EXPECT_EQ(platform::Format(1234, "0#"), "1234");
    EXPECT_EQ(platform::Format(3, "acres"), "acres3");
}

}  // namespace
