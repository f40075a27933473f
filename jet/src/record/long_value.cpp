#include "record/long_value.h"

#include <algorithm>
#include <utility>

#include "jet/error.h"
#include "page/bytes.h"
#include "record/data_page.h"
#include "record/other_bytes.h"

namespace jet {

namespace {

constexpr std::uint32_t kLengthMask = 0x3FFFFFFF;
constexpr unsigned kFormShift = 30;
constexpr std::uint32_t kPointerSize = 4;
constexpr std::uint32_t kProcessorLine = 64;
constexpr std::uint32_t kMostLinesAhead = 8;

[[noreturn]] void ThrowBadValue() {
    ThrowDamaged("The file is damaged: a part of a long value is missing.");
}

// One row on a page of long values; the pin keeps its bytes.
struct LongValueRow {
    PageRef page;
    Bytes bytes;
};

LongValueRow ReadRow(Pager& pager, RowId row) {
    LongValueRow found;
    found.page = pager.Page(row.page);
    const Bytes page = found.page.Data();
    if (!IsDataPage(page) || PageOwner(page) != kLongValueOwner) ThrowBadValue();
    const Slot slot = ReadSlot(page, pager.FileFormat(), row.slot);
    if (slot.kind == SlotKind::kDeleted) ThrowBadValue();
    found.bytes = Slice(page, slot.start, slot.length);
    // Values written one after the other lie one below the other: who reads them in order needs the
    // bytes below next, and the processor fetches them while this value is used.
    const std::uint32_t lines = std::min(kMostLinesAhead, slot.start / kProcessorLine);
    const std::byte* below = found.bytes.data();
    for (std::uint32_t i = 0; i < lines; ++i) __builtin_prefetch(below -= kProcessorLine);
    return found;
}

void ReadChain(Pager& pager, const LongValueHead& head, std::vector<std::byte>& into) {
    into.clear();
    std::uint32_t missing = head.length;
    RowId next = head.first;
    // A row of a chain may be empty, but a chain visits no more rows than the file has.
    std::uint64_t steps = std::uint64_t{pager.PageCount()} * kMostSlots;
    while (missing > 0) {
        if (!next || steps-- == 0) ThrowBadValue();
        const LongValueRow row = ReadRow(pager, next);
        if (row.bytes.size() <= kPointerSize) ThrowBadValue();
        const Bytes part = row.bytes.subspan(
            kPointerSize, std::min<std::size_t>(missing, row.bytes.size() - kPointerSize));
        into.insert(into.end(), part.begin(), part.end());
        missing -= static_cast<std::uint32_t>(part.size());
        next = RowId::FromPacked(ReadU32(row.bytes, 0));
    }
}

class HeldBytes final : public LongValueBytes {
public:
    explicit HeldBytes(Bytes bytes) : bytes_(bytes) {}

    [[nodiscard]] std::uint64_t Size() const override { return bytes_.size(); }
    Bytes Read(std::uint64_t at, std::size_t size) override {
        return bytes_.subspan(static_cast<std::size_t>(at), size);
    }

private:
    Bytes bytes_;
};

void AppendHead(std::size_t length, LongValueForm form, RowId first,
                std::vector<std::byte>& inRow) {
    const std::size_t at = inRow.size();
    inRow.resize(at + kLongValueHeader);
    const MutableBytes head = MutableBytes(inRow).subspan(at);
    WriteU32(head, 0,
             static_cast<std::uint32_t>(length) | static_cast<std::uint32_t>(form) << kFormShift);
    WriteU32(head, 4, first.Packed());
}

}  // namespace

std::optional<LongValueHead> ReadLongValueHead(Bytes inRow) {
    if (inRow.empty()) return std::nullopt;
    if (inRow.size() < kLongValueHeader) ThrowBadValue();
    const std::uint32_t word = ReadU32(inRow, 0);
    LongValueHead head;
    head.length = word & kLengthMask;
    head.first = RowId::FromPacked(ReadU32(inRow, 4));
    if (word >> kFormShift > 2) ThrowBadValue();
    head.form = static_cast<LongValueForm>(word >> kFormShift);
    return head;
}

Bytes ReadLongValue(Pager& pager, Bytes inRow, PageRef& page, std::vector<std::byte>& room) {
    const auto head = ReadLongValueHead(inRow);
    if (!head) return {};
    // Nothing longer than the file can be in it, so no memory is taken for a nonsensical length.
    if (head->length > std::uint64_t{pager.PageCount()} * pager.FileFormat().pageSize) {
        ThrowBadValue();
    }
    switch (head->form) {
        case LongValueForm::kInline: {
            if (inRow.size() - kLongValueHeader < head->length) ThrowBadValue();
            return inRow.subspan(kLongValueHeader, head->length);
        }
        case LongValueForm::kRow: {
            LongValueRow row = ReadRow(pager, head->first);
            if (row.bytes.size() < head->length) ThrowBadValue();
            page = std::move(row.page);
            return row.bytes.first(head->length);
        }
        case LongValueForm::kChain:
            ReadChain(pager, *head, room);
            return room;
    }
    return {};  // unreachable: every form is listed
}

LongValueCursor::LongValueCursor(Pager& pager, Bytes inRow)
    : pager_(&pager), steps_(std::uint64_t{pager.PageCount()} * kMostSlots) {
    const auto head = ReadLongValueHead(inRow);
    if (!head) return;
    size_ = head->length;
    if (head->form == LongValueForm::kChain) {
        missing_ = size_;
        next_ = head->first;
        return;
    }
    std::vector<std::byte> room;  // which only a chain needs
    part_ = ReadLongValue(pager, inRow, page_, room);
}

void LongValueCursor::NextPart() {
    if (!next_ || steps_-- == 0) ThrowBadValue();
    LongValueRow row = ReadRow(*pager_, next_);
    if (row.bytes.size() <= kPointerSize) ThrowBadValue();
    next_ = RowId::FromPacked(ReadU32(row.bytes, 0));
    part_ = row.bytes.subspan(kPointerSize,
                              std::min<std::size_t>(missing_, row.bytes.size() - kPointerSize));
    missing_ -= static_cast<std::uint32_t>(part_.size());
    page_ = std::move(row.page);
}

std::size_t LongValueCursor::Read(MutableBytes into) {
    std::size_t done = 0;
    while (done < into.size()) {
        if (part_.empty()) {
            if (missing_ == 0) break;
            NextPart();
        }
        const std::size_t count = std::min(part_.size(), into.size() - done);
        std::copy_n(part_.begin(), count, into.begin() + static_cast<std::ptrdiff_t>(done));
        part_ = part_.subspan(count);
        done += count;
    }
    return done;
}

void LongValueCursor::Skip(std::uint64_t count) {
    while (count > 0) {
        if (part_.empty()) {
            if (missing_ == 0) return;
            NextPart();
        }
        const auto step = static_cast<std::size_t>(std::min<std::uint64_t>(part_.size(), count));
        part_ = part_.subspan(step);
        count -= step;
    }
}

LongValueStore::LongValueStore(Pager& pager, RowId ownedMap, RowId freeMap)
    : pager_(&pager), owned_(pager, ownedMap) {
    if (freeMap) free_.emplace(pager, freeMap);
}

void LongValueStore::Write(Operation& operation, Bytes value, std::size_t plainLength,
                           std::vector<std::byte>& inRow) {
    const Format& format = pager_->FileFormat();
    if (plainLength <= format.longValueInRow) {
        AppendHead(value.size(), LongValueForm::kInline, {}, inRow);
        inRow.insert(inRow.end(), value.begin(), value.end());
        return;
    }
    if (FitsOnePage(plainLength)) {
        AppendHead(value.size(), LongValueForm::kRow, Append(operation, value), inRow);
        return;
    }
    HeldBytes held(value);
    WriteChain(operation, held, inRow);
}

void LongValueStore::WriteChain(Operation& operation, LongValueBytes& value,
                                std::vector<std::byte>& inRow) {
    if (value.Size() > kLengthMask) {
        throw Error(ErrorKind::kTextTooLong, "The value is longer than the format allows.");
    }
    const auto size = static_cast<std::size_t>(value.Size());
    const std::size_t chunk = pager_->FileFormat().longValueChunk;
    // The last part is written first, so that each row can name the next one.
    RowId next;
    std::vector<std::byte> row;
    std::size_t end = size;
    while (end > 0) {
        const std::size_t start = (end - 1) / chunk * chunk;
        row.assign(kPointerSize, std::byte{0});
        WriteU32(row, 0, next.Packed());
        const Bytes part = value.Read(start, end - start);
        row.insert(row.end(), part.begin(), part.end());
        next = Append(operation, row);
        end = start;
    }
    AppendHead(size, LongValueForm::kChain, next, inRow);
}

void LongValueStore::Replace(Operation& operation, Bytes old, Bytes value, std::size_t plainLength,
                             std::vector<std::byte>& inRow) {
    const auto head = ReadLongValueHead(old);
    if (head && head->form == LongValueForm::kRow && FitsOnePage(plainLength) &&
        Overwrite(operation, head->first, value)) {
        AppendHead(value.size(), LongValueForm::kRow, head->first, inRow);
        return;
    }
    Write(operation, value, plainLength, inRow);
    Release(operation, old);
}

// Changes one page where writing anew and giving back would change two or three. False, and nothing
// done, when the page has no room.
bool LongValueStore::Overwrite(Operation& operation, RowId row, Bytes value) {
    const Format& format = pager_->FileFormat();
    const auto length = static_cast<std::uint32_t>(value.size());
    std::uint32_t oldLength = 0;
    {
        const LongValueRow stored = ReadRow(*pager_, row);
        if (!owned_.Contains(row.page)) ThrowBadValue();
        if (!CanResize(stored.page.Data(), format, row.slot, length)) return false;
        oldLength = static_cast<std::uint32_t>(stored.bytes.size());
    }
    GiveOtherBytes(operation, row, value);
    if (length < oldLength) EnterFree(operation, row.page);
    return true;
}

void LongValueStore::Release(Operation& operation, Bytes inRow) {
    const auto head = ReadLongValueHead(inRow);
    if (!head || head->form == LongValueForm::kInline) return;
    if (head->form == LongValueForm::kRow) {
        ReleaseRow(operation, head->first);
        return;
    }
    RowId row = head->first;
    while (row) {
        const RowId next = RowId::FromPacked(ReadU32(ReadRow(*pager_, row).bytes, 0));
        ReleaseRow(operation, row);
        // A released row cannot be read again, so a chain that bites its tail ends here too.
        row = next;
    }
}

RowId LongValueStore::Append(Operation& operation, Bytes row) {
    const PageNumber page = PageWithRoom(operation, static_cast<std::uint32_t>(row.size()));
    const MutableBytes bytes =
        ChangeToAppend(operation, page, static_cast<std::uint32_t>(row.size()));
    const std::uint8_t slot = AppendRow(bytes, pager_->FileFormat(), row, SlotKind::kRow);
    const bool isFull = PageRoom(bytes, pager_->FileFormat()) <= kPointerSize &&
                        PossibleRoom(bytes, pager_->FileFormat()) <= kPointerSize;
    if (free_ && isFull) free_->Remove(operation, page);
    // The parts of a long chain need not stay in memory.
    if (isFull) operation.Settle(page);
    return {page, slot};
}

PageNumber LongValueStore::PageWithRoom(Operation& operation, std::uint32_t length) {
    const Format& format = pager_->FileFormat();
    std::optional<PageNumber> page = free_ ? free_->NextFrom(roomHint_) : std::nullopt;
    if (free_ && !page && roomHint_) page = free_->NextFrom(PageNumber{0});
    // A whole page is asked for by the parts of a chain; searching the others would be in vain.
    while (page && length < format.longValueChunk) {
        const PageRef candidate = pager_->Page(*page);
        if (!IsDataPage(candidate.Data()) || PageOwner(candidate.Data()) != kLongValueOwner) {
            ThrowBadValue();
        }
        if (HasRoomFor(candidate.Data(), format, length)) {
            roomHint_ = *page;
            return *page;
        }
        free_->Remove(operation, *page);
        page = free_->NextFrom(PageNumber{page->value + 1});
    }
    const PageNumber fresh = operation.Allocate();
    StartDataPage(operation.Change(fresh), format, kLongValueOwner);
    owned_.Add(operation, fresh);
    EnterFree(operation, fresh);
    return fresh;
}

// A page with little room is not worth a look for each value: it is listed once it has more.
void LongValueStore::EnterFree(Operation& operation, PageNumber page) {
    if (!free_) return;
    const Format& format = pager_->FileFormat();
    if (PossibleRoom(pager_->Page(page).Data(), format) < format.pageSize / 8) return;
    if (!free_->Contains(page)) free_->Add(operation, page);
    roomHint_ = std::min(roomHint_, page);
}

void LongValueStore::ReleaseRow(Operation& operation, RowId row) {
    const Format& format = pager_->FileFormat();
    if (!owned_.Contains(row.page)) ThrowBadValue();
    const PageRef stored = pager_->Page(row.page);
    if (ReadSlot(stored.Data(), format, row.slot).kind == SlotKind::kDeleted) ThrowBadValue();
    const MutableBytes page = ChangeToDelete(operation, row.page, row.slot);
    DeleteRow(page, format, row.slot);
    if (HasLiveSlots(page, format)) {
        EnterFree(operation, row.page);
        return;
    }
    if (free_) free_->Remove(operation, row.page);
    owned_.Remove(operation, row.page);
    operation.Free(row.page);
    operation.Settle(row.page);
}

}  // namespace jet
