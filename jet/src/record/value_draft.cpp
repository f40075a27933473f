#include "record/value_draft.h"

#include <algorithm>
#include <array>
#include <span>
#include <string>

#include "page/bytes.h"
#include "values/text.h"

namespace jet {

namespace {

// What is kept in memory before it is written.
constexpr std::size_t kLongestEnd = std::size_t{64} << 10;
constexpr std::size_t kUnitsAtOnce = std::size_t{32} << 10;

}  // namespace

void ValueDraft::Append(std::u16string_view text) {
    const std::uint64_t before = Size();
    try {
        std::vector<std::byte> bytes;
        while (!text.empty()) {
            bytes.clear();
            AppendUnits(text.substr(0, kUnitsAtOnce), bytes);
            Put(bytes);
            text.remove_prefix(std::min(text.size(), kUnitsAtOnce));
        }
    } catch (...) {
        CutTo(before);
        throw;
    }
}

void ValueDraft::Append(Bytes bytes) {
    const std::uint64_t before = Size();
    try {
        Put(bytes);
    } catch (...) {
        CutTo(before);
        throw;
    }
}

void ValueDraft::Put(Bytes bytes) {
    if (end_.size() + bytes.size() <= kLongestEnd) {
        end_.reserve(kLongestEnd);
        end_.insert(end_.end(), bytes.begin(), bytes.end());
        return;
    }
    if (!file_) file_ = pager_.MakeTemporaryFile();
    const std::array<Bytes, 2> pieces = {Bytes(end_), bytes};
    file_->WriteAll(stored_, pieces);
    stored_ += end_.size() + bytes.size();
    end_.clear();
}

// Nobody looks at what the file has beyond the bytes that count, but on a full disk others need the
// room.
void ValueDraft::CutTo(std::uint64_t size) noexcept {
    if (size >= stored_) {
        end_.resize(static_cast<std::size_t>(size - stored_));
    } else {
        stored_ = size;
        end_.clear();
    }
    try {
        if (file_) file_->Truncate(stored_);
    } catch (...) {
        // The error before this one is reported; what comes next is written over the rest.
        return;
    }
}

void ValueDraft::Read(std::uint64_t at, MutableBytes into) const {
    if (at < stored_) {
        const auto inFile =
            static_cast<std::size_t>(std::min<std::uint64_t>(into.size(), stored_ - at));
        file_->Read(at, into.first(inFile));
        into = into.subspan(inFile);
        at += inFile;
    }
    if (into.empty()) return;
    const Bytes rest = Slice(end_, static_cast<std::size_t>(at - stored_), into.size());
    std::copy(rest.begin(), rest.end(), into.begin());
}

Value ValueDraft::Whole() const {
    Binary bytes(static_cast<std::size_t>(Size()));
    Read(0, bytes);
    if (kind_ == Kind::kBytes) return bytes;
    std::u16string text;
    ReadUnits(bytes, text);
    return text;
}

}  // namespace jet
