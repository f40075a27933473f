// Memory that runs out: every allocation of every operation fails in turn. The operation is then
// undone, and the same operation succeeds when there is memory again.
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <new>
#include <string>
#include <vector>

#include "jet/check.h"
#include "jet/database.h"
#include "jet/error.h"
#include "jet/failing_allocations.h"
#include "jet/recordset.h"

namespace jet {
namespace {

constexpr char kFile[] = "a file.mdb";

TableSchema Schema(const std::string& name) {
    TableSchema schema;
    schema.name = name;
    schema.columns = {{.name = "ID", .type = ColumnType::kLong},
                      {.name = "Name", .type = ColumnType::kText, .length = 40},
                      {.name = "Remarks", .type = ColumnType::kMemo}};
    schema.indexes = {{.name = "PrimaryKey", .columns = {{"ID"}}, .primary = true},
                      {.name = "Name", .columns = {{"Name"}}}};
    return schema;
}

void Add(Recordset& rows, std::int32_t id, std::size_t remarks) {
    rows.AddNew();
    rows.Set("ID", id);
    rows.Set("Name", std::u16string(20, static_cast<char16_t>(u'a' + id % 26)));
    rows.Set("Remarks", std::u16string(remarks, u'r'));
    rows.Update();
}

// The rows as one text.
std::u16string Look(Database& database) {
    std::u16string all;
    for (const std::string& name : database.TableNames()) {
        const auto rows = database.OpenTable(name);
        all += std::u16string(name.begin(), name.end()) + u"\n";
        for (; !rows->IsEof(); rows->MoveNext()) {
            for (const char* field : {"ID", "Name", "Remarks"}) {
                all += rows->Get(field).AsText() + u"|";
            }
        }
    }
    return all;
}

class AllocationTest : public ::testing::TestWithParam<Version> {
protected:
    AllocationTest() : database_(Database::Create(kFile, GetParam(), *files_)) {
        database_->CreateTable(Schema("People"));
        const auto rows = database_->OpenTable("People");
        for (std::int32_t id = 1; id <= 60; ++id) Add(*rows, id, id % 7 == 0 ? 3000 : 10);
    }
    ~AllocationTest() override { tarn_test::FailAllocation(-1); }

    // Lets the allocations of `operation` fail one after the other until it passes.
    void FailEachAllocation(const std::function<void()>& operation) {
        const std::u16string before = Look(*database_);
        for (long nth = 0; nth < 5000; ++nth) {
            tarn_test::FailAllocation(nth);
            bool passed = false;
            try {
                operation();
                passed = true;
            } catch (const Error& error) {
                tarn_test::FailAllocation(-1);
                ASSERT_EQ(error.Kind(), ErrorKind::kOutOfMemory) << error.what();
            } catch (const std::bad_alloc&) {
            }
            tarn_test::FailAllocation(-1);
            if (passed) {
                EXPECT_NE(Look(*database_), before);
                database_->Close();
                const CheckReport report = CheckFile(kFile, *files_);
                EXPECT_TRUE(report.IsSound()) << report.Text();
                return;
            }
            ASSERT_EQ(Look(*database_), before) << "allocation " << nth;
        }
        FAIL() << "the operation never passed";
    }

    std::unique_ptr<FileSystem> files_ = MakeMemoryFileSystem();
    std::unique_ptr<Database> database_;
};

INSTANTIATE_TEST_SUITE_P(Versions, AllocationTest,
                         ::testing::Values(Version::kJet3, Version::kJet4));

TEST_P(AllocationTest, Add_WithoutMemory_LeavesTheFileAsItWas) {
    const auto rows = database_->OpenTable("People");
    FailEachAllocation([&] { Add(*rows, 100, 9000); });
}

TEST_P(AllocationTest, Edit_WithoutMemory_LeavesTheFileAsItWas) {
    const auto rows = database_->OpenTable("People");
    rows->SetIndex("PrimaryKey");
    FailEachAllocation([&] {
        rows->Seek(Comparison::kEqual, {7});
        rows->Edit();
        rows->Set("Name", u"zzz");
        rows->Set("Remarks", std::u16string(5000, u's'));
        rows->Update();
    });
}

TEST_P(AllocationTest, Delete_WithoutMemory_LeavesTheFileAsItWas) {
    const auto rows = database_->OpenTable("People");
    rows->SetIndex("PrimaryKey");
    FailEachAllocation([&] {
        rows->Seek(Comparison::kEqual, {14});
        rows->Delete();
    });
}

TEST_P(AllocationTest, CreateTable_WithoutMemory_LeavesTheFileAsItWas) {
    const TableSchema schema = Schema("Others");
    FailEachAllocation([&] { database_->CreateTable(schema); });
}

// Reads all fields of all records, with no memory to be had once the second walk is under way.
void WalkTwice(Recordset& rows) {
    std::u16string text;
    std::int64_t sum = 0;
    for (const long allocations : {-1L, 0L}) {
        rows.MoveFirst();
        rows.MoveNext();
        tarn_test::FailAllocation(allocations);
        for (; !rows.IsEof(); rows.MoveNext()) {
            std::int32_t id = 0;
            rows.ReadLong(FieldId{0}, id);
            for (const int field : {1, 2}) rows.ReadText(FieldId{field}, text);
            sum += id + static_cast<std::int64_t>(text.size());
        }
        tarn_test::FailAllocation(-1);
    }
    EXPECT_GT(sum, 0);
}

TEST_P(AllocationTest, Walking_InAnyOrder_TakesNoMemory) {
    const auto rows = database_->OpenTable("People");
    for (const char* index : {"", "PrimaryKey", "Name"}) {
        rows->SetIndex(index);
        EXPECT_NO_THROW(WalkTwice(*rows)) << index;
    }
}

TEST_P(AllocationTest, Seeking_TakesNoMemory) {
    const auto rows = database_->OpenTable("People");
    rows->SetIndex("PrimaryKey");
    for (const long allocations : {-1L, 0L}) {
        tarn_test::FailAllocation(allocations);
        for (std::int32_t id = 1; id <= 60; ++id) {
            std::int32_t found = 0;
            EXPECT_TRUE(rows->Seek(Comparison::kEqual, {id}) && rows->ReadLong(FieldId{0}, found) &&
                        found == id);
        }
        tarn_test::FailAllocation(-1);
    }
}

TEST_P(AllocationTest, Open_WithoutMemory_LeavesTheFileAsItWas) {
    database_->Close();
    for (long nth = 0;; ++nth) {
        ASSERT_LT(nth, 5000);
        tarn_test::FailAllocation(nth);
        try {
            const auto again = Database::Open(kFile, {}, *files_);
            tarn_test::FailAllocation(-1);
            again->Close();
            break;
        } catch (const Error&) {
        } catch (const std::bad_alloc&) {
        }
        tarn_test::FailAllocation(-1);
    }
    EXPECT_TRUE(CheckFile(kFile, *files_).IsSound());
}

}  // namespace
}  // namespace jet
