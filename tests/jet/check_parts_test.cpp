// The parts of the check, each on pages made for it: maps, rows, long values and trees that no
// writer leaves behind and that nobody's damage reaches by chance.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "check/account.h"
#include "check/row_check.h"
#include "check/table_layout.h"
#include "check/tree_check.h"
#include "page/bytes.h"
#include "page/header.h"
#include "page/map_row.h"
#include "record/data_page.h"
#include "record/long_value.h"

namespace jet {
namespace {

using Row = std::vector<std::byte>;

constexpr std::uint32_t kTablePage = 2;
constexpr std::uint32_t kMapPage = 3;

Row BytesOf(std::initializer_list<unsigned> values) {
    Row row;
    for (const unsigned value : values) row.push_back(static_cast<std::byte>(value));
    return row;
}

Column MakeColumn(ColumnType type, bool fixed = false) {
    Column column;
    column.name = "A";
    column.type = type;
    column.fixed = fixed;
    return column;
}

// Pages that nobody has written to a file.
class MadePages : public PageSource {
public:
    explicit MadePages(const Format& format) : format_(format) {}
    [[nodiscard]] std::uint32_t PageCount() const override {
        return static_cast<std::uint32_t>(pages_.size());
    }
    std::uint32_t Add(Row page) {
        page.resize(format_.pageSize);
        pages_.push_back(std::move(page));
        return PageCount() - 1;
    }
    Row& At(std::uint32_t page) { return pages_.at(page); }

private:
    void ReadInto(std::uint32_t page, std::vector<std::byte>& into) const override {
        into = pages_.at(page);
    }
    const Format& format_;
    std::vector<Row> pages_;
};

struct TreeLinks {
    unsigned level = 0;
    std::uint32_t previous = 0;
    std::uint32_t next = 0;
    std::uint32_t tail = 0;
};

class CheckParts : public testing::Test {
protected:
    // Header, global maps, definition and a page with one empty map.
    CheckParts() {
        for (int i = 0; i < 3; ++i) pages_.Add({});
        pages_.Add(RowsPage(0, {InlineMap({})}));
        table_.name = "T";
        table_.page = kTablePage;
        table_.ownedMap = RowId{PageNumber{kMapPage}, 0};
    }

    static Row InlineMap(const std::vector<std::uint32_t>& members) {
        Row map(kJet4Format.initialMapRow);
        for (const std::uint32_t page : members) {
            map[kInlineMapHead + page / 8] |= static_cast<std::byte>(1U << page % 8);
        }
        return map;
    }
    static Row RowsPage(std::uint32_t owner, const std::vector<Row>& rows) {
        Row page(kJet4Format.pageSize);
        StartDataPage(page, kJet4Format, owner);
        for (const Row& row : rows) AppendRow(page, kJet4Format, row, SlotKind::kRow);
        return page;
    }
    // Entries with everything that belongs to them, below the root or in a leaf.
    static Row IndexPage(bool leaf, const TreeLinks& links, const std::vector<Row>& entries) {
        const Format& format = kJet4Format;
        Row page(format.pageSize);
        WriteU16(page, 0, leaf ? 0x0104 : 0x0103);
        WriteU32(page, 4, kTablePage);
        WriteU32(page, format.previousPageAt, links.previous);
        WriteU32(page, format.nextPageAt, links.next);
        WriteU32(page, format.tailPageAt, links.tail);
        WriteU8(page, format.levelAt, static_cast<std::uint8_t>(links.level));
        std::size_t end = 0;
        for (const Row& entry : entries) {
            std::copy(entry.begin(), entry.end(), page.begin() + format.entryAreaAt + end);
            end += entry.size();
            page[format.entryBitmapAt + end / 8] |= static_cast<std::byte>(1U << end % 8);
        }
        WriteU16(page, 2, static_cast<std::uint16_t>(format.entryCapacity - end));
        return page;
    }
    // A key of one byte, the row 1 of page 7, and the child of an entry of a node.
    static Row LeafEntry(unsigned key) { return BytesOf({0x7F, key, 0, 0, 7, 1}); }
    static Row NodeEntry(unsigned key, unsigned child) {
        return BytesOf({0x7F, key, 0, 0, 7, 1, 0, 0, 0, child});
    }

    [[nodiscard]] bool Found(const std::string& code) const {
        return std::any_of(report_.findings.begin(), report_.findings.end(),
                           [&](const Finding& finding) { return finding.code == code; });
    }
    PageAccount& Account() {
        if (!account_) account_.emplace(context_);
        return *account_;
    }
    void SetOwned(const std::vector<std::uint32_t>& members) {
        pages_.At(kMapPage) = RowsPage(0, {InlineMap(members), InlineMap({})});
        table_.freeMap = RowId{PageNumber{kMapPage}, 1};
    }
    int RunRows() {
        int rows = 0;
        RowCheck(context_, Account(), table_).Run([&](const CheckedRow&) { ++rows; });
        return rows;
    }
    // The entries of the tree that begins on this page, which are all in order.
    int RunTree(std::uint32_t root) {
        RealIndexLayout index;
        index.name = "I";
        index.root = root;
        index.map = RowId{PageNumber{kMapPage}, 0};
        int entries = 0;
        TreeCheck(context_, Account(), table_, index).Run([&](const Key&) { ++entries; });
        return entries;
    }
    std::string DamageOfLongValue(const Row& inRow) {
        LongValueCheck check(context_, Account(), table_);
        try {
            (void)check.Read(memo_, inRow, {});
        } catch (const Damage& damage) {
            return damage.code;
        }
        return {};
    }

    MadePages pages_{kJet4Format};
    CheckReport report_;
    Findings findings_{report_};
    CheckContext context_{pages_, kJet4Format, findings_, report_};
    TableLayout table_;
    Column memo_ = MakeColumn(ColumnType::kMemo);
    std::optional<PageAccount> account_;  // once all pages are there
};

TEST_F(CheckParts, PagePastTheEnd_IsNobodys) {
    PageAccount& account = Account();
    EXPECT_FALSE(account.Claim(pages_.PageCount(), "table T", "T"));
    EXPECT_FALSE(account.IsClaimed(pages_.PageCount()));
    EXPECT_EQ(account.UserOf(pages_.PageCount()), "nobody");
    EXPECT_TRUE(report_.findings.empty());
    EXPECT_TRUE(account.Claim(kMapPage, "table T", "T"));
    account.ClaimShared(kMapPage);
    EXPECT_TRUE(Found("page-twice"));
    EXPECT_EQ(account.UserOf(kMapPage), "table T");
}

TEST_F(CheckParts, MapThatIsNowhere_IsFoundAndEmpty) {
    for (const RowId row : {RowId{}, RowId{PageNumber{99}, 0}}) {
        report_.findings.clear();
        EXPECT_TRUE(Account().ReadMap(row, "table T", "T").empty());
        EXPECT_TRUE(Found("map-pointer"));
    }
}

TEST_F(CheckParts, MapCutOff_IsFoundAndEmpty) {
    pages_.At(kMapPage) = RowsPage(0, {BytesOf({kInlineMap, 0, 0, 0}), BytesOf({7, 1, 2, 3, 4})});
    for (std::uint8_t slot = 0; slot < 2; ++slot) {
        report_.findings.clear();
        EXPECT_TRUE(Account().ReadMap(RowId{PageNumber{kMapPage}, slot}, "x", "T").empty());
        EXPECT_TRUE(Found("map-row"));
    }
}

TEST_F(CheckParts, MapOfMapPages_NamesWhatIsNone) {
    Row map = BytesOf({kReferenceMap});
    map.resize(9);
    for (const unsigned page : {99U, kTablePage}) {
        report_.findings.clear();
        WriteU32(map, 1, page);
        pages_.At(kMapPage) = RowsPage(0, {map, map});
        EXPECT_TRUE(Account().ReadMap(table_.ownedMap, "x", "T").empty());
        EXPECT_TRUE(Found("map-row"));
    }
}

// Behind the end of the file every page is free; the map of a table must not name such pages.
TEST_F(CheckParts, PagesPastTheEnd_AreRightInTheGlobalMapOnly) {
    Row map = BytesOf({kReferenceMap});
    map.resize(9);
    Row bits = BytesOf({0x05, 0x01, 0, 0, 0x20, 0xFF});
    WriteU32(map, 1, 4);
    pages_.At(1) = RowsPage(1, {map});
    pages_.At(kMapPage) = RowsPage(0, {map});
    EXPECT_EQ(pages_.Add(bits), 4U);
    EXPECT_EQ(pages_.Add({}), 5U);
    EXPECT_EQ(Account().ReadMap(RowId{PageNumber{1}, 0}, "the free pages", {}),
              std::vector<std::uint32_t>{5});
    EXPECT_TRUE(report_.findings.empty()) << report_.Text();
    EXPECT_EQ(Account().ReadMap(table_.ownedMap, "table T", "T"), std::vector<std::uint32_t>{5});
    EXPECT_TRUE(Found("map-beyond-end"));
}

TEST_F(CheckParts, LeavesOfDifferentDepth_AreFound) {
    // 4 above 5 and 6, 6 above 7: the leaf 7 is one deeper than the leaf 5.
    pages_.Add(IndexPage(false, {.level = 2, .tail = 6}, {NodeEntry(1, 5)}));
    pages_.Add(IndexPage(true, {.next = 7}, {LeafEntry(1)}));
    pages_.Add(IndexPage(false, {.level = 1, .tail = 7}, {}));
    pages_.Add(IndexPage(true, {.previous = 5}, {LeafEntry(2)}));
    EXPECT_EQ(RunTree(4), 2);
    EXPECT_TRUE(Found("index-depth"));
}

TEST_F(CheckParts, EmptyPagesInATree_AreFound) {
    pages_.Add(IndexPage(false, {.level = 1, .tail = 6}, {NodeEntry(1, 5)}));
    pages_.Add(IndexPage(true, {.next = 6}, {LeafEntry(1)}));
    pages_.Add(IndexPage(true, {.previous = 5}, {}));
    EXPECT_EQ(RunTree(4), 1);
    EXPECT_TRUE(Found("index-empty-leaf"));
    EXPECT_FALSE(Found("index-empty-node"));
    pages_.Add(IndexPage(false, {.level = 1}, {}));
    account_.reset();
    EXPECT_EQ(RunTree(7), 0);
    EXPECT_TRUE(Found("index-empty-node"));
}

TEST_F(CheckParts, NodesOfOneLevel_NameTheirNeighbors) {
    const auto build = [&](std::uint32_t nextOfFirst, std::uint32_t previousOfLast) {
        pages_.Add(IndexPage(false, {.level = 2, .tail = 6}, {NodeEntry(1, 5)}));
        pages_.Add(IndexPage(false, {.level = 1, .next = nextOfFirst}, {NodeEntry(1, 7)}));
        pages_.Add(IndexPage(false, {.level = 1, .previous = previousOfLast, .tail = 8}, {}));
        pages_.Add(IndexPage(true, {.next = 8}, {LeafEntry(1)}));
        pages_.Add(IndexPage(true, {.previous = 7}, {LeafEntry(2)}));
    };
    build(6, 5);
    EXPECT_EQ(RunTree(4), 2);
    EXPECT_FALSE(Found("index-node-link")) << report_.Text();
    // A node of one entry may do without a tail, except the root.
    EXPECT_FALSE(Found("index-tail")) << report_.Text();
    const std::pair<std::uint32_t, std::uint32_t> wrong[] = {{6, 9}, {9, 5}};
    for (const auto& [next, previous] : wrong) {
        report_.findings.clear();
        account_.reset();
        WriteU32(pages_.At(5), kJet4Format.nextPageAt, next);
        WriteU32(pages_.At(6), kJet4Format.previousPageAt, previous);
        EXPECT_EQ(RunTree(4), 2);
        EXPECT_TRUE(Found("index-node-link"));
    }
}

TEST_F(CheckParts, EntryThatEndsNowhere_IsFoundAndPassedOver) {
    Row page = IndexPage(true, {}, {LeafEntry(1)});
    page[kJet4Format.entryBitmapAt] |= std::byte{1};
    const std::size_t beyond = kJet4Format.entryCapacity + 1;
    page[kJet4Format.entryBitmapAt + beyond / 8] |= static_cast<std::byte>(1U << beyond % 8);
    pages_.Add(page);
    EXPECT_EQ(RunTree(4), 1);
    EXPECT_EQ(std::count_if(report_.findings.begin(), report_.findings.end(),
                            [](const Finding& finding) { return finding.code == "index-bitmap"; }),
              2);
}

TEST_F(CheckParts, EntryOfARowThatTheIndexLeavesOut_IsTooMany) {
    table_.columns = {MakeColumn(ColumnType::kLong)};
    RealIndexLayout index;
    index.parts = {{.column = 0}};
    index.flags = 0x03;  // unique, without rows that have no value
    EntryCheck check(context_, table_, index);
    const RowId left{PageNumber{7}, 1};
    check.AddRow({left, {Value()}, {true}});
    // The value could not be read, so nobody knows what its entry would be.
    check.AddRow({RowId{PageNumber{7}, 2}, {Value()}, {false}});
    check.Finish();
    EXPECT_TRUE(report_.findings.empty()) << report_.Text();
    EntryCheck other(context_, table_, index);
    other.AddRow({left, {Value()}, {true}});
    other.AddEntry(LeafEntry(1));
    EXPECT_TRUE(Found("index-extra"));
}

Row LongValueHead(std::uint32_t length, LongValueForm form, RowId first) {
    Row head(kLongValueHeader);
    WriteU32(head, 0, length | static_cast<std::uint32_t>(form) << 30);
    WriteU32(head, 4, first.Packed());
    return head;
}

TEST_F(CheckParts, LongValueCutOffInItsRow_IsDamage) {
    EXPECT_EQ(DamageOfLongValue({}), "");
    EXPECT_EQ(DamageOfLongValue(Row(5)), "long-value-header");
    EXPECT_EQ(DamageOfLongValue(LongValueHead(4, LongValueForm::kRow, {})), "long-value-pointer");
    EXPECT_EQ(DamageOfLongValue(LongValueHead(4, LongValueForm::kRow, {PageNumber{99}, 0})),
              "long-value-pointer");
}

TEST_F(CheckParts, PiecesOfALongValueThatDoNotFit_AreDamage) {
    Row chained(20);  // a piece that says that it is the last one
    const std::uint32_t page = pages_.Add(RowsPage(kLongValueOwner, {BytesOf({1, 2, 3}), chained}));
    Row twoPieces(20);
    WriteU32(twoPieces, 0, RowId{PageNumber{page}, 1}.Packed());
    const std::uint32_t other = pages_.Add(RowsPage(kLongValueOwner, {twoPieces}));
    const auto damage = [&](std::uint32_t length, std::uint32_t at, std::uint8_t slot) {
        return DamageOfLongValue(
            LongValueHead(length, LongValueForm::kChain, {PageNumber{at}, slot}));
    };
    EXPECT_EQ(damage(16, page, 1), "");
    EXPECT_EQ(damage(3, page, 0), "long-value-chain");
    EXPECT_EQ(damage(32, other, 0), "");
    EXPECT_EQ(damage(10, other, 0), "long-value-length");
    EXPECT_EQ(damage(10, page, 1), "long-value-length");
    // A piece that begins behind its end.
    WriteU16(pages_.At(page), kJet4Format.rowDirectoryAt + 2, 4095);
    EXPECT_EQ(damage(16, page, 1), "long-value-pointer");
}

TEST_F(CheckParts, MapsOfLongValues_AreComparedWithEachOther) {
    const std::uint32_t page = pages_.Add(RowsPage(kLongValueOwner, {}));
    pages_.At(kMapPage) = RowsPage(0, {InlineMap({page}), InlineMap({kTablePage})});
    table_.columns = {memo_};
    table_.longValues = {
        {.column = 0, .owned = {PageNumber{kMapPage}, 0}, .free = {PageNumber{kMapPage}, 1}}};
    const LongValueCheck check(context_, Account(), table_);
    EXPECT_TRUE(Found("free-map"));
    EXPECT_FALSE(Found("page-twice"));
    // The same page cannot be another column's as well.
    TableLayout other = table_;
    other.name = "U";
    const LongValueCheck second(context_, Account(), other);
    EXPECT_TRUE(Found("page-twice"));
}

TEST_F(CheckParts, MovedRowThatLeadsNowhere_IsFoundAndCounted) {
    table_.columnCount = 1;
    table_.columns = {MakeColumn(ColumnType::kLong, true)};
    const Row target = BytesOf({1, 0, 42, 0, 0, 0, 1});
    const auto moved = [&](Row pointer) {
        const std::uint32_t rows = pages_.PageCount() - 2;
        Row page(kJet4Format.pageSize);
        StartDataPage(page, kJet4Format, kTablePage);
        AppendRow(page, kJet4Format, pointer, SlotKind::kPointer);
        pages_.At(rows) = page;
        report_.findings.clear();
        account_.reset();
        return RunRows();
    };
    pages_.Add({});
    Row targets(kJet4Format.pageSize);
    StartDataPage(targets, kJet4Format, kTablePage);
    AppendRow(targets, kJet4Format, target, SlotKind::kTarget);
    EXPECT_EQ(pages_.Add(targets), 5U);
    SetOwned({4, 5});
    EXPECT_EQ(moved(BytesOf({0, 5, 0, 0})), 1);
    EXPECT_TRUE(report_.findings.empty()) << report_.Text();
    for (const Row& pointer : {BytesOf({0, 5, 0}), BytesOf({1, 5, 0, 0}), BytesOf({0, 9, 0, 0})}) {
        EXPECT_EQ(moved(pointer), 1);
        EXPECT_TRUE(Found("overflow-pointer")) << report_.Text();
    }
    // A place of another owner, and one that ends before it begins.
    WriteU32(pages_.At(5), 4, 77);
    EXPECT_EQ(moved(BytesOf({0, 5, 0, 0})), 1);
    EXPECT_TRUE(Found("overflow-pointer"));
    WriteU32(pages_.At(5), 4, kTablePage);
    AppendRow(pages_.At(5), kJet4Format, target, SlotKind::kTarget);
    WriteU16(pages_.At(5), kJet4Format.rowDirectoryAt + 2, 0x8000 | 4095);
    EXPECT_EQ(moved(BytesOf({1, 5, 0, 0})), 1);
    EXPECT_TRUE(Found("overflow-pointer"));
}

}  // namespace
}  // namespace jet
