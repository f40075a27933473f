// Changes of an index tree: inserting with splits, erasing with the removal of emptied pages.
//
// What a change leaves is always this: the root keeps its page; all leaves are equally deep, linked
// in order, and not empty (but for the root of an empty index); every node has a tail unless it has
// a single child; a node's entry equals the greatest entry below its child; the usage map holds
// exactly the pages of the tree.
#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "index/index_page.h"
#include "index/index_tree.h"
#include "index/leaf_search.h"

namespace jet {

class TreeChange {
public:
    TreeChange(Operation& operation, PageNumber table, PageNumber root, UsageMap& pages)
        : operation_(operation),
          pager_(operation.Pages()),
          format_(operation.FileFormat()),
          table_(table),
          root_(root),
          pages_(pages) {}

    // kRecordTooLarge, kDamaged.
    void Insert(Bytes key, RowId row);
    // The common case, without taking a page apart: the leaf has room and nothing above it changes.
    // Gives whether no other entry has the key; nothing, and nothing done, in any other case.
    // `tree` is the tree itself, for looking around.
    std::optional<bool> InsertInPlace(Bytes key, RowId row, const IndexTree& tree);
    // False, and nothing done, in any other case. `place` is where a cursor stands.
    bool EraseInPlace(Bytes key, RowId row, const EntryPlace& place);
    // kDamaged when there is no such entry.
    void Erase(Bytes key, RowId row, const IndexTree& tree);

private:
    // The way from the root to a page: each page, and the slot that led on from it.
    struct Step {
        PageNumber page;
        std::size_t slot = 0;
    };
    using Path = std::vector<Step>;

    // The place of an entry, and where a node repeats it as the greatest one below.
    struct LeafWay {
        LeafPlace leaf;
        PageNumber repeatedOn;
        std::size_t repeatedAt = 0;
    };

    // None below a node that has to be mended first.
    [[nodiscard]] std::optional<LeafWay> FindLeaf(Bytes entry) const;
    [[nodiscard]] std::optional<LeafWay> LeafOf(const EntryPlace& place, Bytes entry) const;
    MutableBytes ChangeEntries(PageNumber page, std::size_t from, std::size_t to);
    bool RepeatInstead(PageNumber number, std::size_t at, const Key& old, const Key& greatest);
    [[nodiscard]] IndexPageContent Load(PageNumber page) const;
    void Save(PageNumber page, const IndexPageContent& content);
    PageNumber AddPage();
    void RemovePage(PageNumber page);
    void SetNext(PageNumber page, PageNumber next);
    void SetPrevious(PageNumber page, PageNumber previous);
    void SetLink(PageNumber page, std::size_t at, PageNumber to);

    // Leads to the leaf where an entry belongs; `content` is then that leaf.
    [[nodiscard]] Path Descend(Bytes entry, IndexPageContent& content) const;
    // The same, making room above the last entry of nodes without tail.
    [[nodiscard]] Path DescendToInsert(Bytes entry, IndexPageContent& content);

    // Saves what a page of the path is to hold, splitting it when it does not fit. True when it was
    // split: the path is then out of date. `appended` says that the last entry is the new one.
    bool Store(Path path, IndexPageContent content, bool appended);
    void Split(Path path, IndexPageContent content, bool appended);
    void LowerRoot(Path& path, IndexPageContent& content);
    [[nodiscard]] std::size_t SplitPoint(const IndexPageContent& content, bool appended) const;
    void LinkNewRight(PageNumber left, IndexPageContent& leftContent, PageNumber right,
                      IndexPageContent& rightContent);
    void CutLinkAfter(PageNumber child);

    [[nodiscard]] Key StoredEntry(Bytes key, RowId row, const IndexTree& tree) const;
    void ReplaceGreatest(const Key& old, const Key& greatest);
    bool ReplaceGreatestOnce(const Key& old, const Key& greatest);
    void RemoveEmpty(Path path, const IndexPageContent& content);
    void RemoveChild(Path path);
    [[nodiscard]] Key GreatestBelow(PageNumber page) const;
    void RaiseOnlyChild();

    [[noreturn]] void Damaged(const char* what) const;

    Operation& operation_;
    Pager& pager_;
    const Format& format_;
    PageNumber table_;
    PageNumber root_;
    UsageMap& pages_;
};

}  // namespace jet
