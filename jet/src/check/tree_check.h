// The structure of one index tree, and its entries against the rows of the table.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <set>
#include <vector>

#include "check/account.h"
#include "check/row_check.h"
#include "check/table_layout.h"

namespace jet {

// Scans a tree from its root, reading pages in its own lenient way, and hands the entries on.
class TreeCheck {
public:
    // Takes an entry, key and row pointer.
    using Take = std::function<void(const Key& entry)>;

    TreeCheck(CheckContext& context, PageAccount& account, const TableLayout& table,
              const RealIndexLayout& index);

    // Hands on every entry in the order of the leaves; what is wrong with the structure is
    // reported.
    void Run(const Take& take);

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
    const Take* take_ = nullptr;
    Key last_;  // the entry handed on last
    int leafDepth_ = -1;
    int rootLevel_ = 0;
};

// Compares the entries of an index with those that the rows ask for.
class EntryCheck {
public:
    EntryCheck(CheckContext& context, const TableLayout& table, const RealIndexLayout& index);

    // All rows first, then all entries, then Finish.
    void AddRow(const CheckedRow& row);
    void AddEntry(const Key& entry);
    void Finish();

private:
    // What a row asks for. Keys lie one after the other in keys_, as there can be very many.
    struct Expected {
        RowId row;
        std::size_t keyAt = 0;
        std::uint32_t keySize = 0;
        bool comparable : 1 = true;
        bool ignored : 1 = false;  // all parts null in an index without such entries
        bool hasNull : 1 = false;
        bool seen : 1 = false;
    };

    void MakeKey(const CheckedRow& row, Expected& expected);
    [[nodiscard]] Expected* Find(RowId row);
    [[nodiscard]] Bytes KeyOf(const Expected& expected) const {
        return Bytes(keys_).subspan(expected.keyAt, expected.keySize);
    }
    void CheckUnique();
    [[nodiscard]] Spot At(RowId row) const { return {table_.name, row.page.value, row.slot}; }
    [[nodiscard]] std::string Named(const std::string& sentence) const;

    CheckContext& context_;
    const TableLayout& table_;
    const RealIndexLayout& index_;
    std::vector<KeyColumn> columns_;
    std::vector<std::size_t> places_;  // of the columns among the table's
    bool comparable_ = true;           // all columns are of supported kinds
    std::vector<Expected> rows_;
    bool sorted_ = false;
    Key keys_;
    std::map<RowId, Key>
        variants_;  // keys as another writer would have made them, where they differ
};

}  // namespace jet
