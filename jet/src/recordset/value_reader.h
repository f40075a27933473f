// A long value of a record, read in pieces.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "jet/recordset.h"
#include "record/long_value.h"
#include "record/value_draft.h"
#include "recordset/open_file.h"
#include "table/table.h"

namespace jet {

class LongValueReader : public ValueReader {
public:
    // The stored value of a column; `row` is copied as far as it matters.
    LongValueReader(std::shared_ptr<OpenFile> file, const Column& column, Bytes inRow);
    // A value that is not stored yet.
    LongValueReader(std::shared_ptr<OpenFile> file, const Value& value);
    // One whose pieces are being collected: those that there are by now.
    LongValueReader(std::shared_ptr<OpenFile> file, std::shared_ptr<const ValueDraft> draft);

    void Skip(std::uint64_t units);

    [[nodiscard]] std::uint64_t Size() const override;
    std::size_t Read(std::span<std::byte> into) override;
    std::size_t Read(std::span<char16_t> into) override;

private:
    // How the characters of a memo are stored; a whole text is one that is in memory.
    enum class Form { kBytes, kCodePage, kUnits, kText };

    void RequireUnchanged() const;
    // The next bytes of the stored value, or of the draft, as many as there are.
    std::size_t ReadBytes(MutableBytes into);
    [[nodiscard]] std::size_t UnitSize() const { return form_ == Form::kUnits ? 2 : 1; }

    std::shared_ptr<OpenFile> file_;
    std::uint64_t change_ = 0;
    bool stored_ = true;
    Form form_ = Form::kBytes;
    std::vector<std::byte> inRow_;
    LongValueCursor cursor_;
    std::vector<std::byte> piece_;
    std::shared_ptr<const ValueDraft> draft_;
    std::uint64_t draftSize_ = 0;
    // The value, where it is in memory.
    std::u16string text_;
    Binary bytes_;
    std::uint64_t at_ = 0;  // how much of it, or of the draft, has been read
};

}  // namespace jet
