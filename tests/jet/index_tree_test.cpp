// Index trees against an ordered set, and the structure of their pages after every step.
#include "index/index_tree.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <memory>
#include <random>
#include <set>
#include <string>

#include "index/index_cursor.h"
#include "jet/error.h"
#include "page/bytes.h"
#include "page/operation.h"
#include "page/pager.h"
#include "support/sanitizers.h"

namespace jet {
namespace {

constexpr PageNumber kTable{2};

// Reads the pages of a tree by itself, straight from the bytes, and checks everything that a
// finished tree promises.
class TreeVerifier {
public:
    TreeVerifier(Pager& pager, PageNumber root) : pager_(pager), format_(pager.FileFormat()) {
        Visit(root.value, 0, true);
        for (std::size_t i = 0; i < leaves_.size(); ++i) {
            const PageRef page = pager_.Page(PageNumber{leaves_[i]});
            EXPECT_EQ(ReadU32(page.Data(), format_.previousPageAt), i == 0 ? 0 : leaves_[i - 1]);
            EXPECT_EQ(ReadU32(page.Data(), format_.nextPageAt),
                      i + 1 == leaves_.size() ? 0 : leaves_[i + 1]);
        }
        EXPECT_TRUE(std::is_sorted(entries_.begin(), entries_.end()));
    }

    [[nodiscard]] const std::vector<Key>& Entries() const { return entries_; }
    [[nodiscard]] const std::set<std::uint32_t>& Pages() const { return pages_; }
    [[nodiscard]] int Levels() const { return levels_; }

private:
    std::vector<Key> EntriesOf(Bytes page) {
        std::vector<Key> entries;
        const std::size_t prefix = format_.prefixWidth == 1 ? ReadU8(page, format_.prefixAt)
                                                            : ReadU16(page, format_.prefixAt);
        std::size_t start = 0;
        for (std::size_t bit = 1; bit < format_.entryBitmapSize * 8; ++bit) {
            if ((ReadU8(page, format_.entryBitmapAt + bit / 8) >> bit % 8 & 1) == 0) {
                continue;
            }
            Key entry;
            if (!entries.empty()) {
                entry.assign(entries[0].begin(),
                             entries[0].begin() + static_cast<std::ptrdiff_t>(prefix));
            }
            const Bytes stored = Slice(page, format_.entryAreaAt + start, bit - start);
            entry.insert(entry.end(), stored.begin(), stored.end());
            entries.push_back(entry);
            start = bit;
        }
        EXPECT_EQ(ReadU16(page, 2), format_.entryCapacity - start);
        return entries;
    }

    // Gives the greatest entry below the page.
    Key Visit(std::uint32_t number, int depth, bool isRoot) {
        EXPECT_TRUE(pages_.insert(number).second) << "page reached twice";
        const PageRef ref = pager_.Page(PageNumber{number});
        const Bytes page = ref.Data();
        EXPECT_EQ(ReadU32(page, 4), kTable.value);
        std::vector<Key> entries = EntriesOf(page);
        const bool leaf = ReadU8(page, 0) == 4;
        const int level = ReadU8(page, format_.levelAt);
        EXPECT_EQ(leaf, level == 0);
        if (isRoot) {
            levels_ = level + 1;
        }
        EXPECT_EQ(depth + level + 1, levels_);
        if (leaf) {
            EXPECT_EQ(ReadU32(page, format_.tailPageAt), 0U);
            EXPECT_TRUE(isRoot || !entries.empty()) << "empty leaf";
            leaves_.push_back(number);
            entries_.insert(entries_.end(), entries.begin(), entries.end());
            return entries.empty() ? Key() : entries.back();
        }
        return VisitChildren(page, entries, depth, isRoot);
    }

    Key VisitChildren(Bytes page, std::vector<Key>& entries, int depth, bool isRoot) {
        const std::uint32_t tail = ReadU32(page, format_.tailPageAt);
        EXPECT_TRUE(tail != 0 || (!isRoot && entries.size() == 1)) << "node without tail";
        EXPECT_FALSE(entries.empty());
        std::vector<std::uint32_t> children;
        Key greatest;
        for (Key& entry : entries) {
            std::uint32_t child = 0;
            for (std::size_t i = entry.size() - 4; i < entry.size(); ++i) {
                child = child << 8 | std::to_integer<std::uint32_t>(entry[i]);
            }
            entry.resize(entry.size() - 4);
            children.push_back(child);
            greatest = Visit(child, depth + 1, false);
            EXPECT_EQ(greatest, entry) << "node entry is not the greatest below it";
        }
        if (tail != 0) {
            children.push_back(tail);
            greatest = Visit(tail, depth + 1, false);
        }
        CheckNodeLinks(children);
        return greatest;
    }

    void CheckNodeLinks(const std::vector<std::uint32_t>& children) {
        for (std::size_t i = 0; i < children.size(); ++i) {
            const PageRef ref = pager_.Page(PageNumber{children[i]});
            if (ReadU8(ref.Data(), 0) == 4) {
                return;
            }
            EXPECT_EQ(ReadU32(ref.Data(), format_.previousPageAt), i == 0 ? 0 : children[i - 1]);
            EXPECT_EQ(ReadU32(ref.Data(), format_.nextPageAt),
                      i + 1 == children.size() ? 0 : children[i + 1]);
        }
    }

    Pager& pager_;
    const Format& format_;
    std::set<std::uint32_t> pages_;
    std::vector<std::uint32_t> leaves_;
    std::vector<Key> entries_;
    int levels_ = 0;
};

Key Bytewise(const IndexEntry& entry) {
    Key bytes = entry.key;
    for (int shift = 24; shift >= 0; shift -= 8) {
        bytes.push_back(static_cast<std::byte>(entry.row.Packed() >> shift & 0xFFU));
    }
    return bytes;
}

struct Shape {
    const char* name;
    std::size_t shortest, longest;
    unsigned alphabet;  // few different bytes make many equal keys and long shared prefixes
    std::size_t sharedStart;
};

constexpr Shape kShapes[] = {{"Numbers", 5, 5, 256, 1},
                             {"FewKeys", 2, 2, 4, 1},
                             {"Texts", 3, 40, 8, 1},
                             {"LongTexts", 100, 240, 3, 1},
                             {"LongSharedStarts", 200, 210, 40, 190},
                             {"LongAndShort", 1, 250, 2, 0}};

class IndexTreeTest : public ::testing::TestWithParam<std::tuple<Version, int>> {
protected:
    void SetUp() override {
        pager_ = Pager::Create(*files_, "an index.mdb", std::get<0>(GetParam()));
        Operation operation(*pager_);
        for (int i = 0; i < 4; ++i) {
            (void)operation.Allocate();
        }
        map_ = std::make_unique<UsageMap>(UsageMap::Create(operation));
        root_ = IndexTree::Create(operation, kTable, *map_);
        operation.Commit();
    }

    IndexTree Tree() { return {*pager_, kTable, root_, *map_}; }

    IndexEntry RandomEntry() {
        const Shape& shape = kShapes[std::get<1>(GetParam())];
        const auto below = [&](std::size_t limit) {
            return std::uniform_int_distribution<std::size_t>(0, limit - 1)(random_);
        };
        IndexEntry entry;
        entry.key.assign(shape.sharedStart, std::byte{0x55});
        const std::size_t size = shape.shortest + below(shape.longest - shape.shortest + 1);
        while (entry.key.size() < size) {
            entry.key.push_back(static_cast<std::byte>(below(shape.alphabet)));
        }
        if (entry.key.size() > 4 && below(4) == 0) {
            entry.key[2] = static_cast<std::byte>(below(256));  // breaks shared starts
        }
        entry.row = {PageNumber{static_cast<std::uint32_t>(1 + below(0xFFFFFF))},
                     static_cast<std::uint8_t>(below(255))};
        return entry;
    }

    void Insert(const IndexEntry& entry) {
        Operation operation(*pager_);
        const bool isNew = Tree().Insert(operation, entry.key, entry.row);
        operation.Commit();
        const bool had = std::any_of(model_.begin(), model_.end(), [&](const auto& other) {
            return other.second.key == entry.key;
        });
        EXPECT_EQ(isNew, !had);
        model_[Bytewise(entry)] = entry;
    }

    void Erase(const IndexEntry& entry) {
        Operation operation(*pager_);
        Tree().Erase(operation, entry.key, entry.row);
        operation.Commit();
        model_.erase(Bytewise(entry));
    }

    void EraseAny() {
        auto place = model_.begin();
        std::advance(place, std::uniform_int_distribution<std::ptrdiff_t>(
                                0, static_cast<std::ptrdiff_t>(model_.size()) - 1)(random_));
        Erase(place->second);
    }

    void VerifyOneOf(int step) {
        if (step % support::kOneOf == 0) Verify();
    }

    void Verify() {
        const TreeVerifier verifier(*pager_, root_);
        std::vector<Key> expected;
        for (const auto& [bytes, entry] : model_) {
            expected.push_back(bytes);
        }
        ASSERT_EQ(verifier.Entries(), expected);
        std::set<std::uint32_t> mapped;
        map_->ForEach({}, [&](PageNumber page) { return mapped.insert(page.value).second; });
        ASSERT_EQ(mapped, verifier.Pages());
        levels_ = std::max(levels_, verifier.Levels());
    }

    // Every kind of search, checked against the set.
    void VerifySearch(const Key& search) {
        const IndexTree tree = Tree();
        const auto beginsWith = [&](const Key& key) {
            return key.size() >= search.size() &&
                   std::equal(search.begin(), search.end(), key.begin());
        };
        std::optional<IndexEntry> notBelow, beyond, below, notBeyond;
        for (const auto& [bytes, entry] : model_) {
            if (bytes < search) {
                below = entry;
            } else if (!notBelow) {
                notBelow = entry;
            }
            if (bytes < search || beginsWith(bytes)) {
                notBeyond = entry;
            } else if (!beyond) {
                beyond = entry;
            }
        }
        const auto found = [&](SeekTo to) -> std::optional<IndexEntry> {
            IndexCursor cursor(tree);
            if (!cursor.Seek(search, to)) return std::nullopt;
            return cursor.Entry();
        };
        ASSERT_EQ(found(SeekTo::kNotBelow), notBelow);
        ASSERT_EQ(found(SeekTo::kBeyond), beyond);
        ASSERT_EQ(found(SeekTo::kBelow), below);
        ASSERT_EQ(found(SeekTo::kNotBeyond), notBeyond);
        if (notBelow && !beginsWith(notBelow->key)) notBelow.reset();
        ASSERT_EQ(found(SeekTo::kBeginning), notBelow);
    }

    void VerifyWalk() {
        const IndexTree tree = Tree();
        IndexCursor cursor(tree);
        // On its leaf, and from a position that is known by its entry only.
        for (const bool aside : {false, true}) {
            bool on = cursor.SeekToFirst();
            for (const auto& [bytes, entry] : model_) {
                ASSERT_TRUE(on);
                ASSERT_EQ(cursor.Entry(), entry);
                if (aside) cursor.SeekToEntry(entry);
                on = cursor.Next();
            }
            ASSERT_FALSE(on);
            on = cursor.SeekToLast();
            for (auto place = model_.rbegin(); place != model_.rend(); ++place) {
                ASSERT_TRUE(on);
                ASSERT_EQ(cursor.Entry(), place->second);
                if (aside) cursor.SeekToEntry(place->second);
                on = cursor.Prev();
            }
            ASSERT_FALSE(on);
        }
    }

    std::unique_ptr<FileSystem> files_ = MakeMemoryFileSystem();
    std::unique_ptr<Pager> pager_;
    std::unique_ptr<UsageMap> map_;
    PageNumber root_;
    std::map<Key, IndexEntry> model_;
    std::mt19937 random_{20};
    int levels_ = 0;
};

INSTANTIATE_TEST_SUITE_P(
    Shapes, IndexTreeTest,
    ::testing::Combine(::testing::Values(Version::kJet3, Version::kJet4), ::testing::Range(0, 6)),
    [](const auto& instance) {
        return std::string(std::get<0>(instance.param) == Version::kJet3 ? "Jet3" : "Jet4") +
               kShapes[std::get<1>(instance.param)].name;
    });

TEST_P(IndexTreeTest, RandomChanges_EqualASetAfterEveryStep) {
    for (const int growth : {9, 2, 8, 0}) {
        for (int step = 0; step < 400; ++step) {
            if (model_.empty() || std::uniform_int_distribution<int>(0, 9)(random_) < growth) {
                const IndexEntry entry = RandomEntry();
                if (model_.count(Bytewise(entry)) == 0) {
                    Insert(entry);
                }
            } else {
                EraseAny();
            }
            ASSERT_NO_FATAL_FAILURE(VerifyOneOf(step));
            ASSERT_FALSE(HasFailure());
            Key search = RandomEntry().key;
            search.resize(
                std::min<std::size_t>(search.size(), 1 + static_cast<unsigned>(step) % 9));
            ASSERT_NO_FATAL_FAILURE(VerifySearch(search));
        }
        ASSERT_NO_FATAL_FAILURE(VerifyWalk());
    }
    while (!model_.empty()) {
        EraseAny();
    }
    Verify();
    const IndexTree empty = Tree();
    IndexCursor cursor(empty);
    EXPECT_FALSE(cursor.SeekToFirst());
    EXPECT_FALSE(cursor.SeekToLast());
    EXPECT_FALSE(cursor.Valid());
}

TEST_P(IndexTreeTest, Ascending_LeavesFullLeaves) {
    IndexEntry entry{Key(10, std::byte{1}), {PageNumber{1}, 0}};
    for (unsigned i = 0; i < 2000; ++i) {
        entry.key[8] = static_cast<std::byte>(i >> 8);
        entry.key[9] = static_cast<std::byte>(i & 0xFF);
        Insert(entry);
    }
    Verify();
    const std::size_t leaves = TreeVerifier(*pager_, root_).Pages().size();
    const std::uint32_t capacity = pager_->FileFormat().entryCapacity;
    // Entries of 14 bytes with at least 8 of them shared.
    EXPECT_LE(leaves, 2000 * 6 / capacity + 3);
}

// A place counts until the next operation, whether that is kept or not.
TEST_P(IndexTreeTest, EraseWhereACursorStands_EqualsASet) {
    while (model_.size() < 700) {
        const IndexEntry entry = RandomEntry();
        if (model_.count(Bytewise(entry)) == 0) Insert(entry);
    }
    IndexTree tree = Tree();
    IndexCursor cursor(tree);
    for (int step = 0; !model_.empty(); ++step) {
        const bool on = step % 3 == 0 ? cursor.SeekToFirst()
                                      : cursor.Seek(RandomEntry().key, SeekTo::kNotBelow);
        if (!on) continue;
        const IndexEntry found = cursor.Entry();
        const EntryPlace place = cursor.Place();
        Operation operation(*pager_);
        tree.Erase(operation, found.key, found.row, place);
        // The same operation goes on with others, as a deletion that cascades does.
        if (step % 5 == 0 && model_.size() > 1) {
            const IndexEntry other =
                model_.begin()->second == found ? model_.rbegin()->second : model_.begin()->second;
            tree.Erase(operation, other.key, other.row);
            model_.erase(Bytewise(other));
        } else if (step % 7 == 0) {
            tree.Insert(operation, found.key, found.row);
            tree.Erase(operation, found.key, found.row);
        } else if (step % 11 == 0) {
            continue;  // rolled back
        }
        operation.Commit();
        model_.erase(Bytewise(found));
        ASSERT_NO_FATAL_FAILURE(Verify());
        ASSERT_FALSE(HasFailure());
    }
    Verify();
}

// The entries of a compressed leaf leave out what the first one begins with, which goes first.
TEST_P(IndexTreeTest, EraseInKeyOrder_LeavesTheRest) {
    IndexEntry entry{Key(10, std::byte{1}), {PageNumber{1}, 0}};
    for (unsigned i = 0; i < 1500; ++i) {
        entry.key[8] = static_cast<std::byte>(i >> 8);
        entry.key[9] = static_cast<std::byte>(i & 0xFF);
        Insert(entry);
    }
    while (!model_.empty()) {
        Erase(model_.begin()->second);
        ASSERT_NO_FATAL_FAILURE(Verify());
        ASSERT_FALSE(HasFailure());
    }
}

TEST_P(IndexTreeTest, LevelsOfNodes_GrowAndShrink) {
    const std::size_t size = std::get<0>(GetParam()) == Version::kJet3 ? 250 : 1100;
    const int count = 300;
    for (int i = 0; i < count; ++i) {
        IndexEntry entry = RandomEntry();
        entry.key.resize(size, std::byte{9});
        for (std::size_t at = 0; at < 4; ++at) {
            entry.key[at] = static_cast<std::byte>(random_() & 0xFF);
        }
        Insert(entry);
        ASSERT_NO_FATAL_FAILURE(VerifyOneOf(i));
    }
    ASSERT_NO_FATAL_FAILURE(Verify());
    EXPECT_GE(levels_, 4);
    ASSERT_NO_FATAL_FAILURE(VerifyWalk());
    while (!model_.empty()) {
        EraseAny();
        ASSERT_NO_FATAL_FAILURE(VerifyOneOf(static_cast<int>(model_.size())));
        ASSERT_FALSE(HasFailure());
    }
}

TEST_P(IndexTreeTest, Errors_LeaveTheTreeAsItWas) {
    const IndexEntry entry = RandomEntry();
    Insert(entry);
    const auto attempt = [&](auto change) {
        Operation operation(*pager_);
        IndexTree tree = Tree();
        change(operation, tree);
    };
    EXPECT_THROW(attempt([&](Operation& operation, IndexTree& tree) {
                     tree.Insert(operation, entry.key, entry.row);
                 }),
                 Error);
    EXPECT_THROW(attempt([&](Operation& operation, IndexTree& tree) {
                     tree.Erase(operation, entry.key, {PageNumber{7}, 7});
                 }),
                 Error);
    EXPECT_THROW(attempt([&](Operation& operation, IndexTree& tree) {
                     tree.Insert(operation,
                                 Key(pager_->FileFormat().entryCapacity / 3, std::byte{1}),
                                 entry.row);
                 }),
                 Error);
    Verify();
}

TEST_P(IndexTreeTest, HasKey_PassesOverTheRowItself) {
    const IndexEntry entry = RandomEntry();
    Insert(entry);
    EXPECT_TRUE(Tree().HasKey(entry.key));
    EXPECT_FALSE(Tree().HasKey(entry.key, entry.row));
    Insert({entry.key, {PageNumber{5}, 1}});
    EXPECT_TRUE(Tree().HasKey(entry.key, entry.row));
}

// The bytes of a row behind a shorter key can look like the rest of a longer one.
TEST_P(IndexTreeTest, RowsBeginningWith_DistinguishesKeysFromRows) {
    const Key start = {std::byte{1}, std::byte{2}, std::byte{3}};
    const Key shorter = {std::byte{1}, std::byte{2}};
    Key longer = start;
    longer.push_back(std::byte{9});
    Insert({shorter, {PageNumber{0x030000}, 1}});
    Insert({start, {PageNumber{0x040000}, 2}});
    Insert({longer, {PageNumber{0x050000}, 3}});
    EXPECT_EQ(RowsBeginningWith(Tree(), start),
              (std::vector<RowId>{{PageNumber{0x040000}, 2}, {PageNumber{0x050000}, 3}}));
    EXPECT_EQ(RowsBeginningWith(Tree(), shorter).size(), 3U);
}

// Other writers leave nodes without one; it is given when an entry comes that belongs there.
TEST_P(IndexTreeTest, RootWithoutTail_TakesEntriesAboveItsLastChild) {
    for (int i = 0; i < 500; ++i) {
        const IndexEntry entry = RandomEntry();
        if (model_.count(Bytewise(entry)) == 0) Insert(entry);
    }
    if (ReadU8(pager_->Page(root_).Data(), 0) != 3) {
        GTEST_SKIP() << "So few keys of this shape exist that they do not fill a leaf.";
    }
    Operation operation(*pager_);
    const std::size_t tailAt = std::get<0>(GetParam()) == Version::kJet3 ? 0x10 : 0x14;
    WriteU32(operation.Change(root_), tailAt, 0);
    for (unsigned char last = 0; last < 3; ++last) {
        Key key(12, std::byte{0xFF});
        key.back() = std::byte{last};
        const RowId row{PageNumber{9}, last};
        IndexTree tree = Tree();
        (void)tree.Insert(operation, key, row);
        IndexCursor cursor(tree);
        ASSERT_TRUE(cursor.Seek(key, SeekTo::kNotBelow));
        EXPECT_EQ(cursor.Entry().row, row);
    }
}

// Random bytes in the pages of a tree: every search ends, with a result or with an error.
TEST_P(IndexTreeTest, Noise_NeverHangsOrCrashes) {
    for (int i = 0; i < 400; ++i) {
        const IndexEntry entry = RandomEntry();
        if (model_.count(Bytewise(entry)) == 0) {
            Insert(entry);
        }
    }
    const std::set<std::uint32_t> pages = TreeVerifier(*pager_, root_).Pages();
    for (int round = 0; round < 300; ++round) {
        Operation operation(*pager_);
        for (int i = 0; i < 4; ++i) {
            auto page = pages.begin();
            std::advance(page, static_cast<std::ptrdiff_t>(random_() % pages.size()));
            const MutableBytes bytes = operation.Change(PageNumber{*page});
            bytes[random_() % (i % 2 == 0 ? 64 : bytes.size())] =
                static_cast<std::byte>(random_() & 0xFF);
        }
        int steps = 0;
        const auto survive = [&](auto action) {
            try {
                action();
            } catch (const Error&) {
                ++steps;
            }
        };
        survive([&] {
            const IndexTree tree = Tree();
            IndexCursor cursor(tree);
            for (bool on = cursor.SeekToFirst(); on; on = cursor.Next()) ++steps;
        });
        survive([&] {
            const IndexTree tree = Tree();
            IndexCursor cursor(tree);
            for (bool on = cursor.SeekToLast(); on; on = cursor.Prev()) ++steps;
        });
        survive([&] {
            const IndexEntry entry = RandomEntry();
            (void)Tree().Insert(operation, entry.key, entry.row);
        });
        survive([&] {
            Tree().Erase(operation, model_.begin()->second.key, model_.begin()->second.row);
        });
        EXPECT_GT(steps, 0);
    }
}

}  // namespace
}  // namespace jet
