#include "index/index_cursor.h"

#include <algorithm>
#include <utility>

#include "index/leaf_search.h"
#include "page/bytes.h"

namespace jet {

namespace {

LeafSearch SearchOf(const IndexTree& tree) {
    return {tree.Pages(), tree.Table(), tree.Root()};
}

}  // namespace

// The entry is read aside first: a damaged page changes nothing of the position.
bool IndexCursor::Arrive(LeafPlace& place) {
    if (place.IsEnd()) return false;
    LeafSearch::Read(place, found_);
    std::swap(entry_, found_);
    valid_ = true;
    leaf_ = std::move(place.page);
    at_ = place.at;
    change_ = tree_->Pages().ChangeCount();
    return true;
}

bool IndexCursor::Arrive(std::optional<LeafPlace> place) {
    return place && Arrive(*place);
}

bool IndexCursor::IsOnLeaf() const {
    return !leaf_.Data().empty() && change_ == tree_->Pages().ChangeCount();
}

// The position as a place on its leaf, which is known. The pin is handed over with it.
LeafPlace IndexCursor::TakePlace() {
    return SearchOf(*tree_).PlaceOn(std::move(leaf_), at_);
}

// Whether a place on another leaf brings the cursor further. Links of a damaged file may not.
bool IndexCursor::IsAbove(const LeafPlace& place) const {
    if (place.IsEnd()) return true;
    Key entry;
    place.leaf.Read(place.at, entry);
    const Key position = EntryBytes(entry_.key, entry_.row);
    return !EntryBound{position, EntryBound::Rule::kAbove}.Passes(entry);
}

// A cursor that moves to another leaf must stand farther than where it came to the former one.
// Entries and links of a damaged file can lead in a circle.
void IndexCursor::RequireProgress(const LeafPlace& place, bool forward) {
    if (place.IsEnd()) return;
    Key entry;
    place.leaf.Read(place.at, entry);
    if (!turn_.empty()) {
        const auto rule = forward ? EntryBound::Rule::kAbove : EntryBound::Rule::kNotBelow;
        const bool isAbove = !EntryBound{turn_, rule}.Passes(entry);
        if (isAbove != forward) SearchOf(*tree_).Damaged("has entries out of order");
    }
    turn_ = std::move(entry);
}

void IndexCursor::Face(bool forward) {
    if (forward_ != forward) turn_.clear();
    forward_ = forward;
}

bool IndexCursor::SeekToFirst() {
    return Seek({}, SeekTo::kNotBelow);
}

bool IndexCursor::SeekToLast() {
    turn_.clear();
    const LeafSearch search = SearchOf(*tree_);
    return Arrive(search.Before(search.End()));
}

bool IndexCursor::Seek(Bytes search, SeekTo to) {
    using Rule = EntryBound::Rule;
    turn_.clear();
    const LeafSearch tree = SearchOf(*tree_);
    if (to == SeekTo::kBelow || to == SeekTo::kNotBeyond) {
        return Arrive(
            tree.LastPassed({search, to == SeekTo::kBelow ? Rule::kNotBelow : Rule::kBeyond}));
    }
    LeafPlace place = tree.Find({search, to == SeekTo::kBeyond ? Rule::kBeyond : Rule::kNotBelow});
    if (to == SeekTo::kBeginning && !place.IsEnd() && !place.leaf.BeginsWith(place.at, search)) {
        return false;
    }
    return Arrive(place);
}

bool IndexCursor::Next() {
    Face(true);
    const LeafSearch tree = SearchOf(*tree_);
    if (IsOnLeaf()) {
        LeafPlace place = TakePlace();
        std::uint32_t hops = 0;
        tree.Advance(place, hops);
        if (hops == 0) return Arrive(place);
        if (IsAbove(place)) {
            RequireProgress(place, true);
            return Arrive(place);
        }
    }
    const Key position = EntryBytes(entry_.key, entry_.row);
    LeafPlace place = tree.Find({position, EntryBound::Rule::kAbove});
    RequireProgress(place, true);
    return Arrive(place);
}

bool IndexCursor::Prev() {
    Face(false);
    const LeafSearch tree = SearchOf(*tree_);
    if (IsOnLeaf() && at_ != 0) return Arrive(tree.Before(TakePlace()));
    const Key position = EntryBytes(entry_.key, entry_.row);
    std::optional<LeafPlace> place = tree.LastPassed({position, EntryBound::Rule::kNotBelow});
    if (place) RequireProgress(*place, false);
    return Arrive(std::move(place));
}

void IndexCursor::SeekToEntry(IndexEntry entry) noexcept {
    entry_ = std::move(entry);
    valid_ = true;
    turn_.clear();
    leaf_ = PageRef();
}

std::vector<RowId> RowsBeginningWith(const IndexTree& tree, Bytes start) {
    std::vector<RowId> rows;
    IndexCursor cursor(tree);
    for (bool on = cursor.Seek(start, SeekTo::kBeginning); on; on = cursor.Next()) {
        const Bytes key = cursor.Entry().key;
        const std::size_t common = std::min(key.size(), start.size());
        if (!Equal(key.first(common), start.first(common))) break;
        // A shorter key can look like it together with its row.
        if (common == start.size()) rows.push_back(cursor.Entry().row);
    }
    return rows;
}

}  // namespace jet
