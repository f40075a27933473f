// The structure of one index tree, and its entries against the rows of the table.
#pragma once

#include <cstdint>
#include <set>
#include <vector>

#include "check/account.h"
#include "check/row_check.h"
#include "check/table_layout.h"

namespace jet {

// Walks a tree from its root, reading pages in its own lenient way, and collects the entries.
class TreeCheck {
public:
    TreeCheck(CheckContext& context, PageAccount& account, const TableLayout& table,
              const RealIndexLayout& index);

    // The entries, key and row pointer, in the order of the leaves; what is wrong with the
    // structure is reported.
    std::vector<Key> Run();

private:
    struct Node {
        bool leaf = true;
        int level = 0;
        std::uint32_t previous = 0, next = 0, tail = 0;
        std::vector<Key> entries;  // in full, without the child
        std::vector<std::uint32_t> children;
    };
    struct Leaf {
        std::uint32_t page = 0, previous = 0, next = 0;
    };

    // Gives the greatest entry below the page, empty when there is none.
    Key Visit(std::uint32_t page, int depth);
    [[nodiscard]] Node ReadNode(std::uint32_t page);
    void ReadEntries(Bytes page, const Spot& spot, Node& node);
    void AddEntry(Bytes page, std::size_t start, std::size_t end, std::size_t prefix, Node& node);
    Key VisitChildren(const Node& node, std::uint32_t page, int depth);
    void CheckNodeLinks(const Node& node);
    void CheckLeafLinks();
    void CheckMap();
    void CheckOrder(const Node& node, const Spot& spot);
    [[nodiscard]] Spot At(std::uint32_t page) const { return {table_.name, page, -1}; }
    [[nodiscard]] std::string Named(const std::string& sentence) const;

    CheckContext& context_;
    PageAccount& account_;
    const TableLayout& table_;
    const RealIndexLayout& index_;
    std::set<std::uint32_t> pages_;
    std::vector<Leaf> leaves_;
    std::vector<Key> entries_;
    int leafDepth_ = -1;
    int rootLevel_ = 0;
};

// Compares the entries of an index with those that the rows ask for.
class EntryCheck {
public:
    EntryCheck(CheckContext& context, const TableLayout& table, const RealIndexLayout& index);

    void AddRow(const CheckedRow& row);
    void Compare(const std::vector<Key>& entries);

private:
    struct Expected {
        Key key;
        Key variant;  // as another writer would have made it; empty when it is the same
        bool comparable = true;
        bool ignored = false;  // all parts null in an index without such entries
        bool hasNull = false;
        bool seen = false;
    };

    void MakeKey(const CheckedRow& row, Expected& expected) const;
    void CompareOne(const Key& entry);
    void CheckUnique() const;
    [[nodiscard]] Spot At(RowId row) const { return {table_.name, row.page.value, row.slot}; }
    [[nodiscard]] std::string Named(const std::string& sentence) const;

    CheckContext& context_;
    const TableLayout& table_;
    const RealIndexLayout& index_;
    std::vector<KeyColumn> columns_;
    std::vector<std::size_t> places_;  // of the columns among the table's
    bool comparable_ = true;           // all columns are of supported kinds
    std::map<RowId, Expected> rows_;
};

}  // namespace jet
