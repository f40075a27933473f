// A data file that stays as it is while several things are read of it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <span>

#include "jet/file.h"
#include "season/data_file.h"

namespace season {

// Holds the file's lock for reading: others may read it too, and who writes waits or is refused.
class HeldFile {
public:
    using TakePart = std::function<void(std::span<const std::byte> part)>;

    // Throws Refused when the file cannot be opened or another program has it.
    explicit HeldFile(std::filesystem::path path, jet::FileSystem& files = jet::HostFileSystem());

    [[nodiscard]] std::uint64_t Bytes() const { return file_->Size(); }
    // All bytes that the contents are made of, in order: the file's, and those of its log where
    // operations wait in it. Throws Refused when they cannot be read.
    void EachPart(const TakePart& take);
    // As season::Read.
    [[nodiscard]] Season Read() { return season::Read(path_, files_); }

private:
    [[nodiscard]] bool OperationsWait(const std::filesystem::path& log);

    std::filesystem::path path_;
    jet::FileSystem& files_;
    std::unique_ptr<jet::File> file_;
};

}  // namespace season
