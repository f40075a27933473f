// Text in rows: both encodings, compression, and names.
#include "values/text.h"

#include <gtest/gtest.h>

namespace jet {
namespace {

std::vector<std::byte> Bytes8(std::initializer_list<unsigned> values) {
    std::vector<std::byte> bytes;
    for (const unsigned value : values) bytes.push_back(static_cast<std::byte>(value));
    return bytes;
}

std::vector<std::byte> Encoded(std::u16string_view text, Version version, bool compress) {
    std::vector<std::byte> bytes;
    EncodeText(text, version, compress, bytes);
    return bytes;
}

std::u16string Decoded(const std::vector<std::byte>& bytes, Version version) {
    std::u16string text = u"left over";
    DecodeText(bytes, version, text);
    return text;
}

TEST(Text, Jet3_UndefinedBytes_AreTheCharactersOfTheSameNumber) {
    EXPECT_EQ(Decoded(Bytes8({0x81, 0x8D, 0x8F, 0x90, 0x9D}), Version::kJet3),
              u"\u0081\u008D\u008F\u0090\u009D");
    EXPECT_EQ(Encoded(u"\u0081\u20AC\u017E", Version::kJet3, false), Bytes8({0x81, 0x80, 0x9E}));
}

TEST(Text, Jet3_EveryByte_GoesThroughUnchanged) {
    std::vector<std::byte> all;
    for (unsigned i = 0; i < 256; ++i) all.push_back(static_cast<std::byte>(i));
    EXPECT_EQ(Encoded(Decoded(all, Version::kJet3), Version::kJet3, false), all);
}

TEST(Text, Jet3_CharacterOutsideTheCodePage_BecomesAQuestionMark) {
    EXPECT_EQ(Encoded(u"a\u0431", Version::kJet3, false), Bytes8({'a', '?'}));
}

TEST(Text, Jet4_ShortText_IsNotCompressed) {
    EXPECT_EQ(Encoded(u"ab", Version::kJet4, true), Bytes8({'a', 0, 'b', 0}));
    EXPECT_EQ(Encoded(u"abc", Version::kJet4, true), Bytes8({0xFF, 0xFE, 'a', 'b', 'c'}));
}

TEST(Text, Jet4_MixedText_SwitchesBetweenTheModes) {
    const std::u16string text = u"abcdefgh\u0431\u0432xyzxyz";
    const auto bytes = Encoded(text, Version::kJet4, true);
    EXPECT_EQ(bytes, Bytes8({0xFF, 0xFE, 'a',  'b', 'c', 'd', 'e', 'f', 'g', 'h', 0,
                             0x31, 4,    0x32, 4,   0,   'x', 'y', 'z', 'x', 'y', 'z'}));
    EXPECT_EQ(Decoded(bytes, Version::kJet4), text);
}

TEST(Text, Jet4_TextWithAZeroLowByte_StaysPlain) {
    for (const std::u16string& text :
         {std::u16string(u"abcdef\u0100"), std::u16string(u"abc\0def", 7)}) {
        const auto bytes = Encoded(text, Version::kJet4, true);
        EXPECT_EQ(bytes.size(), 2 * text.size());
        EXPECT_EQ(Decoded(bytes, Version::kJet4), text);
    }
}

TEST(Text, Jet4_CompressionThatGainsNothing_IsNotUsed) {
    EXPECT_EQ(Encoded(u"\u0431\u0432\u0433\u0434", Version::kJet4, true).size(), 8U);
}

// Its bytes are those that mark a compressed text.
TEST(Text, Jet4_TextThatBeginsWithTheMark_ComesBackAsItWent) {
    for (const std::u16string& text : {std::u16string(u"\uFEFF"), std::u16string(u"\uFEFFab"),
                                       std::u16string(u"\uFEFF\u03B1\u03B2\uFEFF")}) {
        for (const bool compress : {false, true}) {
            EXPECT_EQ(Decoded(Encoded(text, Version::kJet4, compress), Version::kJet4), text);
        }
    }
    EXPECT_EQ(Decoded(Encoded(u"\uFEFF\uFEFF\u0100b", Version::kJet4, true), Version::kJet4),
              u"\u0100b");
}

TEST(Text, Jet4_LoneSurrogates_GoThroughUnchanged) {
    const std::u16string text = {u'a', char16_t{0xD801}, u'b', char16_t{0xDC01}, u'c', u'd', u'e'};
    EXPECT_EQ(Decoded(Encoded(text, Version::kJet4, true), Version::kJet4), text);
    EXPECT_EQ(Decoded(Encoded(text, Version::kJet4, false), Version::kJet4), text);
}

TEST(Text, Jet4_CutOffText_GivesWholeCharactersOnly) {
    EXPECT_EQ(Decoded(Bytes8({'a', 0, 'b'}), Version::kJet4), u"a");
    EXPECT_EQ(Decoded(Bytes8({0xFF, 0xFE, 'a', 0, 0x31}), Version::kJet4), u"a");
    EXPECT_EQ(Decoded(Bytes8({0xFF, 0xFE}), Version::kJet4), u"");
    EXPECT_EQ(Decoded(Bytes8({0xFF, 0x41}), Version::kJet4), u"\u41FF");
}

TEST(Names, GoFromUtf8AndBack) {
    const std::string utf8 = "Z\xC3\xBCrich \xE2\x82\xAC \xF0\x9F\x98\x80";
    EXPECT_EQ(WidenName(utf8), u"Z\u00FCrich \u20AC \U0001F600");
    EXPECT_EQ(NarrowName(WidenName(utf8)), utf8);
}

TEST(Names, BadUtf8_BecomesReplacementCharacters) {
    EXPECT_EQ(WidenName("a\xFF"
                        "b"),
              u"a\uFFFDb");
    EXPECT_EQ(WidenName("a\xC3"), u"a\uFFFD");
    EXPECT_EQ(WidenName("\xC3x"), u"\uFFFDx");
    EXPECT_EQ(WidenName("\xE2\x82x"), u"\uFFFDx");
    EXPECT_EQ(WidenName("\xF0\x9F\x98"), u"\uFFFD");
    // Bytes that begin nothing: a rest of another sequence, an overlong form, beyond the last
    // plane.
    EXPECT_EQ(WidenName("\x80\xC1\xF5"), u"\uFFFD\uFFFD\uFFFD");
    EXPECT_EQ(NarrowName(std::u16string(1, char16_t{0xD800})), "\xEF\xBF\xBD");
}

}  // namespace
}  // namespace jet
