#include <gtest/gtest.h>

#include "season/file_name.h"
#include "season/text.h"

namespace {

TEST(FileName, Parse_OfTheUsualForm_GivesItsParts) {
    const auto name = season::ParseFileName("some folder/UMFor25.FCD");
    ASSERT_TRUE(name.has_value());
    EXPECT_EQ(name->unit, "UMF");
    EXPECT_EQ(name->state, "or");
    EXPECT_EQ(name->year, 25);
}

TEST(FileName, Parse_OfOtherForms_GivesNothing) {
    for (const char* const name :
         {"UMFOR2.FCD", "UMFOR255.FCD", "UMF1R25.FCD", "UMFORX5.FCD", ""}) {
        EXPECT_FALSE(season::ParseFileName(name).has_value()) << name;
    }
}

TEST(UnitName, Year_IsBehindTheLastApostrophe) {
    EXPECT_EQ(season::YearOfUnitName("Coeur d'Alene '05"), 5);
    EXPECT_EQ(season::YearOfUnitName("Coeur d'Alene"), std::nullopt);
    EXPECT_EQ(season::YearOfUnitName("Umatilla '25 (draft)"), 25);
    EXPECT_EQ(season::YearOfUnitName(""), std::nullopt);
}

TEST(UnitName, WithYear_ReplacesOrAdds) {
    EXPECT_EQ(season::WithYear("Coeur d'Alene '05", 6), "Coeur d'Alene '06");
    EXPECT_EQ(season::WithYear("Umatilla '25 (draft)", 26), "Umatilla '26 (draft)");
    EXPECT_EQ(season::WithYear("Umatilla", 26), "Umatilla '26");
    EXPECT_EQ(season::WithYear("", 26), "");
}

TEST(UnitName, FullYear_TurnsAtSeventy) {
    EXPECT_EQ(season::FullYear(69), 2069);
    EXPECT_EQ(season::FullYear(70), 1970);
}

TEST(Text, NameKey_IsOneForNamesThatPeopleTakeForOne) {
    EXPECT_EQ(season::NameKey("  Wet Prairie\xC2\xA0"), season::NameKey("wet PRAIRIE"));
    EXPECT_EQ(season::NameKey("\xC3\x89tang \xC5\xA0"), season::NameKey("\xC3\xA9tang \xC5\xA1"));
    EXPECT_EQ(season::NameKey("\xCE\xA9 \xD0\x96"), season::NameKey("\xCF\x89 \xD0\xB6"));
    EXPECT_NE(season::NameKey("Zone 1"), season::NameKey("Zone 2"));
    EXPECT_TRUE(season::IsBlank(" \t\xE2\x80\x83"));
}

TEST(Text, ToUtf16_AfterToUtf8_IsTheSameTextWhateverItHolds) {
    const std::u16string odd{u'a', 0xD83C, 0xDF32, 0xDC00, u'b', 0xD800, 0, u'\x20AC'};
    EXPECT_EQ(season::ToUtf16(season::ToUtf8(odd)), odd);
    EXPECT_EQ(season::WellFormed(season::ToUtf8(u"\xDC00x")), "\xEF\xBF\xBDx");
    EXPECT_EQ(season::WellFormed("\xFF\xC3"), "\xEF\xBF\xBD\xEF\xBF\xBD");
}

}  // namespace
