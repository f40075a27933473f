// Whole operations on pages, and the map of free pages.
#include "page/pager.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "jet/error.h"
#include "page/bytes.h"
#include "page/log_format.h"
#include "page/operation.h"
#include "page/usage_map.h"
#include "sample_table.h"

namespace jet {
namespace {

class PagerTest : public ::testing::TestWithParam<Version> {
protected:
    std::unique_ptr<Pager> MakeFile() {
        auto pager = Pager::Create(*files_, "a file.mdb", GetParam());
        Operation operation(*pager);
        for (int i = 0; i < 4; ++i) EXPECT_TRUE(operation.Allocate());
        operation.Commit();
        return pager;
    }

    std::unique_ptr<Pager> Reopen() {
        Recovery recovery;
        return Pager::Open(*files_, "a file.mdb", {}, recovery);
    }

    std::unique_ptr<FileSystem> files_ = MakeMemoryFileSystem();
};

INSTANTIATE_TEST_SUITE_P(Versions, PagerTest, ::testing::Values(Version::kJet3, Version::kJet4),
                         [](const auto& instance) {
                             return instance.param == Version::kJet3 ? "Jet3" : "Jet4";
                         });

TEST_P(PagerTest, Create_GivesPagesInOrderFromTwo) {
    auto pager = Pager::Create(*files_, "a file.mdb", GetParam());
    Operation operation(*pager);
    for (std::uint32_t page = 2; page < 20; ++page) EXPECT_EQ(operation.Allocate().value, page);
    EXPECT_EQ(pager->PageCount(), 20U);
}

TEST_P(PagerTest, Operation_WithoutCommit_PutsEverythingBack) {
    auto pager = MakeFile();
    const std::uint64_t before = pager->ChangeCount();
    {
        Operation operation(*pager);
        operation.Change(PageNumber{3})[100] = std::byte{7};
        operation.Allocate();
        EXPECT_EQ(pager->PageCount(), 7U);
        EXPECT_EQ(pager->Page(PageNumber{3}).Data()[100], std::byte{7});
    }
    EXPECT_EQ(pager->PageCount(), 6U);
    EXPECT_EQ(pager->Page(PageNumber{3}).Data()[100], std::byte{0});
    EXPECT_NE(pager->ChangeCount(), before);
    Operation operation(*pager);
    EXPECT_EQ(operation.Allocate().value, 6U);
}

TEST_P(PagerTest, ChangesOfParts_WithinATransaction_ArePutBackInAnyOrder) {
    const auto fill = [](Bytes page) { return std::vector<std::byte>(page.begin(), page.end()); };
    for (const bool partFirst : {true, false}) {
        auto pager = MakeFile();
        pager->BeginTransaction();
        {
            Operation operation(*pager);
            operation.Change(PageNumber{3})[100] = std::byte{7};
            operation.Commit();
        }
        const auto before = fill(pager->Page(PageNumber{3}).Data());
        const std::uint64_t count = pager->ChangeCount();
        {
            Operation operation(*pager);
            operation.ChangePart(PageNumber{4}, 20, 2)[21] = std::byte{5};
            if (!partFirst) operation.Change(PageNumber{3})[90] = std::byte{8};
            operation.ChangePart(PageNumber{3}, 100, 1)[100] = std::byte{9};
            operation.ChangePart(PageNumber{3}, 99, 3)[100] = std::byte{10};
            if (partFirst) operation.Change(PageNumber{3})[90] = std::byte{8};
            EXPECT_EQ(pager->Page(PageNumber{3}).Data()[100], std::byte{10});
        }
        EXPECT_EQ(fill(pager->Page(PageNumber{3}).Data()), before);
        EXPECT_EQ(pager->Page(PageNumber{4}).Data()[21], std::byte{0});
        EXPECT_NE(pager->ChangeCount(), count);
        {
            Operation operation(*pager);
            operation.ChangePart(PageNumber{3}, 99, 1)[99] = std::byte{1};
            operation.Commit();
        }
        EXPECT_EQ(pager->Page(PageNumber{3}).Data()[99], std::byte{1});
        pager->RollbackTransaction();
        EXPECT_EQ(pager->Page(PageNumber{3}).Data()[100], std::byte{0});
        EXPECT_EQ(pager->Page(PageNumber{3}).Data()[99], std::byte{0});
        pager->Abandon();
    }
}

TEST_P(PagerTest, Commit_ThenClose_IsThereAfterReopening) {
    auto pager = MakeFile();
    {
        Operation operation(*pager);
        operation.Change(PageNumber{5})[10] = std::byte{42};
        operation.Commit();
    }
    pager->Close();
    EXPECT_THROW((void)pager->Page(PageNumber{4711}), Error);
    pager = Reopen();
    EXPECT_EQ(pager->PageCount(), 6U);
    EXPECT_EQ(pager->Page(PageNumber{5}).Data()[10], std::byte{42});
}

TEST_P(PagerTest, Free_ThenAllocate_GivesTheSamePageZeroed) {
    auto pager = MakeFile();
    Operation operation(*pager);
    const MutableBytes bytes = operation.Change(PageNumber{4});
    std::fill(bytes.begin(), bytes.end(), std::byte{0xAA});
    operation.Free(PageNumber{4});
    EXPECT_THROW(operation.Free(PageNumber{4}), Error);
    EXPECT_EQ(operation.Allocate().value, 4U);
    const Bytes again = pager->Page(PageNumber{4}).Data();
    EXPECT_TRUE(std::all_of(again.begin(), again.end(), [](auto b) { return b == std::byte{0}; }));
    operation.Commit();
}

TEST_P(PagerTest, Allocate_FarPastTheFirstMap_StaysExact) {
    auto pager = MakeFile();
    const std::uint32_t last = 70000;  // more than two map pages of either version
    std::uint32_t previous = 5;
    for (int round = 0; previous < last; ++round) {
        Operation operation(*pager);
        for (int i = 0; i < 1000; ++i) {
            const PageNumber page = operation.Allocate();
            ASSERT_GT(page.value, previous);
            previous = page.value;
        }
        operation.Commit();
    }
    {
        Operation operation(*pager);
        for (const std::uint32_t page : {17U, 5000U, 69000U}) operation.Free(PageNumber{page});
        operation.Commit();
    }
    pager->Close();
    pager = Reopen();
    Operation operation(*pager);
    for (const std::uint32_t page : {17U, 5000U, 69000U})
        EXPECT_EQ(operation.Allocate().value, page);
    EXPECT_EQ(operation.Allocate().value, previous + 1);
    operation.Commit();
}

TEST_P(PagerTest, Open_WhileOpen_IsRefused) {
    auto pager = MakeFile();
    pager->MakeDurable();
    try {
        Reopen();
        FAIL() << "opened twice";
    } catch (const Error& error) {
        EXPECT_EQ(error.Kind(), ErrorKind::kFileInUse);
    }
}

TEST_P(PagerTest, UsageMap_KeepsAnySetOfPages) {
    auto pager = MakeFile();
    Operation operation(*pager);
    UsageMap map = UsageMap::Create(operation);
    UsageMap neighbor = UsageMap::Create(operation);
    neighbor.Add(operation, PageNumber{11});
    EXPECT_EQ(map.Row().page, neighbor.Row().page);
    while (operation.Allocate().value < 60000) {
    }
    std::set<std::uint32_t> model;
    std::uint32_t step = 1;
    for (std::uint32_t page = 900; page < 60000; page += step++) {
        map.Add(operation, PageNumber{page});
        model.insert(page);
        if (page % 3 == 0) {
            map.Remove(operation, PageNumber{page});
            model.erase(page);
        }
        ASSERT_EQ(map.Contains(PageNumber{page}), model.contains(page));
    }
    std::set<std::uint32_t> found;
    map.ForEach({}, [&](PageNumber page) { return found.insert(page.value).second; });
    EXPECT_EQ(found, model);
    EXPECT_EQ(neighbor.NextFrom({}), PageNumber{11});
    EXPECT_EQ(neighbor.NextFrom(PageNumber{12}), std::nullopt);
    operation.Commit();
}

template <typename Pages>
concept ChangesPages = requires(Pages& pages) {
    pages.Change(PageNumber{3});
}
|| requires(Pages& pages) {
    pages.Allocate();
}
|| requires(Pages& pages) {
    pages.Free(PageNumber{3});
};
static_assert(ChangesPages<Operation> && !ChangesPages<Pager>);

TEST_P(PagerTest, MisusedOperations_AreRefused) {
    const auto pager = MakeFile();
    {
        Operation operation(*pager);
        EXPECT_EQ(ErrorOf([&] { const Operation second(*pager); }), ErrorKind::kTransactionOpen);
        operation.Change(PageNumber{3})[0] = std::byte{1};
        EXPECT_EQ(ErrorOf([&] { pager->MakeDurable(); }), ErrorKind::kTransactionOpen);
        operation.Commit();
        EXPECT_EQ(ErrorOf([&] { operation.Change(PageNumber{3}); }), ErrorKind::kNoTransaction);
        EXPECT_EQ(ErrorOf([&] { operation.Allocate(); }), ErrorKind::kNoTransaction);
        EXPECT_EQ(ErrorOf([&] { operation.Free(PageNumber{3}); }), ErrorKind::kNoTransaction);
        EXPECT_EQ(ErrorOf([&] { operation.Commit(); }), ErrorKind::kNoTransaction);
    }
    pager->Close();
    pager->Close();
    pager->MakeDurable();
    pager->Abandon();
    try {
        Operation operation(*pager);
        ADD_FAILURE() << "an operation on a closed file";
    } catch (const Error& error) {
        EXPECT_EQ(error.Kind(), ErrorKind::kClosed);
    }
}

TEST_P(PagerTest, LogsThatDoNotBelong_ArePutAsideUnderNamesThatAreFree) {
    MakeFile()->Close();
    for (int round = 0; round < 3; ++round) {
        files_->Open("a file.mdb-log", OpenMode::kCreateNew)
            ->Write(0, std::vector<std::byte>(700, std::byte{7}));
        Recovery recovery;
        Pager::Open(*files_, "a file.mdb", {}, recovery)->Close();
        EXPECT_TRUE(recovery.foreignLogIgnored);
    }
    for (const char* name : {"-old", "-old2", "-old3"}) {
        EXPECT_TRUE(files_->Exists(std::string("a file.mdb-log") + name)) << name;
    }
    // Beyond that one that can hold nothing behind its beginning gives its name.
    for (int round = 0; round < 100; ++round) {
        files_->Open("a file.mdb-log", OpenMode::kCreateNew)
            ->Write(0, std::vector<std::byte>(kLogHeaderSize, std::byte{8}));
        Reopen()->Close();
    }
    EXPECT_TRUE(files_->Exists("a file.mdb-log-old99"));
    EXPECT_FALSE(files_->Exists("a file.mdb-log-old101"));
    for (int number = 4; number <= 100; ++number) {
        files_->Remove("a file.mdb-log-old" + std::to_string(number));
    }
    // A log of a file that was removed does not become the log of a new one of its name.
    files_->Remove("a file.mdb");
    files_->Open("a file.mdb-log", OpenMode::kCreateNew)->Write(0, std::vector<std::byte>(9));
    MakeFile()->Close();
    EXPECT_TRUE(files_->Exists("a file.mdb-log-old4"));
}

}  // namespace
}  // namespace jet
