// Rows of both versions, down to their bytes, and the pages that hold them.
#include "record/row.h"

#include <gtest/gtest.h>

#include <map>
#include <random>

#include "jet/error.h"
#include "page/bytes.h"
#include "record/data_page.h"

namespace jet {
namespace {

using ByteVector = std::vector<std::byte>;

ByteVector Bytes8(std::initializer_list<unsigned> values) {
    ByteVector bytes;
    for (const unsigned value : values) bytes.push_back(static_cast<std::byte>(value));
    return bytes;
}

ByteVector Copy(Bytes bytes) {
    return {bytes.begin(), bytes.end()};
}

TEST(Row, Jet4_PermissionRow_HasTheKnownBytes) {
    const RowShape shape{.columnCount = 4, .variableCount = 1, .firstVariable = 1, .fixedSize = 8};
    RowBuilder builder;
    builder.Start(kJet4Format, shape);
    WriteU32(builder.Fixed(0, 4), 0, 2);
    WriteU32(builder.Fixed(4, 4), 0, 0x60000);
    auto& row = builder.StartVariable(0);
    row.push_back(std::byte{0x64});
    row.push_back(std::byte{0x8B});
    for (std::uint16_t number = 0; number < 3; ++number) builder.Set(number);
    EXPECT_EQ(Copy(builder.Finish()),
              Bytes8({4, 0, 2, 0, 0, 0, 0, 0, 6, 0, 0x64, 0x8B, 0x0C, 0, 0x0A, 0, 1, 0, 7}));
}

TEST(Row, Jet3_ObjectRow_HasTheKnownBytes) {
    const RowShape shape{
        .columnCount = 17, .variableCount = 11, .firstVariable = 2, .fixedSize = 30};
    RowBuilder builder;
    builder.Start(kJet3Format, shape);
    for (const char c : std::string("Tables")) {
        builder.StartVariable(0).push_back(static_cast<std::byte>(c));
    }
    auto& row = builder.StartVariable(1);
    row.push_back(std::byte{2});
    row.push_back(std::byte{3});
    for (std::uint16_t number = 0; number < 8; ++number) builder.Set(number);
    const ByteVector bytes = Copy(builder.Finish());
    ASSERT_EQ(bytes.size(), 55U);
    EXPECT_EQ(ByteVector(bytes.begin() + 39, bytes.end()),
              Bytes8({0x27, 0x27, 0x27, 0x27, 0x27, 0x27, 0x27, 0x27, 0x27, 0x27, 0x25, 0x1F, 0x0B,
                      0xFF, 0, 0}));
}

// Writes rows of all lengths with values of random sizes and reads them back.
void CheckRandomRows(const Format& format) {
    std::mt19937 random(7);
    RowBuilder builder;
    for (int round = 0; round < 4000; ++round) {
        const auto variable = static_cast<std::uint16_t>(random() % 40);
        const auto columns = static_cast<std::uint16_t>(variable + random() % 20 + 1);
        const RowShape shape{.columnCount = columns,
                             .variableCount = variable,
                             .firstVariable = 0,
                             .fixedSize = static_cast<std::uint32_t>(random() % 300)};
        builder.Start(format, shape);
        std::map<std::uint32_t, ByteVector> values;
        const std::uint32_t most = round % 4 == 0 ? 4 : format.largestRow / (variable + 1U);
        for (std::uint32_t i = 0; i < variable; ++i) {
            if (random() % 3 == 0) continue;
            values[i].resize(random() % (most / 2 + 1), static_cast<std::byte>(random()));
            auto& into = builder.StartVariable(i);
            into.insert(into.end(), values[i].begin(), values[i].end());
        }
        ByteVector bytes;
        try {
            bytes = Copy(builder.Finish());
        } catch (const Error& error) {
            ASSERT_EQ(error.Kind(), ErrorKind::kRecordTooLarge);
            continue;
        }
        const RowView view(bytes, format, shape);
        ASSERT_EQ(view.VariableCount(), variable);
        for (std::uint32_t i = 0; i < variable; ++i) {
            ASSERT_EQ(Copy(view.Variable(i)), values[i]) << "round " << round << " value " << i;
        }
        ASSERT_EQ(view.Fixed(0, shape.fixedSize).size(), shape.fixedSize);
    }
}

TEST(Row, Jet3_RandomRows_ReadBackWithTheirJumps) {
    CheckRandomRows(kJet3Format);
}

TEST(Row, Jet4_RandomRows_ReadBack) {
    CheckRandomRows(kJet4Format);
}

TEST(Row, SmallestRow_CanBecomeAPointer) {
    RowBuilder builder;
    builder.Start(kJet3Format, {.columnCount = 1, .fixedSize = 0});
    EXPECT_GE(builder.Finish().size(), kSmallestRow);
}

TEST(Row, OlderThanAColumn_HasNoValueThere) {
    RowBuilder builder;
    builder.Start(kJet4Format, {.columnCount = 2, .variableCount = 1, .fixedSize = 4});
    builder.StartVariable(0).push_back(std::byte{9});
    builder.Set(1);
    const ByteVector bytes = Copy(builder.Finish());
    const RowView view(bytes, kJet4Format,
                       {.columnCount = 5, .variableCount = 3, .firstVariable = 1, .fixedSize = 8});
    EXPECT_TRUE(view.IsSet(1));
    EXPECT_FALSE(view.IsSet(4));
    EXPECT_EQ(view.Variable(2).size(), 0U);
}

TEST(Row, FromBeforeTheFirstVariableColumn_IsAllFixed) {
    RowBuilder builder;
    builder.Start(kJet4Format, {.columnCount = 1, .variableCount = 0, .fixedSize = 4});
    WriteU32(builder.Fixed(0, 4), 0, 77);
    builder.Set(0);
    const ByteVector bytes = Copy(builder.Finish());
    const RowView view(bytes, kJet4Format,
                       {.columnCount = 2, .variableCount = 1, .firstVariable = 1, .fixedSize = 4});
    EXPECT_EQ(view.VariableCount(), 0U);
    EXPECT_EQ(ReadU32(view.Fixed(0, 4), 0), 77U);
}

TEST(Row, AnyBytes_AreReadOrRefused) {
    std::mt19937 random(3);
    const RowShape shape{.columnCount = 9, .variableCount = 4, .firstVariable = 1, .fixedSize = 12};
    int refused = 0;
    for (int round = 0; round < 20000; ++round) {
        ByteVector bytes(random() % 600);
        for (std::byte& byte : bytes)
            byte = static_cast<std::byte>(random() % 3 == 0 ? random() : 1);
        for (const Format* format : {&kJet3Format, &kJet4Format}) {
            try {
                const RowView view(bytes, *format, shape);
                for (std::uint32_t i = 0; i < 300; ++i) static_cast<void>(view.Variable(i));
                static_cast<void>(view.Fixed(0, 12));
            } catch (const Error& error) {
                ASSERT_EQ(error.Kind(), ErrorKind::kDamaged);
                ++refused;
            }
        }
    }
    EXPECT_GT(refused, 0);
}

class PageTest : public testing::TestWithParam<const Format*> {
protected:
    [[nodiscard]] const Format& FileFormat() const { return *GetParam(); }
    void Check(const ByteVector& page, const std::map<int, ByteVector>& rows) {
        for (const auto& [slot, row] : rows) {
            ASSERT_EQ(Copy(SlotBytes(page, FileFormat(), static_cast<std::uint32_t>(slot))), row)
                << "slot " << slot;
        }
        ASSERT_EQ(ReadU16(page, 2), PageRoom(page, FileFormat()));
    }
};

TEST_P(PageTest, RandomChanges_KeepEveryOtherRow) {
    std::mt19937 random(11);
    ByteVector page(FileFormat().pageSize);
    StartDataPage(page, FileFormat(), 5);
    std::map<int, ByteVector> rows;
    for (int step = 0; step < 3000; ++step) {
        const unsigned what = random() % 4;
        const auto length = static_cast<std::uint32_t>(random() % 60);
        if (what == 0 && HasRoomFor(page, FileFormat(), length)) {
            const ByteVector row(length, static_cast<std::byte>(random()));
            rows[AppendRow(page, FileFormat(), row, SlotKind::kRow)] = row;
        } else if (!rows.empty()) {
            auto at = std::next(rows.begin(), static_cast<long>(random() % rows.size()));
            const auto slot = static_cast<std::uint32_t>(at->first);
            if (what == 1 && rows.size() > 20) {
                DeleteRow(page, FileFormat(), slot);
                EXPECT_EQ(ReadSlot(page, FileFormat(), slot).kind, SlotKind::kDeleted);
                rows.erase(at);
            } else if (CanResize(page, FileFormat(), slot, length)) {
                ResizeRow(page, FileFormat(), slot, length);
                at->second.resize(length);
            }
        }
        Check(page, rows);
        if (HasFatalFailure()) return;
    }
    EXPECT_EQ(SlotCount(page, FileFormat()), kMostSlots);
}

TEST_P(PageTest, DeletedRow_MovesNothingUntilItsRoomIsNeeded) {
    ByteVector page(FileFormat().pageSize);
    StartDataPage(page, FileFormat(), 5);
    const ByteVector row(200, std::byte{7});
    while (HasRoomFor(page, FileFormat(), 200)) AppendRow(page, FileFormat(), row, SlotKind::kRow);
    const ByteVector full = page;
    DeleteRow(page, FileFormat(), 2);
    SetSlotKind(page, FileFormat(), 2, SlotKind::kRow);
    EXPECT_EQ(page, full);
    DeleteRow(page, FileFormat(), 2);
    EXPECT_EQ(PossibleRoom(page, FileFormat()), PageRoom(page, FileFormat()) + 200);

    const ByteVector other(198, std::byte{9});
    const std::uint32_t room = PageRoom(page, FileFormat());
    const std::uint32_t added = AppendRow(page, FileFormat(), other, SlotKind::kRow);
    EXPECT_EQ(ReadSlot(page, FileFormat(), 2).length, 0U);
    EXPECT_EQ(ReadSlot(page, FileFormat(), 2).kind, SlotKind::kDeleted);
    EXPECT_EQ(PageRoom(page, FileFormat()), room);
    EXPECT_EQ(ReadU16(page, 2), room);
    for (std::uint32_t slot = 0; slot < added; ++slot) {
        if (slot == 2) continue;
        EXPECT_EQ(Copy(SlotBytes(page, FileFormat(), slot)), row);
    }
    EXPECT_EQ(Copy(SlotBytes(page, FileFormat(), added)), other);
}

TEST_P(PageTest, RowThatGrows_TakesTheRoomOfDeletedOnes) {
    ByteVector page(FileFormat().pageSize);
    StartDataPage(page, FileFormat(), 5);
    const ByteVector row(200, std::byte{7});
    while (HasRoomFor(page, FileFormat(), 200)) AppendRow(page, FileFormat(), row, SlotKind::kRow);
    EXPECT_FALSE(CanResize(page, FileFormat(), 1, 400));
    DeleteRow(page, FileFormat(), 0);
    ASSERT_TRUE(CanResize(page, FileFormat(), 1, 400));
    ResizeRow(page, FileFormat(), 1, 400);
    EXPECT_EQ(ReadSlot(page, FileFormat(), 1).length, 400U);
    EXPECT_EQ(Copy(SlotBytes(page, FileFormat(), 1).first(200)), row);
    EXPECT_EQ(Copy(SlotBytes(page, FileFormat(), 2)), row);
    EXPECT_EQ(ReadU16(page, 2), PageRoom(page, FileFormat()));
}

TEST_P(PageTest, EmptyPage_HasTheKnownRoom) {
    ByteVector page(FileFormat().pageSize);
    StartDataPage(page, FileFormat(), 5);
    EXPECT_EQ(PageRoom(page, FileFormat()), FileFormat().version == Version::kJet3 ? 2038U : 4082U);
    EXPECT_FALSE(HasLiveSlots(page, FileFormat()));
}

TEST_P(PageTest, DirectoryThatContradictsItself_IsDamage) {
    ByteVector page(FileFormat().pageSize);
    StartDataPage(page, FileFormat(), 5);
    AppendRow(page, FileFormat(), Bytes8({1, 2, 3, 4}), SlotKind::kRow);
    AppendRow(page, FileFormat(), Bytes8({1, 2, 3, 4}), SlotKind::kRow);
    EXPECT_THROW(ReadSlot(page, FileFormat(), 2), Error);
    WriteU16(page, FileFormat().rowDirectoryAt + 2, 0x1FFF);
    EXPECT_THROW(ReadSlot(page, FileFormat(), 1), Error);
    WriteU16(page, FileFormat().rowDirectoryAt + 2, 3);
    EXPECT_THROW(ReadSlot(page, FileFormat(), 1), Error);
    WriteU16(page, FileFormat().rowCountAt, 0xFFFF);
    EXPECT_THROW(SlotCount(page, FileFormat()), Error);
}

INSTANTIATE_TEST_SUITE_P(BothVersions, PageTest, testing::Values(&kJet3Format, &kJet4Format),
                         [](const auto& tested) {
                             return tested.param->version == Version::kJet3 ? "Jet3" : "Jet4";
                         });

}  // namespace
}  // namespace jet
