#include "record/draft_form.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "values/code_page.h"
#include "values/text.h"

namespace jet {

namespace {

constexpr std::size_t kBytesAtOnce = std::size_t{64} << 10;

// Visits a text from its beginning to its end, or until `visit` is false.
template <typename Visit>
void ForEachPiece(const ValueDraft& draft, Visit visit) {
    std::vector<std::byte> units;
    std::u16string text;
    for (std::uint64_t at = 0; at < draft.Size(); at += units.size()) {
        units.resize(
            static_cast<std::size_t>(std::min<std::uint64_t>(kBytesAtOnce, draft.Size() - at)));
        draft.Read(at, units);
        ReadUnits(units, text);
        if (!visit(text)) return;
    }
}

class PlainForm final : public LongValueBytes {
public:
    PlainForm(const ValueDraft& draft, std::uint64_t from) : draft_(draft), from_(from) {}

    [[nodiscard]] std::uint64_t Size() const override { return draft_.Size() - from_; }
    Bytes Read(std::uint64_t at, std::size_t size) override {
        room_.resize(size);
        draft_.Read(from_ + at, room_);
        return room_;
    }

private:
    const ValueDraft& draft_;
    std::uint64_t from_;
    std::vector<std::byte> room_;
};

class CodePageForm final : public LongValueBytes {
public:
    explicit CodePageForm(const ValueDraft& draft) : draft_(draft) {}

    [[nodiscard]] std::uint64_t Size() const override { return draft_.Size() / 2; }
    Bytes Read(std::uint64_t at, std::size_t size) override {
        units_.resize(2 * size);
        draft_.Read(2 * at, units_);
        ReadUnits(units_, text_);
        room_.clear();
        EncodeCodePage(text_, room_);
        return room_;
    }

private:
    const ValueDraft& draft_;
    std::vector<std::byte> units_;
    std::u16string text_;
    std::vector<std::byte> room_;
};

// Where a unit lies in the compressed text depends on all before it, so that is made first.
class CompressedForm final : public LongValueBytes {
public:
    CompressedForm(Pager& pager, const ValueDraft& draft)
        : compressed_(pager, ValueDraft::Kind::kBytes), form_(compressed_, 0) {
        TextCompressor compressor;
        std::vector<std::byte> bytes;
        ForEachPiece(draft, [&](std::u16string_view piece) {
            bytes.clear();
            compressor.Append(piece, bytes);
            compressed_.Append(bytes);
            return true;
        });
    }

    [[nodiscard]] std::uint64_t Size() const override { return form_.Size(); }
    Bytes Read(std::uint64_t at, std::size_t size) override { return form_.Read(at, size); }

private:
    ValueDraft compressed_;
    PlainForm form_;
};

struct Beginning {
    std::uint64_t marks = 0;  // at the text's beginning
    bool compressible = true;
};

Beginning BeginningOf(const ValueDraft& draft) {
    Beginning beginning;
    bool onlyMarks = true;
    ForEachPiece(draft, [&](std::u16string_view piece) {
        if (onlyMarks) {
            const auto other = piece.find_first_not_of(kCompressionMark);
            onlyMarks = other == std::u16string_view::npos;
            beginning.marks += onlyMarks ? piece.size() : other;
        }
        beginning.compressible = beginning.compressible && CanCompress(piece);
        return beginning.marks > 0 && (onlyMarks || beginning.compressible);
    });
    return beginning;
}

}  // namespace

std::unique_ptr<LongValueBytes> StoredForm(Pager& pager, const ValueDraft& draft) {
    if (draft.What() == ValueDraft::Kind::kBytes) return std::make_unique<PlainForm>(draft, 0);
    if (pager.FileFormat().version == Version::kJet3) return std::make_unique<CodePageForm>(draft);
    // Stored plainly, such a text would read as a compressed one.
    const Beginning beginning = BeginningOf(draft);
    if (beginning.marks > 0 && beginning.compressible) {
        return std::make_unique<CompressedForm>(pager, draft);
    }
    return std::make_unique<PlainForm>(draft, 2 * beginning.marks);
}

}  // namespace jet
