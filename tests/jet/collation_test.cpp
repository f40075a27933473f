// The tables that are built in against the tables that they were made from, and the rules of
// comparison that a user of the record sets meets.
#include "values/collation.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

#include "tab_separated.h"
#include "values/code_page.h"
#include "values/key.h"

#include "support/paths.h"

namespace jet {
namespace {

Key Legacy(std::u16string_view text) {
    Key key;
    AppendGeneralLegacy(key, text, true);
    return key;
}

Key FromHex(const std::string& hex) {
    return tarn_test::FromHex<Key>(hex);
}

std::vector<tarn_test::TextFields> Weights() {
    return tarn_test::ReadTabSeparated(support::SourceFolder() / "jet/data/general_legacy.tsv", 5);
}

TEST(Collation, GeneralLegacy_HasTheWeightsOfItsTable) {
    int lines = 0;
    for (const auto& fields : Weights()) {
        if (fields[0] == "0020") {
            continue;  // a blank alone is removed
        }
        ++lines;
        std::string tail;
        if (fields[1] == "P" || fields[1] == "D") {
            // Trailing weights up to 2 say nothing.
            tail = fields[3] > "02" ? fields[3] : "";
        } else if (fields[1] == "S") {
            tail = "010101800706" + fields[4];
        } else {
            continue;
        }
        const auto unit = static_cast<char16_t>(std::stoul(fields[0], nullptr, 16));
        ASSERT_EQ(Legacy(std::u16string(1, unit)), FromHex(fields[2] + "01" + tail + "00"))
            << fields[0];
    }
    EXPECT_EQ(lines, 44306);
}

TEST(Collation, GeneralLegacy_IgnoresUnitsWithoutALine) {
    std::set<unsigned> known;
    for (const auto& fields : Weights()) {
        known.insert(static_cast<unsigned>(std::stoul(fields[0], nullptr, 16)));
    }
    for (unsigned unit = 0; unit < 0x10000; ++unit) {
        if (known.count(unit) == 0 && (unit < 0xD800 || unit > 0xDFFF)) {
            ASSERT_EQ(Legacy(std::u16string(1, static_cast<char16_t>(unit))), Legacy(u"")) << unit;
        }
    }
}

TEST(Collation, GeneralLegacy_Kana_NoteTheirKindBehindTheWeights) {
    // Small kana count 2, full ones 3; threes at the end are left out, three flags make a byte.
    EXPECT_EQ(Legacy(u"\u3042"), FromHex("7F02"
                                         "01"
                                         "0101"
                                         "FF0280FF80"
                                         "00"));
    EXPECT_EQ(Legacy(u"\u3041"), FromHex("7F02"
                                         "01"
                                         "0101"
                                         "A0"
                                         "FF0280FF80"
                                         "00"));
    EXPECT_EQ(Legacy(u"\u3042\u3041\u3042"), FromHex("7F027F027F02"
                                                     "01"
                                                     "0101"
                                                     "B8"
                                                     "FF0280FF80"
                                                     "00"));
    EXPECT_EQ(Legacy(u"\u3041\u3041\u3041\u3041"), FromHex("7F027F027F027F02"
                                                           "01"
                                                           "0101"
                                                           "AAA0"
                                                           "FF0280FF80"
                                                           "00"));
    // With the mark of the voiced letter, and before a sign that has a place but no weight.
    EXPECT_EQ(Legacy(u"\u307C"), FromHex("7F2E"
                                         "01"
                                         "03"
                                         "0101"
                                         "FF0280FF80"
                                         "00"));
    EXPECT_EQ(Legacy(u"\u3041\u0001"), FromHex("7F02"
                                               "01"
                                               "0101"
                                               "A0"
                                               "FF0280FF80"
                                               "FF"
                                               "01"
                                               "800B0603"
                                               "00"));
}

TEST(Collation, GeneralLegacy_HalvesOfPairs_AreAllDifferent) {
    std::set<Key> keys;
    for (unsigned unit = 0xD800; unit <= 0xDFFF; ++unit) {
        keys.insert(Legacy(std::u16string(1, static_cast<char16_t>(unit))));
    }
    EXPECT_EQ(keys.size(), 0x800U);
}

TEST(Collation, GeneralLegacy_CombiningMarkEqualsAccentedLetter) {
    EXPECT_EQ(Legacy(u"cafe\u0301s"), Legacy(u"caf\u00E9s"));
}

TEST(Collation, GeneralLegacy_DescendingIsComplementAndZero) {
    Key key;
    AppendGeneralLegacy(key, u"a-b", false);
    EXPECT_EQ(key, FromHex("B5B3FEFEFEFE7FF4F97DFF00"));
}

TEST(Collation, General97_PacksAccentDigits) {
    const auto key = [](std::string_view text) {
        Key bytes;
        AppendGeneral97(bytes, text, true);
        return bytes;
    };
    EXPECT_EQ(key("S\xE3o Paulo"), FromHex("7660721173607"
                                           "86D720270"));
    EXPECT_EQ(key("Gen\xE8ve"), FromHex("686670667A66022300"));
    EXPECT_EQ(key("Gen\xE8ve"), key("GEN\xC8VE"));
    EXPECT_EQ(key("Stra\xDF"
                  "e \xE9"),
              FromHex("767775607676661166"
                      "02222240"));
    EXPECT_EQ(key("   "), FromHex("00"));
}

TEST(CompareText, IgnoresCaseAndTrailingBlanks) {
    for (const Version version : {Version::kJet3, Version::kJet4}) {
        EXPECT_EQ(CompareText(u"Timber", u"TIMBER  ", version), 0);
        EXPECT_LT(CompareText(u"", u" a", version), 0);
        EXPECT_LT(CompareText(u"a", u"b", version), 0);
        EXPECT_GT(CompareText(u"zone 2", u"zone 10", version), 0);
        EXPECT_LT(CompareText(u"resume", u"r\u00E9sum\u00E9", version), 0);
        EXPECT_LT(CompareText(u"r\u00E9sum\u00E9", u"resumf", version), 0);
    }
    EXPECT_LT(CompareText(u"coop", u"co-op", Version::kJet4), 0);
    EXPECT_LT(CompareText(u"co-op", u"coopa", Version::kJet4), 0);
}

TEST(CompareText, SeesTheFirst255CharactersOnly) {
    const std::u16string same(255, u'x');
    for (const Version version : {Version::kJet3, Version::kJet4}) {
        EXPECT_EQ(CompareText(same + u"a", same + u"b", version), 0);
    }
}

TEST(CodePage, EveryByte_SurvivesTheRoundTrip) {
    std::string bytes;
    for (int i = 0; i < 256; ++i) {
        bytes.push_back(static_cast<char>(i));
    }
    EXPECT_EQ(EncodeCodePage(DecodeCodePage(bytes)), bytes);
    EXPECT_EQ(DecodeCodePage("\x80\x81\xE9"), u"\u20AC\u0081\u00E9");
}

TEST(CodePage, UnknownCharacter_BecomesAQuestionMark) {
    bool complete = true;
    EXPECT_EQ(EncodeCodePage(u"a\u03A9\u0085", &complete), "a??");
    EXPECT_FALSE(complete);
}

}  // namespace
}  // namespace jet
