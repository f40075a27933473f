// Single structures of a page or a row, with bytes that no sound file has, and the rare forms that
// sound ones have.
#include <gtest/gtest.h>

#include <bit>
#include <limits>
#include <string>
#include <vector>

#include "check/row_parts.h"
#include "jet/error.h"
#include "page/bytes.h"
#include "page/header.h"
#include "page/map_row.h"
#include "record/data_page.h"
#include "sample_table.h"
#include "values/key.h"

namespace jet {
namespace {

using Page = std::vector<std::byte>;

// A page whose directory names the given places.
Page PageWithSlots(const Format& format, const std::vector<std::uint32_t>& starts) {
    Page page(format.pageSize);
    WriteU16(page, 0, kDataPageType);
    WriteU16(page, format.rowCountAt, static_cast<std::uint16_t>(starts.size()));
    for (std::size_t i = 0; i < starts.size(); ++i) {
        WriteU16(page, format.rowDirectoryAt + 2 * i, static_cast<std::uint16_t>(starts[i]));
    }
    return page;
}

class Structures : public testing::TestWithParam<Version> {
protected:
    [[nodiscard]] const Format& FileFormat() const { return FormatOf(GetParam()); }
    [[nodiscard]] std::uint32_t End() const { return FileFormat().pageSize; }

    // What keeps rows of maps from being changed on a page with these slots.
    void ExpectNoChange(const std::vector<std::uint32_t>& starts) {
        Page page = PageWithSlots(FileFormat(), starts);
        const Page before = page;
        EXPECT_EQ(ErrorOf([&] { AppendMapRow(page, FileFormat(), 20); }), ErrorKind::kDamaged);
        EXPECT_EQ(page, before);
    }
};

INSTANTIATE_TEST_SUITE_P(Versions, Structures, testing::Values(Version::kJet3, Version::kJet4),
                         [](const auto& tested) { return VersionName(tested.param); });

TEST_P(Structures, MapRowsOutsideTheirPage_AreDamage) {
    const std::uint32_t inDirectory = 4;
    const std::uint32_t beyondPage = 0x1FFF;
    ExpectNoChange({inDirectory});
    ExpectNoChange({beyondPage});
    const Page page = PageWithSlots(FileFormat(), {inDirectory, beyondPage, End() - 80});
    for (std::uint8_t slot = 0; slot < 4; ++slot) {
        EXPECT_EQ(ErrorOf([&] { (void)FindMapRow(page, FileFormat(), slot); }), ErrorKind::kDamaged)
            << int{slot};
    }
}

TEST_P(Structures, MapRowsInAnotherOrder_AreNotLengthened) {
    Page page = PageWithSlots(FileFormat(), {End() - 200, End() - 100});
    const Page before = page;
    EXPECT_EQ(FindMapRow(page, FileFormat(), 0).length, 200U);
    EXPECT_EQ(ErrorOf([&] { LengthenMapRow(page, FileFormat(), 0, 210, std::byte{1}); }),
              ErrorKind::kDamaged);
    EXPECT_EQ(page, before);
}

TEST_P(Structures, PageOfAsManyMapRowsAsThereCanBe_TakesNoOther) {
    Page page = PageWithSlots(FileFormat(), std::vector<std::uint32_t>(254, End() - 10));
    EXPECT_TRUE(AppendMapRow(page, FileFormat(), 20));
    EXPECT_FALSE(AppendMapRow(page, FileFormat(), 20));
    EXPECT_EQ(FindMapRow(page, FileFormat(), 254).length, 20U);
}

TEST_P(Structures, RowWithoutRoom_IsNotWritten) {
    Page page(FileFormat().pageSize);
    StartDataPage(page, FileFormat(), 7);
    const Page before = page;
    EXPECT_EQ(ErrorOf([&] { AppendRow(page, FileFormat(), Page(End()), SlotKind::kRow); }),
              ErrorKind::kDamaged);
    EXPECT_EQ(page, before);
    EXPECT_EQ(AppendRow(page, FileFormat(), {}, SlotKind::kDeleted), 0);
    EXPECT_EQ(AppendRow(page, FileFormat(), Page(9), SlotKind::kRow), 1);
    EXPECT_EQ(ReadSlot(page, FileFormat(), 0).length, 0U);
    EXPECT_EQ(ReadSlot(page, FileFormat(), 1).length, 9U);
}

TEST_P(Structures, RowsInAnotherOrder_AreNotResized) {
    Page page = PageWithSlots(FileFormat(), {End() - 200, End() - 100});
    const Page before = page;
    EXPECT_EQ(ErrorOf([&] { ResizeRow(page, FileFormat(), 0, 150); }), ErrorKind::kDamaged);
    EXPECT_EQ(page, before);
}

TEST_P(Structures, CounterOfChanges_NeverBecomesTheMarkOfAnInterruptedWriter) {
    EXPECT_EQ(NextCommitCounter(0x1234), 0x1235);
    EXPECT_NE(NextCommitCounter(0xFFFF), 0);
    EXPECT_NE(NextCommitCounter(0xFFFF), 0xFFFF);
}

// The password of a Jet 4 file is hidden by the date; one that is no date hides nothing.
TEST(Header, PasswordOfAFileWithoutADate_IsSeen) {
    Page page(kJet4Format.pageSize);
    WriteFileHeader(page, Version::kJet4);
    const double date = ReadFileHeader(page).creationDate;
    for (const double other : {std::numeric_limits<double>::quiet_NaN(),
                               std::numeric_limits<double>::infinity(), 1e300, -1e300}) {
        Page changed = page;
        const auto mask = std::bit_cast<std::uint64_t>(date) ^ std::bit_cast<std::uint64_t>(other);
        WriteU64(changed, 0x72, ReadU64(changed, 0x72) ^ mask);
        EXPECT_EQ(ErrorOf([&] { (void)ReadFileHeader(changed); }), ErrorKind::kEncrypted) << other;
    }
}

// The code of the damage that keeps the row from being taken apart.
std::string DamageOf(const Page& row, const Format& format, std::uint16_t columns,
                     std::uint16_t variables) {
    TableLayout table;
    table.columnCount = columns;
    table.variableCount = variables;
    try {
        const RowParts parts(row, format, table);
    } catch (const Damage& damage) {
        return damage.code;
    }
    return {};
}

TEST_P(Structures, RowsCutOff_AreDamageWithAName) {
    const auto row = [&](std::size_t size, std::uint16_t columns) {
        Page bytes(size);
        WriteU16(bytes, 0, columns);
        return bytes;
    };
    const std::size_t width = FileFormat().countWidth;
    EXPECT_EQ(DamageOf(Page(width), FileFormat(), 8, 0), "row-length");
    EXPECT_EQ(DamageOf(row(width + 4, 40), FileFormat(), 40, 0), "row-null-mask");
    EXPECT_EQ(DamageOf(row(width + 5, 40), FileFormat(), 40, 0), "");
    EXPECT_EQ(DamageOf(row(width + width, 8), FileFormat(), 8, 1), "row-var-count");
    // The count is there, the table of offsets is not.
    EXPECT_EQ(DamageOf(row(width + width + 1, 8), FileFormat(), 8, 1), "row-var-count");
    EXPECT_EQ(DamageOf(row(width + width + 1, 8), FileFormat(), 8, 0), "");
}

Key KeyPart(ColumnType type, bool ascending, const Value& value, Version version) {
    Key key;
    AppendKeyPart(key, {type, ascending, {}}, value, version);
    return key;
}

TEST_P(Structures, YesNoWithoutAValue_HasTheKeyOfNo) {
    for (const bool ascending : {true, false}) {
        EXPECT_EQ(KeyPart(ColumnType::kBoolean, ascending, Value(), GetParam()),
                  KeyPart(ColumnType::kBoolean, ascending, Value(false), GetParam()));
        EXPECT_NE(KeyPart(ColumnType::kBoolean, ascending, Value(), GetParam()),
                  KeyPart(ColumnType::kBoolean, ascending, Value(true), GetParam()));
    }
}

TEST_P(Structures, TextThatNamesNoLanguage_IsSortedByTheUsualOne) {
    const KeyColumn unnamed{ColumnType::kText, true, {.language = 0, .version = 0, .codePage = 0}};
    EXPECT_FALSE(KeyObstacle(unnamed, GetParam()));
    Key key;
    AppendKeyPart(key, unnamed, Value(u"Bern"), GetParam());
    EXPECT_EQ(key, KeyPart(ColumnType::kText, true, Value(u"Bern"), GetParam()));
    const KeyColumn other{ColumnType::kText, true, {.language = 0x0407, .codePage = 1250}};
    EXPECT_TRUE(KeyObstacle(other, GetParam()));
}

}  // namespace
}  // namespace jet
