#include "recordset/value_reader.h"

#include <algorithm>

#include "jet/error.h"
#include "os/out_of_memory.h"
#include "page/bytes.h"
#include "values/code_page.h"
#include "values/text.h"

namespace jet {

namespace {

constexpr std::size_t kPieceBytes = 4096;

[[noreturn]] void ThrowOtherKind() {
    throw Error(ErrorKind::kTypeMismatch, "A memo is read as text, and an OLE value as bytes.");
}

// The next elements of what is in memory.
template <typename Elements, typename Element>
std::size_t Take(const Elements& from, std::uint64_t& at, std::span<Element> into) {
    const auto count =
        static_cast<std::size_t>(std::min<std::uint64_t>(from.size() - at, into.size()));
    std::copy_n(from.begin() + static_cast<std::ptrdiff_t>(at), count, into.begin());
    at += count;
    return count;
}

}  // namespace

LongValueReader::LongValueReader(std::shared_ptr<OpenFile> file, const Column& column, Bytes inRow)
    : file_(std::move(file)),
      change_(file_->Pages().ChangeCount()),
      inRow_(inRow.begin(), inRow.end()),
      cursor_(file_->Pages(), inRow_) {
    if (column.type == ColumnType::kOle) return;
    const Version version = file_->Pages().FileFormat().version;
    form_ = version == Version::kJet3 ? Form::kCodePage : Form::kUnits;
    piece_.resize(2);
    LongValueCursor beginning(file_->Pages(), inRow_);
    piece_.resize(beginning.Read(piece_));
    if (IsCompressedText(piece_, version)) {
        PageRef page;
        std::vector<std::byte> room;
        DecodeText(ReadLongValue(file_->Pages(), inRow_, page, room), version, text_);
        form_ = Form::kText;
    }
    piece_.resize(kPieceBytes);
}

LongValueReader::LongValueReader(std::shared_ptr<OpenFile> file, const Value& value)
    : file_(std::move(file)), stored_(false) {
    if (const auto* bytes = std::get_if<Binary>(&value.Get())) {
        bytes_ = *bytes;
    } else {
        form_ = Form::kText;
        text_ = value.AsText();
    }
}

LongValueReader::LongValueReader(std::shared_ptr<OpenFile> file,
                                 std::shared_ptr<const ValueDraft> draft)
    : file_(std::move(file)), stored_(false), draft_(std::move(draft)), draftSize_(draft_->Size()) {
    if (draft_->What() == ValueDraft::Kind::kBytes) return;
    form_ = Form::kUnits;
    piece_.resize(kPieceBytes);
}

void LongValueReader::RequireUnchanged() const {
    file_->RequireOpen();
    if (!stored_ || change_ == file_->Pages().ChangeCount()) return;
    throw Error(ErrorKind::kNoCurrentRecord,
                "The database was changed since the value was opened for reading.");
}

std::uint64_t LongValueReader::Size() const {
    file_->RequireOpen();
    if (form_ == Form::kText) return text_.size();
    if (draft_) return draftSize_ / UnitSize();
    return stored_ ? cursor_.Size() / UnitSize() : bytes_.size();
}

void LongValueReader::Skip(std::uint64_t units) {
    if (draft_) {
        at_ = std::min(units, Size()) * UnitSize();
    } else if (form_ == Form::kText || !stored_) {
        at_ = std::min(units, Size());
    } else {
        cursor_.Skip(std::min(units, Size()) * UnitSize());
    }
}

std::size_t LongValueReader::ReadBytes(MutableBytes into) {
    if (!draft_) return cursor_.Read(into);
    const auto count =
        static_cast<std::size_t>(std::min<std::uint64_t>(into.size(), draftSize_ - at_));
    draft_->Read(at_, into.first(count));
    at_ += count;
    return count;
}

std::size_t LongValueReader::Read(std::span<std::byte> into) {
    return Guarded([&] {
        RequireUnchanged();
        if (form_ != Form::kBytes) ThrowOtherKind();
        return stored_ || draft_ ? ReadBytes(into) : Take(bytes_, at_, into);
    });
}

std::size_t LongValueReader::Read(std::span<char16_t> into) {
    return Guarded([&] {
        RequireUnchanged();
        if (form_ == Form::kBytes) ThrowOtherKind();
        if (form_ == Form::kText) return Take(text_, at_, into);
        std::size_t done = 0;
        while (done < into.size()) {
            const std::size_t wanted = std::min(piece_.size(), (into.size() - done) * UnitSize());
            // An odd byte at the end is no character.
            const std::size_t units = ReadBytes(MutableBytes(piece_).first(wanted)) / UnitSize();
            if (units == 0) break;
            for (std::size_t i = 0; i < units; ++i) {
                into[done++] = form_ == Form::kCodePage
                                   ? CodePageCharacter(piece_[i])
                                   : static_cast<char16_t>(ReadU16(piece_, 2 * i));
            }
        }
        return done;
    });
}

}  // namespace jet
