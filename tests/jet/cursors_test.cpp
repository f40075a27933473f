// The cursors on the rows of a table: where they are when rows are deleted under them, and what a
// deletion costs however many rows there are.
#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <vector>

#include "catalog/new_table.h"
#include "catalog/table_maker.h"
#include "jet/file.h"
#include "page/bits.h"
#include "query/list_cursor.h"
#include "sample_table.h"
#include "table/key_cursor.h"
#include "table/row_cursor.h"

namespace jet {
namespace {

constexpr std::uint32_t kMany = 1000000;

// The places that a long list of rows has; nothing is read there.
std::vector<RowId> ManyRows() {
    std::vector<RowId> rows;
    rows.reserve(kMany);
    for (std::uint32_t i = 0; i < kMany; ++i) rows.push_back(RowId::FromPacked(2560 + i));
    return rows;
}

class CursorTest : public testing::TestWithParam<Version> {
protected:
    CursorTest()
        : files_(MakeMemoryFileSystem()), pager_(Pager::Create(*files_, "a.mdb", GetParam())) {
        TableSchema schema;
        schema.name = "Numbers";
        schema.columns = {{.name = "Number", .type = ColumnType::kLong}};
        schema.indexes = {{.name = "Number", .columns = {{"Number"}}}};
        Operation operation(*pager_);
        Definition definition = DefinitionOf(schema, GetParam());
        PlaceColumns(definition, pager_->Header());
        definition.page = operation.Allocate();
        MakeTablePages(operation, definition);
        table_ = std::make_unique<Table>(*pager_, schema.name, std::move(definition));
        operation.Commit();
    }

    RowId Add(std::int32_t number) {
        Operation operation(*pager_);
        const RowId row = table_->Insert(operation, {.values = {number}, .given = {true}});
        operation.Commit();
        return row;
    }
    void Delete(RowId row) {
        std::vector<TableRow> deleted;
        Operation operation(*pager_);
        table_->Delete(operation, row, deleted);
        operation.Commit();
        ASSERT_EQ(deleted.size(), 1U);
        Signal(row);
    }
    void Signal(RowId row) { table_->Rows().Cursors().RowDeleted(row, pager_->InTransaction()); }

    std::unique_ptr<FileSystem> files_;
    std::unique_ptr<Pager> pager_;
    std::unique_ptr<Table> table_;
};

INSTANTIATE_TEST_SUITE_P(Versions, CursorTest, testing::Values(Version::kJet3, Version::kJet4),
                         [](const auto& tested) { return VersionName(tested.param); });

TEST_P(CursorTest, RowDeletedUnderEveryKind_LeavesItsPlace) {
    std::vector<RowId> rows;
    for (const std::int32_t number : {10, 20, 30}) rows.push_back(Add(number));
    RowCursor stored(table_->Rows());
    KeyCursor keyed(*table_, *table_->Indexes().front());
    ListCursor listed(table_->Rows(), rows);
    for (TableCursor* cursor : std::initializer_list<TableCursor*>{&stored, &keyed, &listed}) {
        EXPECT_FALSE(cursor->Valid());
        ASSERT_TRUE(cursor->SeekToFirst());
        ASSERT_TRUE(cursor->Next());
        EXPECT_EQ(cursor->Row(), rows[1]);
    }
    Delete(rows[1]);
    // The place may be given to another row, which nobody has come to.
    Add(25);
    for (TableCursor* cursor : std::initializer_list<TableCursor*>{&stored, &keyed, &listed}) {
        EXPECT_FALSE(cursor->Valid());
        ASSERT_TRUE(cursor->Prev());
        EXPECT_EQ(cursor->Row(), rows[0]);
        EXPECT_FALSE(cursor->Prev());
        EXPECT_TRUE(cursor->Valid());
    }
}

TEST_P(CursorTest, CursorsThatEndInAnyOrder_LeaveTheOthers) {
    const RowId row = Add(10);
    std::vector<std::unique_ptr<RowCursor>> cursors;
    for (int i = 0; i < 4; ++i) {
        cursors.push_back(std::make_unique<RowCursor>(table_->Rows()));
        ASSERT_TRUE(cursors.back()->SeekToFirst());
    }
    cursors[1].reset();
    cursors[3].reset();
    cursors[0].reset();
    Delete(row);
    EXPECT_FALSE(cursors[2]->Valid());
}

TEST_P(CursorTest, DeletingBackward_ComesToEveryRow) {
    constexpr std::int32_t kRows = 3000;
    for (std::int32_t number = 0; number < kRows; ++number) Add(number);
    RowCursor cursor(table_->Rows());
    std::int32_t found = 0;
    for (bool on = cursor.SeekToLast(); on; on = cursor.Prev()) {
        Delete(cursor.Row());
        ++found;
    }
    EXPECT_EQ(found, kRows);
    EXPECT_FALSE(cursor.SeekToFirst());
}

// A list whose deletions look through it, or move it together, does not end in this test's life.
TEST_P(CursorTest, DeletingALongList_ForwardAndBackward_TakesOneStepEach) {
    const std::vector<RowId> rows = ManyRows();
    ListCursor forward(table_->Rows(), rows);
    ListCursor backward(table_->Rows(), rows);
    ASSERT_TRUE(forward.SeekToFirst());
    ASSERT_TRUE(backward.SeekToLast());
    for (std::uint32_t i = 0; i < kMany / 2; ++i) {
        Signal(forward.Row());
        Signal(backward.Row());
        ASSERT_EQ(forward.Next(), i + 1 < kMany / 2);
        ASSERT_EQ(backward.Prev(), i + 1 < kMany / 2);
    }
    EXPECT_EQ(forward.Count(), 0U);
    EXPECT_EQ(backward.Count(), 0U);
}

TEST_P(CursorTest, DeletingTheFirstOfALongList_OverAndOver_TakesOneStepEach) {
    ListCursor cursor(table_->Rows(), ManyRows());
    for (std::uint32_t i = kMany; i > 0; --i) {
        ASSERT_TRUE(i % 2 == 0 ? cursor.SeekToFirst() : cursor.SeekToLast());
        Signal(cursor.Row());
        ASSERT_EQ(cursor.Count(), i - 1);
    }
    EXPECT_FALSE(cursor.SeekToFirst());
    EXPECT_FALSE(cursor.SeekToLast());
}

TEST_P(CursorTest, List_AfterARollback_HasItsRowsAndNoOthers) {
    std::vector<RowId> rows;
    for (const std::int32_t number : {10, 20, 30}) rows.push_back(Add(number));
    ListCursor before(table_->Rows(), rows);
    pager_->BeginTransaction();
    ASSERT_TRUE(before.SeekToFirst());
    ASSERT_TRUE(before.Next());
    table_->Rows().Cursors().MakeRoomForDeleted(2);
    Delete(rows[1]);
    Delete(rows[2]);
    before.MakeRoomForRow();
    before.RowAdded(Add(40));
    ListCursor within(table_->Rows(), std::vector<RowId>{rows[0]});
    EXPECT_EQ(before.Count(), 2U);
    pager_->RollbackTransaction();
    table_->Rows().Cursors().TransactionRolledBack();
    EXPECT_EQ(before.Count(), 3U);
    EXPECT_EQ(within.Count(), 1U);
    EXPECT_FALSE(before.Valid());
    ASSERT_TRUE(before.Prev());
    EXPECT_EQ(before.Row(), rows[0]);
    ASSERT_TRUE(before.Next());
    EXPECT_EQ(before.Row(), rows[1]);
    ASSERT_TRUE(before.SeekToLast());
    EXPECT_EQ(before.Row(), rows[2]);
    // A later transaction has its own deletions only.
    Delete(rows[2]);
    pager_->BeginTransaction();
    pager_->RollbackTransaction();
    table_->Rows().Cursors().TransactionRolledBack();
    EXPECT_EQ(before.Count(), 2U);
}

// A map that fills its row as bits goes over to pages of bits once its members are far apart.
TEST(UsageMapBackward, EveryMember_IsTheLastBeforeTheNext) {
    const auto files = MakeMemoryFileSystem();
    const auto pager = Pager::Create(*files, "a.mdb", Version::kJet3);
    Operation operation(*pager);
    constexpr std::uint32_t kPages = 17000;
    for (std::uint32_t page = 2; page < kPages; page += 4000) operation.Extend(PageNumber{page});
    operation.Extend(PageNumber{kPages});
    UsageMap map = UsageMap::Create(operation);
    std::vector<PageNumber> members;
    for (const std::uint32_t page : {5U, 6U, 70U, 400U, 16351U, 16352U, 16900U}) {
        map.Add(operation, PageNumber{page});
        members.push_back(PageNumber{page});
        std::vector<PageNumber> backward;
        for (auto at = map.LastBefore(PageNumber{kPages}); at; at = map.LastBefore(*at)) {
            backward.insert(backward.begin(), *at);
        }
        EXPECT_EQ(backward, members);
    }
    EXPECT_FALSE(map.LastBefore(PageNumber{5}));
    EXPECT_EQ(map.LastBefore(PageNumber{16352}), PageNumber{16351});
}

TEST(Bits, LastBit_IsTheOneBefore) {
    std::vector<std::byte> bits(40);
    const std::vector<std::size_t> set = {0, 7, 8, 63, 64, 150, 151, 319};
    for (const std::size_t bit : set) SetBit(bits, bit);
    for (std::size_t end = 0; end <= 330; ++end) {
        std::optional<std::size_t> expected;
        for (const std::size_t bit : set) {
            if (bit < end) expected = bit;
        }
        EXPECT_EQ(LastBit(bits, end), expected) << end;
    }
}

}  // namespace
}  // namespace jet
