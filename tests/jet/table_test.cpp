// A table's rows on their pages: places, moves, pages given back, and tables that cannot be kept.
#include "table/table.h"

#include <gtest/gtest.h>

#include <random>

#include "catalog/new_table.h"
#include "catalog/table_maker.h"
#include "jet/error.h"
#include "jet/file.h"
#include "page/bytes.h"
#include "sample_table.h"
#include "table/row_cursor.h"

namespace jet {
namespace {

class TableTest : public testing::TestWithParam<Version> {
protected:
    TableTest()
        : files_(MakeMemoryFileSystem()),
          pager_(Pager::Create(*files_, "table.mdb", GetParam())),
          operation_(std::in_place, *pager_) {}

    Definition MakeDefinition(const TableSchema& schema) {
        Definition definition = DefinitionOf(schema, GetParam());
        PlaceColumns(definition, pager_->Header());
        definition.page = operation_->Allocate();
        MakeTablePages(*operation_, definition);
        return definition;
    }
    std::unique_ptr<Table> MakeTable(const TableSchema& schema) {
        return std::make_unique<Table>(*pager_, schema.name, MakeDefinition(schema));
    }
    static RowValues Row(const Table& table, std::initializer_list<Value> values) {
        RowValues row;
        row.values.resize(table.Def().columns.size());
        row.given.resize(table.Def().columns.size());
        std::size_t at = 0;
        for (const Value& value : values) {
            row.values[at] = ConvertForColumn(table.Def().columns[at], value, table.Def().version);
            row.given[at++] = true;
        }
        return row;
    }

    std::unique_ptr<FileSystem> files_;
    std::unique_ptr<Pager> pager_;
    std::optional<Operation> operation_;
    std::vector<TableRow> deleted_;
};

TEST_P(TableTest, Walk_SkipsTargetsAndFollowsPointers) {
    TableSchema schema;
    schema.name = "Texts";
    schema.columns = {{.name = "Text", .type = ColumnType::kText, .length = 250}};
    const auto table = MakeTable(schema);
    std::vector<RowId> rows;
    for (int i = 0; i < 300; ++i) rows.push_back(table->Insert(*operation_, Row(*table, {i})));
    for (int i = 0; i < 300; i += 2) {
        table->Update(*operation_, rows[static_cast<std::size_t>(i)],
                      Row(*table, {std::u16string(200, u'x') + Value(i).AsText()}));
    }
    std::vector<RowId> walked;
    StoredRow stored;
    std::u16string text;
    int moved = 0;
    RowCursor cursor(table->Rows());
    EXPECT_FALSE(cursor.Valid());
    for (bool on = cursor.SeekToFirst(); on; on = cursor.Next()) {
        const auto i = walked.size();
        walked.push_back(cursor.Row());
        ASSERT_TRUE(table->Rows().Find(cursor.Row(), stored));
        moved += stored.target.Data().empty() ? 0 : 1;
        ASSERT_TRUE(table->ReadText(table->View(stored.bytes), 0, text));
        EXPECT_EQ(text.size() > 100, i % 2 == 0);
    }
    EXPECT_EQ(walked, rows);
    EXPECT_GT(moved, 100);
    std::vector<RowId> backward;
    for (bool on = cursor.SeekToLast(); on; on = cursor.Prev()) backward.push_back(cursor.Row());
    std::reverse(backward.begin(), backward.end());
    EXPECT_EQ(backward, rows);
    for (const RowId row : rows) table->Delete(*operation_, row, deleted_);
    EXPECT_FALSE(UsageMap(*pager_, table->Def().ownedMap).NextFrom(PageNumber{0}));
    EXPECT_FALSE(UsageMap(*pager_, table->Def().freeMap).NextFrom(PageNumber{0}));
    EXPECT_EQ(table->Counters().RowCount(), 0U);
}

TEST_P(TableTest, RowThatMovesAgain_LeavesNoChainOfPointers) {
    TableSchema schema;
    schema.name = "Texts";
    schema.columns = {{.name = "Text", .type = ColumnType::kText, .length = 250},
                      {.name = "More", .type = ColumnType::kText, .length = 250}};
    const auto table = MakeTable(schema);
    std::vector<RowId> rows;
    for (int i = 0; i < 60; ++i) rows.push_back(table->Insert(*operation_, Row(*table, {i})));
    std::mt19937 random(9);
    StoredRow stored;
    for (int round = 0; round < 2000; ++round) {
        const RowId row = rows[random() % rows.size()];
        const std::u16string text(random() % 250, u'm');
        table->Update(*operation_, row, Row(*table, {text, text}));
        ASSERT_TRUE(table->Rows().Find(row, stored));
        const Slot home = ReadSlot(stored.home.Data(), pager_->FileFormat(), row.slot);
        if (home.kind == SlotKind::kPointer) {
            const RowId target =
                RowId::FromPacked(ReadU32(stored.home.Data().subspan(home.start), 0));
            const PageRef page = pager_->Page(target.page);
            EXPECT_EQ(ReadSlot(page.Data(), pager_->FileFormat(), target.slot).kind,
                      SlotKind::kTarget);
        }
        EXPECT_EQ(table->ReadValue(table->View(stored.bytes), 1), Value(text));
    }
}

TEST_P(TableTest, DeletedRow_IsNotFoundAndCannotBeChanged) {
    const auto table = MakeTable(ZonesSchema());
    const RowId first = table->Insert(*operation_, Row(*table, {1, 1, 1}));
    table->Insert(*operation_, Row(*table, {2, 1, 1}));
    table->Delete(*operation_, first, deleted_);
    StoredRow stored;
    EXPECT_FALSE(table->Rows().Find(first, stored));
    EXPECT_EQ(ErrorOf([&] { table->Delete(*operation_, first, deleted_); }),
              ErrorKind::kNoCurrentRecord);
    EXPECT_EQ(ErrorOf([&] { table->Update(*operation_, first, Row(*table, {3})); }),
              ErrorKind::kNoCurrentRecord);
    EXPECT_FALSE(table->Rows().Find({PageNumber{0xFFFFFF}, 0}, stored));
    EXPECT_FALSE(table->Rows().Find({PageNumber{1}, 0}, stored));
}

TEST_P(TableTest, PointersThatMakeNoSense_AreDamage) {
    TableSchema schema;
    schema.name = "Numbers";
    schema.columns = {{.name = "Number"}};
    const auto table = MakeTable(schema);
    const RowId row = table->Insert(*operation_, Row(*table, {1}));
    const MutableBytes page = operation_->Change(row.page);
    SetSlotKind(page, pager_->FileFormat(), row.slot, SlotKind::kPointer);
    StoredRow stored;
    for (const std::uint32_t target : {row.Packed(), 0U, 0xFFFFFF00U, 0x100U, row.Packed() + 5}) {
        WriteU32(page, ReadSlot(page, pager_->FileFormat(), row.slot).start, target);
        EXPECT_EQ(ErrorOf([&] { table->Rows().Find(row, stored); }), ErrorKind::kDamaged);
        EXPECT_EQ(ErrorOf([&] { table->Update(*operation_, row, Row(*table, {2})); }),
                  ErrorKind::kDamaged);
    }
}

TEST_P(TableTest, TableOfARelationship_IsNotWrittenTo) {
    Definition definition = MakeDefinition(ZonesSchema());
    definition.logicalIndexes[0].role = IndexRole::kRelation;
    Table table(*pager_, "Zones", definition);
    EXPECT_EQ(ErrorOf([&] {
                  table.Insert(*operation_, Row(table, {1, 1, 1}));
              }),
              ErrorKind::kUnsupported);
}

TEST_P(TableTest, IndexOfAnUnknownOrder_RefusesOnlyWhatTouchesIt) {
    TableSchema schema;
    schema.name = "Words";
    schema.columns = {{.name = "Word", .type = ColumnType::kText, .length = 20}, {.name = "Count"}};
    schema.indexes = {{.name = "Word", .columns = {{"Word"}}}};
    Definition definition = MakeDefinition(schema);
    RowId row;
    {
        Table table(*pager_, "Words", definition);
        row = table.Insert(*operation_, Row(table, {u"a", 1}));
    }
    definition.columns[0].collation.language = 0x0411;
    Table table(*pager_, "Words", definition);
    EXPECT_EQ(ErrorOf([&] {
                  table.Insert(*operation_, Row(table, {u"b", 1}));
              }),
              ErrorKind::kUnsupported);
    EXPECT_EQ(ErrorOf([&] { table.Delete(*operation_, row, deleted_); }), ErrorKind::kUnsupported);
    EXPECT_EQ(ErrorOf([&] { table.Update(*operation_, row, Row(table, {u"b"})); }),
              ErrorKind::kUnsupported);
    RowValues count = Row(table, {u"", 7});
    count.given[0] = false;
    table.Update(*operation_, row, count);
    StoredRow stored;
    ASSERT_TRUE(table.Rows().Find(row, stored));
    EXPECT_EQ(table.ReadValue(table.View(stored.bytes), 1), Value(7));
}

TEST_P(TableTest, UnknownIndexFlag_RefusesToWrite) {
    Definition definition = MakeDefinition(ZonesSchema());
    definition.realIndexes[0].flags |= 0x40;
    Table table(*pager_, "Zones", definition);
    EXPECT_EQ(ErrorOf([&] {
                  table.Insert(*operation_, Row(table, {1, 1, 1}));
              }),
              ErrorKind::kUnsupported);
}

TEST_P(TableTest, PartlyNullKeys_AreUniqueToo) {
    TableSchema schema = ZonesSchema();
    schema.indexes = {{.name = "Both", .columns = {{"Zone"}, {"Place"}}, .unique = true}};
    const auto table = MakeTable(schema);
    table->Insert(*operation_, Row(*table, {1, Value(), 1}));
    EXPECT_EQ(ErrorOf([&] {
                  table->Insert(*operation_, Row(*table, {1, Value(), 2}));
              }),
              ErrorKind::kDuplicateKey);
    table->Insert(*operation_, Row(*table, {Value(), Value(), 1}));
    table->Insert(*operation_, Row(*table, {Value(), Value(), 2}));
    EXPECT_EQ(table->Counters().RowCount(), 3U);
}

INSTANTIATE_TEST_SUITE_P(BothVersions, TableTest, testing::Values(Version::kJet3, Version::kJet4),
                         [](const auto& tested) { return VersionName(tested.param); });

}  // namespace
}  // namespace jet
