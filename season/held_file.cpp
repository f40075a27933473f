#include "season/held_file.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "jet/database.h"

namespace season {

namespace {

void EachPartOf(jet::File& file, const HeldFile::TakePart& take) {
    constexpr std::uint64_t kPart = std::uint64_t{1} << 16;
    std::vector<std::byte> part(kPart);
    const std::uint64_t size = file.Size();
    for (std::uint64_t at = 0; at < size; at += kPart) {
        const std::span<std::byte> next(part.data(),
                                        static_cast<std::size_t>(std::min(kPart, size - at)));
        file.Read(at, next);
        take(next);
    }
}

}  // namespace

HeldFile::HeldFile(std::filesystem::path path, jet::FileSystem& files)
    : path_(std::move(path)), files_(files) {
    try {
        file_ = files_.Open(path_, jet::OpenMode::kReadOnly);
        if (!file_->TryLock(false)) {
            throw Refused("The file is in use by another program.");
        }
    } catch (const jet::Error& error) {
        throw Refused(error.what());
    }
}

bool HeldFile::OperationsWait(const std::filesystem::path& log) {
    if (!files_.Exists(log)) {
        return false;
    }
    try {
        const auto database =
            jet::Database::Open(path_, {.exclusive = false, .readOnly = true}, files_);
        return database->OpeningRecovery().applied;
    } catch (const jet::Error&) {
        return false;  // whoever reads the file learns what is the matter with it
    }
}

void HeldFile::EachPart(const TakePart& take) {
    try {
        EachPartOf(*file_, take);
        const std::filesystem::path log = jet::Database::LogOf(path_, files_);
        if (OperationsWait(log)) {
            EachPartOf(*files_.OpenBeside(log, jet::OpenMode::kReadOnly), take);
        }
    } catch (const jet::Error& error) {
        throw Refused(error.what());
    }
}

}  // namespace season
