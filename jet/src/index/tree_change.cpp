#include "index/tree_change.h"

#include <algorithm>
#include <string>
#include <utility>

#include "jet/error.h"

namespace jet {

void TreeChange::Damaged(const char* what) const {
    throw Error(ErrorKind::kDamaged,
                "The index with root page " + std::to_string(root_.value) + " " + what + ".");
}

IndexPageContent TreeChange::Load(PageNumber page) const {
    const PageRef ref = pager_.Page(page);
    return IndexPageContent::Decode(ref.Data(), format_, page, table_);
}

void TreeChange::Save(PageNumber page, const IndexPageContent& content) {
    content.Encode(operation_.Change(page), format_, table_);
}

PageNumber TreeChange::AddPage() {
    const PageNumber page = operation_.Allocate();
    pages_.Add(operation_, page);
    return page;
}

void TreeChange::RemovePage(PageNumber page) {
    pages_.Remove(operation_, page);
    operation_.Free(page);
}

void TreeChange::SetNext(PageNumber page, PageNumber next) {
    if (page) SetLink(page, format_.nextPageAt, next);
}

void TreeChange::SetPrevious(PageNumber page, PageNumber previous) {
    if (page) SetLink(page, format_.previousPageAt, previous);
}

// Of a page that is of this index.
void TreeChange::SetLink(PageNumber page, std::size_t at, PageNumber to) {
    const PageRef ref = pager_.Page(page);
    static_cast<void>(IndexPage(ref.Data(), format_, page, table_));
    WriteU32(operation_.ChangePart(page, at, sizeof(std::uint32_t)), at, to.value);
}

TreeChange::Path TreeChange::Descend(Bytes entry, IndexPageContent& content) const {
    Path path{{root_, 0}};
    for (content = Load(root_); !content.IsLeaf(); content = Load(path.back().page)) {
        if (path.size() > kDeepestTree) {
            Damaged("has nodes that run in a circle");
        }
        std::size_t slot = content.Find({entry, EntryBound::Rule::kNotBelow});
        if (slot == content.entries.Count() && !content.tail) {
            if (slot == 0) {
                Damaged("has a node without children");
            }
            --slot;
        }
        path.back().slot = slot;
        path.push_back({content.ChildAt(slot), 0});
    }
    return path;
}

TreeChange::Path TreeChange::DescendToInsert(Bytes entry, IndexPageContent& content) {
    Path path = Descend(entry, content);
    bool changed = false;
    for (std::size_t depth = 0; depth + 1 < path.size(); ++depth) {
        const PageNumber page = path[depth].page;
        if (IndexPage(pager_.Page(page).Data(), format_, page, table_).Tail()) {
            continue;
        }
        IndexPageContent node = Load(page);
        const std::size_t last = node.entries.Count() - 1;
        if (node.Find({entry, EntryBound::Rule::kNotBelow}) != last + 1) {
            continue;
        }
        const PageNumber child = node.ChildAt(last);
        node.entries.Erase(last);
        if (last == 0) {
            node.InsertChild(0, entry, child);
        } else {
            node.tail = child;
        }
        Save(page, node);
        changed = true;
    }
    return changed ? Descend(entry, content) : path;
}

void TreeChange::Insert(Bytes key, RowId row) {
    if (!IsKeySize(key.size(), format_)) {
        throw Error(ErrorKind::kRecordTooLarge, "The indexed values are too long.");
    }
    const Key entry = EntryBytes(key, row);
    IndexPageContent leaf;
    Path path = DescendToInsert(entry, leaf);
    const std::size_t place = leaf.Find({entry, EntryBound::Rule::kNotBelow});
    const bool appended = place == leaf.entries.Count();
    if (!appended && Equal(leaf.entries.At(place), entry)) {
        Damaged("holds an entry for a new row already");
    }
    leaf.entries.Insert(place, entry);
    Store(std::move(path), std::move(leaf), appended);
}

bool TreeChange::Store(Path path, IndexPageContent content, bool appended) {
    if (content.Fits(format_)) {
        Save(path.back().page, content);
        return false;
    }
    Split(std::move(path), std::move(content), appended);
    return true;
}

// The root keeps its page, so its contents move one level down before they are split.
void TreeChange::LowerRoot(Path& path, IndexPageContent& content) {
    const PageNumber child = AddPage();
    IndexPageContent root;
    root.level = static_cast<std::uint8_t>(content.level + 1);
    root.tail = child;
    Save(root_, root);
    content.previous = content.next = PageNumber{};
    path = {{root_, 0}, {child, 0}};
}

void TreeChange::Split(Path path, IndexPageContent content, bool appended) {
    if (path.size() == 1) {
        LowerRoot(path, content);
    }
    const PageNumber page = path.back().page;
    const PageNumber rightPage = AddPage();
    IndexPageContent right;
    right.level = content.level;
    right.tail = content.tail;
    content.entries.MoveTail(SplitPoint(content, appended), right.entries);
    LinkNewRight(page, content, rightPage, right);

    const std::size_t last = content.entries.Count() - 1;
    const Bytes separatorBytes = content.KeyAndRow(last);
    const Key separator(separatorBytes.begin(), separatorBytes.end());
    if (!content.IsLeaf()) {
        content.tail = content.ChildAt(last);
        content.entries.Erase(last);
    }
    Save(rightPage, right);
    Save(page, content);
    if (!content.IsLeaf()) {
        CutLinkAfter(content.tail);
    }

    path.pop_back();
    const std::size_t slot = path.back().slot;
    IndexPageContent parent = Load(path.back().page);
    parent.SetChild(slot, rightPage);
    parent.InsertChild(slot, separator, page);
    if (!parent.tail) {
        const std::size_t end = parent.entries.Count() - 1;
        parent.tail = parent.ChildAt(end);
        parent.entries.Erase(end);
    }
    Store(std::move(path), std::move(parent), false);
}

// The number of the first entry that goes to the right. Appending leaves full pages behind;
// otherwise the halves are about equal, and each must fit: a leaf may have been compressed far.
std::size_t TreeChange::SplitPoint(const IndexPageContent& content, bool appended) const {
    const std::size_t count = content.entries.Count();
    if (content.IsLeaf() && appended && !content.next) {
        return count - 1;
    }
    const std::size_t lowest = content.IsLeaf() ? 1 : 2;
    std::size_t middle = 0;
    for (std::size_t size = 0; middle < count - 1 && 2 * size < content.entries.TotalSize();) {
        size += content.entries.At(middle++).size();
    }
    middle = std::max(middle, lowest);
    const auto fits = [&](std::size_t point) {
        return content.PartFits(0, point, format_) && content.PartFits(point, count, format_);
    };
    for (std::size_t distance = 0; distance < count; ++distance) {
        if (middle + distance <= count - 1 && fits(middle + distance)) {
            return middle + distance;
        }
        if (middle >= lowest + distance && fits(middle - distance)) {
            return middle - distance;
        }
    }
    // unreachable: a new first or last entry can stand alone, and one between others shares their
    // prefix, so that halves fit.
    Damaged("cannot be split");
}

void TreeChange::LinkNewRight(PageNumber left, IndexPageContent& leftContent, PageNumber right,
                              IndexPageContent& rightContent) {
    rightContent.previous = left;
    rightContent.next = leftContent.next;
    SetPrevious(leftContent.next, right);
    leftContent.next = right;
}

// Nodes are linked below one parent only: the last child of a node that was split loses its
// neighbor.
void TreeChange::CutLinkAfter(PageNumber child) {
    IndexPageContent content = Load(child);
    if (!content.IsLeaf() && content.next) {
        SetPrevious(content.next, PageNumber{});
        content.next = PageNumber{};
        Save(child, content);
    }
}

}  // namespace jet
