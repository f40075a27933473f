// Long values: the three forms, their limits, and chains that make no sense.
#include "record/long_value.h"

#include <gtest/gtest.h>

#include "jet/error.h"
#include "jet/file.h"
#include "page/bytes.h"
#include "record/data_page.h"
#include "sample_table.h"

namespace jet {
namespace {

class LongValueTest : public testing::TestWithParam<Version> {
protected:
    LongValueTest()
        : files_(MakeMemoryFileSystem()),
          pager_(Pager::Create(*files_, "values.mdb", GetParam())),
          operation_(std::in_place, *pager_) {
        owned_ = UsageMap::Create(*operation_).Row();
        free_ = UsageMap::Create(*operation_).Row();
    }

    [[nodiscard]] const Format& FileFormat() const { return pager_->FileFormat(); }
    LongValueStore Store() { return {*pager_, owned_, free_}; }
    std::vector<std::byte> Write(std::size_t size, std::byte fill = std::byte{7}) {
        std::vector<std::byte> inRow;
        Store().Write(*operation_, std::vector<std::byte>(size, fill), size, inRow);
        return inRow;
    }
    std::vector<std::byte> Read(Bytes inRow) {
        std::vector<std::byte> value;
        PageRef page;
        std::vector<std::byte> room;
        const Bytes whole = ReadLongValue(*pager_, inRow, page, room);
        value.assign(whole.begin(), whole.end());
        return value;
    }
    [[nodiscard]] int PagesOf(RowId map) const {
        int pages = 0;
        UsageMap(*pager_, map).ForEach(PageNumber{0}, [&pages](PageNumber) {
            ++pages;
            return true;
        });
        return pages;
    }

    [[nodiscard]] std::vector<std::byte> AllPages() const {
        std::vector<std::byte> all;
        for (std::uint32_t page = 0; page < pager_->PageCount(); ++page) {
            const PageRef ref = pager_->Page(PageNumber{page});
            all.insert(all.end(), ref.Data().begin(), ref.Data().end());
        }
        return all;
    }

    std::unique_ptr<FileSystem> files_;
    std::unique_ptr<Pager> pager_;
    std::optional<Operation> operation_;
    RowId owned_;
    RowId free_;
};

TEST_P(LongValueTest, Form_IsChosenByTheLength) {
    const std::size_t inRow = FileFormat().longValueInRow;
    const std::size_t onePage = FileFormat().longValueOnePage;
    EXPECT_EQ(ReadLongValueHead(Write(0))->form, LongValueForm::kInline);
    EXPECT_EQ(ReadLongValueHead(Write(inRow))->form, LongValueForm::kInline);
    EXPECT_EQ(ReadLongValueHead(Write(inRow + 1))->form, LongValueForm::kRow);
    EXPECT_EQ(ReadLongValueHead(Write(onePage))->form, LongValueForm::kRow);
    EXPECT_EQ(ReadLongValueHead(Write(onePage + 1))->form, LongValueForm::kChain);
    EXPECT_EQ(Write(0).size(), kLongValueHeader);
}

TEST_P(LongValueTest, EveryLengthAroundTheLimits_ReadsBack) {
    for (const std::size_t limit :
         {std::size_t{FileFormat().longValueInRow}, std::size_t{FileFormat().longValueOnePage},
          std::size_t{FileFormat().longValueChunk}, std::size_t{FileFormat().longValueChunk} * 3}) {
        for (std::size_t size = limit - 2; size < limit + 3; ++size) {
            EXPECT_EQ(Read(Write(size)), std::vector<std::byte>(size, std::byte{7})) << size;
        }
    }
}

TEST_P(LongValueTest, Release_GivesEveryPageBack) {
    std::vector<std::vector<std::byte>> values;
    for (std::size_t size = 1; size < 40000; size += 777) values.push_back(Write(size));
    EXPECT_GT(PagesOf(owned_), 0);
    for (const auto& value : values) Store().Release(*operation_, value);
    EXPECT_EQ(PagesOf(owned_), 0);
    EXPECT_EQ(PagesOf(free_), 0);
}

TEST_P(LongValueTest, ReleasingTwice_IsDamage) {
    const auto first = Write(500);
    const auto second = Write(500);
    Store().Release(*operation_, first);
    EXPECT_EQ(ErrorOf([&] { Store().Release(*operation_, first); }), ErrorKind::kDamaged);
    EXPECT_EQ(Read(second).size(), 500U);
}

TEST_P(LongValueTest, Values_ShareAPage) {
    for (int i = 0; i < 8; ++i) Write(200);
    EXPECT_EQ(PagesOf(owned_), 1);
}

TEST_P(LongValueTest, EmptyInRowPart_IsAnEmptyValue) {
    EXPECT_TRUE(Read({}).empty());
}

TEST_P(LongValueTest, ChainThatBitesItsTail_IsDamage) {
    const auto inRow = Write(std::size_t{FileFormat().longValueChunk} * 3);
    const RowId first = ReadLongValueHead(inRow)->first;
    const MutableBytes page = operation_->Change(first.page);
    const Slot slot = ReadSlot(page, FileFormat(), first.slot);
    WriteU32(page, slot.start, first.Packed());
    auto longer = inRow;
    WriteU32(longer, 0, 3 * 2048 * 40);
    EXPECT_EQ(ErrorOf([&] { Read(longer); }), ErrorKind::kDamaged);
    EXPECT_EQ(ErrorOf([&] { Store().Release(*operation_, inRow); }), ErrorKind::kDamaged);
}

TEST_P(LongValueTest, HeadsThatMakeNoSense_AreDamage) {
    const auto refuse = [&](std::uint32_t word, std::uint32_t pointer, std::size_t size) {
        std::vector<std::byte> inRow(size);
        WriteU32(inRow, 0, word);
        WriteU32(inRow, 4, pointer);
        EXPECT_EQ(ErrorOf([&] { Read(inRow); }), ErrorKind::kDamaged) << std::hex << word;
    };
    Write(500);
    refuse(0x80000009, 0, 20);           // longer than the row's part
    refuse(0xC0000001, 0, 20);           // a form that is none
    refuse(0x40000005, 0x00FFFF00, 12);  // past the end of the file
    refuse(0x40000005, 0x00000100, 12);  // a page of something else
    refuse(0x3FFFFFFF, 0x00000200, 12);  // longer than the file
    refuse(0x00000005, 0, 12);           // a chain without a first row
    EXPECT_EQ(ErrorOf([&] { Read(std::vector<std::byte>(8)); }), ErrorKind::kDamaged);
}

TEST_P(LongValueTest, PiecesThatWereDeletedOrCutOff_AreDamage) {
    const auto whole = Write(500);
    const RowId row = ReadLongValueHead(whole)->first;
    const auto chained = Write(std::size_t{FileFormat().longValueChunk} * 2);
    const RowId first = ReadLongValueHead(chained)->first;
    // A chain that says that it is longer than its rows.
    auto longer = chained;
    WriteU32(longer, 0, static_cast<std::uint32_t>(FileFormat().longValueChunk) * 2 + 1);
    EXPECT_EQ(ErrorOf([&] { Read(longer); }), ErrorKind::kDamaged);
    ResizeRow(operation_->Change(first.page), FileFormat(), first.slot, 4);
    EXPECT_EQ(ErrorOf([&] { Read(chained); }), ErrorKind::kDamaged);
    EXPECT_EQ(Read(whole).size(), 500U);
    DeleteRow(operation_->Change(row.page), FileFormat(), row.slot);
    EXPECT_EQ(ErrorOf([&] { Read(whole); }), ErrorKind::kDamaged);
}

TEST_P(LongValueTest, WithoutAMapOfRoom_EveryValueHasItsPage) {
    LongValueStore store(*pager_, owned_, {});
    std::vector<std::vector<std::byte>> values(3);
    for (auto& inRow : values)
        store.Write(*operation_, std::vector<std::byte>(200, std::byte{7}), 200, inRow);
    EXPECT_EQ(PagesOf(owned_), 3);
    for (const auto& inRow : values) {
        EXPECT_EQ(Read(inRow), std::vector<std::byte>(200, std::byte{7}));
        store.Release(*operation_, inRow);
    }
    EXPECT_EQ(PagesOf(owned_), 0);
    EXPECT_EQ(PagesOf(free_), 0);
}

TEST_P(LongValueTest, ReleaseOfWhatLiesInTheRow_ChangesNothing) {
    Write(500);
    Store().Release(*operation_, Write(5));
    Store().Release(*operation_, {});
    EXPECT_EQ(PagesOf(owned_), 1);
}

TEST_P(LongValueTest, Replace_WhereThePageHasRoom_KeepsThePlace) {
    const auto neighbor = Write(300, std::byte{1});
    const auto old = Write(300);
    const auto last = Write(300, std::byte{2});
    for (const std::size_t size : {std::size_t{100}, std::size_t{300}, std::size_t{500}}) {
        std::vector<std::byte> inRow;
        Store().Replace(*operation_, old, std::vector<std::byte>(size, std::byte{9}), size, inRow);
        EXPECT_EQ(ReadLongValueHead(inRow)->first, ReadLongValueHead(old)->first) << size;
        EXPECT_EQ(Read(inRow), std::vector<std::byte>(size, std::byte{9})) << size;
        EXPECT_EQ(Read(neighbor), std::vector<std::byte>(300, std::byte{1})) << size;
        EXPECT_EQ(Read(last), std::vector<std::byte>(300, std::byte{2})) << size;
    }
    EXPECT_EQ(PagesOf(owned_), 1);
}

TEST_P(LongValueTest, Replace_OfAnyForm_ByAnyForm_GivesTheOldOneBack) {
    const std::size_t chunk = FileFormat().longValueChunk;
    for (const std::size_t before : {std::size_t{0}, std::size_t{300}, chunk - 100, 3 * chunk}) {
        for (const std::size_t after : {std::size_t{0}, std::size_t{300}, chunk - 100, 3 * chunk}) {
            const auto filler = Write(300);
            const auto old = Write(before);
            std::vector<std::byte> inRow;
            Store().Replace(*operation_, old, std::vector<std::byte>(after, std::byte{9}), after,
                            inRow);
            EXPECT_EQ(Read(inRow), std::vector<std::byte>(after, std::byte{9}));
            EXPECT_EQ(Read(filler), std::vector<std::byte>(300, std::byte{7}));
            Store().Release(*operation_, inRow);
            Store().Release(*operation_, filler);
            EXPECT_EQ(PagesOf(owned_), 0) << before << " " << after;
        }
    }
}

TEST_P(LongValueTest, Replace_UndoneWithinATransaction_LeavesEveryPageAsItWas) {
    operation_->Commit();
    operation_.reset();
    pager_->BeginTransaction();
    operation_.emplace(*pager_);
    const std::size_t size = FileFormat().longValueInRow * 3;
    std::vector<std::vector<std::byte>> values;
    for (int i = 0; i < 5; ++i) values.push_back(Write(size, static_cast<std::byte>(i)));
    Store().Release(*operation_, values[1]);
    operation_->Commit();
    const std::vector<std::byte> before = AllPages();
    const std::size_t onePage = FileFormat().longValueOnePage;
    for (const std::size_t length : {size, size - 20, size + 20, onePage}) {
        operation_.emplace(*pager_);
        std::vector<std::byte> inRow;
        const std::vector<std::byte> value(length, std::byte{9});
        Store().Replace(*operation_, values[3], value, length, inRow);
        operation_.reset();
        EXPECT_EQ(AllPages(), before) << length;
    }
    pager_->RollbackTransaction();
}

TEST_P(LongValueTest, PageWithLittleRoom_IsListedOnceItHasMore) {
    const std::size_t size = FileFormat().longValueInRow + 10;
    std::vector<std::vector<std::byte>> values;
    while (PagesOf(owned_) < 2) values.push_back(Write(size));
    const PageNumber page = ReadLongValueHead(values[0])->first.page;
    const UsageMap listed(*pager_, free_);
    std::size_t released = 0;
    while (!listed.Contains(page)) {
        ASSERT_LT(released, values.size());
        Store().Release(*operation_, values[released++]);
    }
    EXPECT_GT(released, 1U);
    EXPECT_GE(released * size + 100, FileFormat().pageSize / 8);
    EXPECT_EQ(ReadLongValueHead(Write(size))->first.page, page);
}

INSTANTIATE_TEST_SUITE_P(BothVersions, LongValueTest,
                         testing::Values(Version::kJet3, Version::kJet4),
                         [](const auto& tested) { return VersionName(tested.param); });

}  // namespace
}  // namespace jet
