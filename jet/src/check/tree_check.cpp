#include "check/tree_check.h"

#include <algorithm>
#include <string>

#include "index/index_page.h"
#include "page/bytes.h"

namespace jet {

namespace {

constexpr std::size_t kUnusedAt = 2;
constexpr std::size_t kTableAt = 4;

std::uint32_t ReadBig(Bytes bytes, std::size_t at) {
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < 4; ++i) {
        value = value << 8 | ReadU8(bytes, at + i);
    }
    return value;
}

}  // namespace

TreeCheck::TreeCheck(CheckContext& context, PageAccount& account, const TableLayout& table,
                     const RealIndexLayout& index)
    : context_(context), account_(account), table_(table), index_(index) {}

std::string TreeCheck::Named(const std::string& sentence) const {
    return "Index " + index_.name + ": " + sentence;
}

void TreeCheck::Run(const Take& take) {
    take_ = &take;
    Visit(index_.root, 0);
    CheckLeafLinks();
    CheckMap();
}

Key TreeCheck::Visit(std::uint32_t page, int depth) {
    if (depth > kDeepestTree || !pages_.insert(page).second) {
        context_.findings.Error(At(page), "index-loop", Named("The page is reached twice."));
        return {};
    }
    Node node;
    try {
        node = ReadNode(page);
    } catch (const Damage& damage) {
        pages_.erase(page);
        context_.findings.Error(At(page), damage.code, Named(damage.sentence));
        return {};
    }
    account_.Claim(page, "index " + index_.name + " of " + table_.name, table_.name);
    if (depth == 0) {
        rootLevel_ = node.level;
    } else if (node.level != rootLevel_ - depth && node.leaf == (node.level == 0)) {
        context_.findings.Warning(At(page), "index-level", Named("The page names a wrong level."));
    }
    if (node.leaf != (node.level == 0)) {
        context_.findings.Warning(At(page), "index-level", Named("The page names a wrong level."));
    }
    CheckOrder(node, At(page));
    if (!node.leaf) {
        return VisitChildren(node, page, depth);
    }
    if (leafDepth_ >= 0 && leafDepth_ != depth) {
        context_.findings.Error(At(page), "index-depth",
                                Named("The leaf is deeper or less deep than others."));
    }
    leafDepth_ = leafDepth_ < 0 ? depth : leafDepth_;
    if (node.entries.empty() && depth > 0) {
        context_.findings.Warning(At(page), "index-empty-leaf", Named("The leaf is empty."));
    }
    if (!node.entries.empty() && !last_.empty() && !(last_ < node.entries.front())) {
        context_.findings.Error(At(page), "index-order",
                                Named("The leaf begins below the end of the one before."));
    }
    leaves_.push_back({page, node.previous, node.next});
    if (node.entries.empty()) {
        return {};
    }
    std::for_each(node.entries.begin(), node.entries.end(), *take_);
    last_ = node.entries.back();
    return last_;
}

void TreeCheck::CheckOrder(const Node& node, const Spot& spot) {
    for (std::size_t i = 1; i < node.entries.size(); ++i) {
        if (!(node.entries[i - 1] < node.entries[i])) {
            context_.findings.Error(
                spot, "index-order",
                Named("Entry " + std::to_string(i) + " is not above the entry before."));
            return;
        }
    }
}

Key TreeCheck::VisitChildren(const Node& node, std::uint32_t page, int depth) {
    Key greatest;
    for (std::size_t i = 0; i < node.entries.size(); ++i) {
        const Key below = Visit(node.children[i], depth + 1);
        if (below > node.entries[i]) {
            context_.findings.Error(
                At(page), "index-node-key",
                Named("The entry above page " + std::to_string(node.children[i]) +
                      " is below the page's greatest."));
        } else if (!below.empty() && below < node.entries[i]) {
            context_.findings.Warning(
                At(page), "index-node-key",
                Named("The entry above page " + std::to_string(node.children[i]) +
                      " is above the page's greatest."));
        }
        greatest = below.empty() ? greatest : below;
    }
    if (node.tail != 0) {
        const Key below = Visit(node.tail, depth + 1);
        greatest = below.empty() ? greatest : below;
    } else if (node.entries.empty()) {
        context_.findings.Error(At(page), "index-empty-node", Named("The node has no children."));
    } else if (node.entries.size() > 1 || depth == 0) {
        context_.findings.Warning(At(page), "index-tail", Named("The node has no tail."));
    }
    CheckNodeLinks(node);
    return greatest;
}

// Nodes below the root are linked with their neighbors under the same parent.
void TreeCheck::CheckNodeLinks(const Node& node) {
    std::vector<std::uint32_t> children = node.children;
    if (node.tail != 0) {
        children.push_back(node.tail);
    }
    for (std::size_t i = 0; i < children.size(); ++i) {
        if (pages_.count(children[i]) == 0) {
            continue;
        }
        const auto page = context_.pages.Read(children[i]);
        if (ReadU8(page, 0) != 3) {
            return;
        }
        const std::uint32_t previous = ReadU32(page, context_.format.previousPageAt);
        const std::uint32_t next = ReadU32(page, context_.format.nextPageAt);
        if (previous != (i == 0 ? 0 : children[i - 1]) ||
            next != (i + 1 == children.size() ? 0 : children[i + 1])) {
            context_.findings.Warning(At(children[i]), "index-node-link",
                                      Named("The node names a wrong neighbor."));
        }
    }
}

TreeCheck::Node TreeCheck::ReadNode(std::uint32_t number) {
    if (number == 0 || number >= context_.pages.PageCount()) {
        throw Damage{"index-child", "Page " + std::to_string(number) + " is no page of the file."};
    }
    const auto page = context_.pages.Read(number);
    const std::uint8_t type = ReadU8(page, 0);
    if (type != 3 && type != 4) {
        throw Damage{"index-child", "The page is no index page."};
    }
    if (ReadU32(page, kTableAt) != table_.page) {
        throw Damage{"page-owner", "The page names another table."};
    }
    if (ReadU8(page, 1) != 1) {
        context_.findings.Error(At(number), "page-header", "The second byte of the page is wrong.");
    }
    const Format& format = context_.format;
    Node node;
    node.leaf = type == 4;
    node.level = ReadU8(page, format.levelAt);
    node.previous = ReadU32(page, format.previousPageAt);
    node.next = ReadU32(page, format.nextPageAt);
    node.tail = node.leaf ? 0 : ReadU32(page, format.tailPageAt);
    ReadEntries(page, At(number), node);
    return node;
}

void TreeCheck::ReadEntries(Bytes page, const Spot& spot, Node& node) {
    const Format& format = context_.format;
    const std::size_t prefix =
        format.prefixWidth == 1 ? ReadU8(page, format.prefixAt) : ReadU16(page, format.prefixAt);
    std::size_t start = 0;
    for (std::size_t bit = 0; bit < std::size_t{format.entryBitmapSize} * 8; ++bit) {
        if ((ReadU8(page, format.entryBitmapAt + bit / 8) >> bit % 8 & 1) == 0) {
            continue;
        }
        if (bit == 0 || bit > format.entryCapacity) {
            context_.findings.Error(
                spot, "index-bitmap",
                Named("An entry is said to end at byte " + std::to_string(bit) + " of the page."));
            continue;
        }
        if (node.entries.empty() && prefix > bit) {
            throw Damage{"index-prefix", "The prefix is longer than the first entry."};
        }
        AddEntry(page, start, bit, prefix, node);
        start = bit;
    }
    if (ReadU16(page, kUnusedAt) != format.entryCapacity - start) {
        context_.findings.Error(
            spot, "free-space",
            Named("The page claims " + std::to_string(ReadU16(page, kUnusedAt)) +
                  " free bytes and has " + std::to_string(format.entryCapacity - start) + "."));
    }
}

void TreeCheck::AddEntry(Bytes page, std::size_t start, std::size_t end, std::size_t prefix,
                         Node& node) {
    Key entry;
    if (!node.entries.empty()) {
        const Bytes shared = Slice(page, context_.format.entryAreaAt, prefix);
        entry.assign(shared.begin(), shared.end());
    }
    const Bytes stored = Slice(page, context_.format.entryAreaAt + start, end - start);
    entry.insert(entry.end(), stored.begin(), stored.end());
    const std::size_t pointers = kRowPointerSize + (node.leaf ? 0 : kChildPointerSize);
    if (entry.size() <= pointers) {
        throw Damage{"index-entry-size",
                     "An entry has only " + std::to_string(entry.size()) + " bytes."};
    }
    if (!node.leaf) {
        node.children.push_back(ReadBig(entry, entry.size() - kChildPointerSize));
        entry.resize(entry.size() - kChildPointerSize);
    }
    node.entries.push_back(std::move(entry));
}

void TreeCheck::CheckLeafLinks() {
    for (std::size_t i = 0; i < leaves_.size(); ++i) {
        const std::uint32_t previous = i == 0 ? 0 : leaves_[i - 1].page;
        const std::uint32_t next = i + 1 == leaves_.size() ? 0 : leaves_[i + 1].page;
        if (leaves_[i].previous != previous || leaves_[i].next != next) {
            context_.findings.Error(At(leaves_[i].page), "index-link",
                                    Named("The leaf names a wrong neighbor."));
        }
    }
}

void TreeCheck::CheckMap() {
    const std::string user = "index " + index_.name + " of " + table_.name;
    const auto members = account_.ReadMap(index_.map, user, table_.name);
    const std::set<std::uint32_t> mapped(members.begin(), members.end());
    for (const std::uint32_t page : pages_) {
        if (mapped.count(page) == 0) {
            context_.findings.Error(At(page), "index-map",
                                    Named("The page is missing in the map of the index."));
        }
    }
    for (const std::uint32_t page : mapped) {
        if (pages_.count(page) == 0) {
            context_.findings.Warning(At(page), "index-map",
                                      Named("The map has a page that is not in the tree."));
            account_.Claim(page, user, table_.name);
        }
    }
}

}  // namespace jet
