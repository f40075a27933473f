// Usage maps that say what no writer says: damage, or no room for more; never a page astray.
#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <vector>

#include "jet/error.h"
#include "page/bytes.h"
#include "page/header.h"
#include "page/map_row.h"
#include "page/operation.h"
#include "page/pager.h"
#include "page/usage_map.h"
#include "sample_table.h"

namespace jet {
namespace {

class DamagedMap : public testing::TestWithParam<Version> {
protected:
    DamagedMap()
        : pager_(Pager::Create(*files_, "maps.mdb", GetParam())),
          operation_(std::in_place, *pager_),
          noMap_(operation_->Allocate()),
          map_(UsageMap::Create(*operation_)) {}

    [[nodiscard]] const Format& FileFormat() const { return pager_->FileFormat(); }
    [[nodiscard]] std::uint32_t PerRange() const { return PagesOfMapPage(FileFormat()); }
    MutableBytes RowBytes(RowId row) {
        const MutableBytes page = operation_->Change(row.page);
        const RowExtent extent = FindMapRow(page, FileFormat(), row.slot);
        return Slice(page, extent.start, extent.length);
    }
    // Makes the row one of references, the first of which leads to this page.
    void Refer(RowId row, PageNumber to) {
        const MutableBytes bytes = RowBytes(row);
        std::fill(bytes.begin(), bytes.end(), std::byte{0});
        WriteU8(bytes, 0, kReferenceMap);
        WriteU32(bytes, 1, to.value);
    }

    std::unique_ptr<FileSystem> files_ = MakeMemoryFileSystem();
    std::unique_ptr<Pager> pager_;
    std::optional<Operation> operation_;
    PageNumber noMap_;  // a page that is none of a map
    UsageMap map_;
    const RowId global_{PageNumber{1}, 0};
};

INSTANTIATE_TEST_SUITE_P(Versions, DamagedMap, testing::Values(Version::kJet3, Version::kJet4),
                         [](const auto& tested) { return VersionName(tested.param); });

TEST_P(DamagedMap, StartBeyondAllPages_IsDamage) {
    map_.Add(*operation_, PageNumber{3});
    WriteU32(RowBytes(map_.Row()), 1, 0x01000000);
    EXPECT_EQ(ErrorOf([&] { (void)map_.Contains(PageNumber{3}); }), ErrorKind::kDamaged);
    EXPECT_EQ(ErrorOf([&] { map_.Add(*operation_, PageNumber{3}); }), ErrorKind::kDamaged);
}

TEST_P(DamagedMap, ReferenceToAnotherPage_IsDamageAndThePageStays) {
    Refer(map_.Row(), noMap_);
    EXPECT_EQ(ErrorOf([&] { (void)map_.Contains(PageNumber{3}); }), ErrorKind::kDamaged);
    EXPECT_EQ(ErrorOf([&] { (void)map_.NextFrom(PageNumber{0}); }), ErrorKind::kDamaged);
    EXPECT_EQ(ErrorOf([&] { map_.Add(*operation_, PageNumber{3}); }), ErrorKind::kDamaged);
    for (const std::byte byte : pager_->Page(noMap_).Data()) ASSERT_EQ(byte, std::byte{0});
}

TEST_P(DamagedMap, RangesBehindTheRow_HaveNoPages) {
    Refer(map_.Row(), {});
    EXPECT_FALSE(map_.Contains(PageNumber{3}));
    EXPECT_FALSE(map_.Contains(PageNumber{40 * PerRange() + 3}));
    EXPECT_EQ(map_.NextFrom(PageNumber{40 * PerRange()}), std::nullopt);
    map_.Remove(*operation_, PageNumber{40 * PerRange() + 3});
}

TEST_P(DamagedMap, RangeBehindTheRow_LengthensItAsLongAsThePageHasRoom) {
    Refer(map_.Row(), {});
    map_.Add(*operation_, PageNumber{3});
    const std::size_t before = RowBytes(map_.Row()).size();
    map_.Add(*operation_, PageNumber{40 * PerRange() + 3});
    EXPECT_EQ(RowBytes(map_.Row()).size(), 1 + 4 * 41U);
    EXPECT_GT(RowBytes(map_.Row()).size(), before);
    EXPECT_TRUE(map_.Contains(PageNumber{3}));
    // The file does not reach so far, so whatever the map says of it means nothing.
    EXPECT_FALSE(map_.Contains(PageNumber{40 * PerRange() + 3}));
    EXPECT_EQ(ErrorOf([&] { map_.Add(*operation_, PageNumber{1020 * PerRange()}); }),
              ErrorKind::kFileTooLarge);
    EXPECT_TRUE(map_.Contains(PageNumber{3}));
}

TEST_P(DamagedMap, Visit_EndsWhenItIsAskedTo) {
    for (const std::uint32_t page : {3U, 5U, 9U}) map_.Add(*operation_, PageNumber{page});
    std::vector<std::uint32_t> seen;
    map_.ForEach(PageNumber{0}, [&](PageNumber page) {
        seen.push_back(page.value);
        return seen.size() < 2;
    });
    EXPECT_EQ(seen, (std::vector<std::uint32_t>{3, 5}));
}

TEST_P(DamagedMap, FreePagesOfAnUnknownKind_AreNotGivenOut) {
    const std::uint32_t pages = pager_->PageCount();
    Refer(global_, noMap_);
    EXPECT_EQ(ErrorOf([&] { (void)operation_->Allocate(); }), ErrorKind::kDamaged);
    EXPECT_EQ(ErrorOf([&] { operation_->Free(noMap_); }), ErrorKind::kDamaged);
    Refer(global_, {});
    EXPECT_EQ(ErrorOf([&] { operation_->Free(noMap_); }), ErrorKind::kDamaged);
    EXPECT_EQ(pager_->PageCount(), pages);
}

TEST_P(DamagedMap, FreePagesAtTheLargestSize_AreNotGivenOut) {
    const std::uint32_t largest = LargestPageCount(FileFormat());
    const MutableBytes row = RowBytes(global_);
    std::fill(row.begin() + kInlineMapHead, row.end(), std::byte{0xFF});
    row[kInlineMapHead] = std::byte{0};
    for (const auto& [start, kind] :
         {std::pair{largest - 8, ErrorKind::kFileTooLarge}, {largest, ErrorKind::kDamaged}}) {
        WriteU32(row, 1, start);
        EXPECT_EQ(ErrorOf([&] { (void)operation_->Allocate(); }), kind) << start;
    }
}

}  // namespace
}  // namespace jet
