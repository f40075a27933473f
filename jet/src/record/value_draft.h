// A long value that an open edit collects piece by piece before it is stored. All but its end waits
// in a temporary file beside the data file, so that a value of any size takes little memory.
#pragma once

#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include "jet/file.h"
#include "jet/value.h"
#include "page/pager.h"
#include "page/types.h"

namespace jet {

class ValueDraft {
public:
    enum class Kind { kText, kBytes };

    // The pager must outlive it.
    ValueDraft(Pager& pager, Kind kind) : pager_(pager), kind_(kind) {}

    [[nodiscard]] Kind What() const { return kind_; }
    // Bytes; two for each unit of a text, the lower one first.
    [[nodiscard]] std::uint64_t Size() const { return stored_ + end_.size(); }
    // When they throw, nothing is added. kDiskFull, kIo and the other errors of
    // FileSystem::CreateTemporary.
    void Append(std::u16string_view text);
    void Append(Bytes bytes);
    // Fills `into` with the bytes from `at` on; there are as many. kIo.
    void Read(std::uint64_t at, MutableBytes into) const;
    // All of it, in memory. kIo.
    [[nodiscard]] Value Whole() const;

private:
    void Put(Bytes bytes);
    void CutTo(std::uint64_t size) noexcept;

    Pager& pager_;
    Kind kind_;
    std::unique_ptr<File> file_;
    std::uint64_t stored_ = 0;    // bytes in the file that count
    std::vector<std::byte> end_;  // those behind them
};

}  // namespace jet
