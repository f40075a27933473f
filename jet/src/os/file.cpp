#include "jet/file.h"

#include <vector>

namespace jet {

void File::WriteAll(std::uint64_t offset, std::span<const std::span<const std::byte>> pieces) {
    if (pieces.size() == 1) {
        Write(offset, pieces.front());
        return;
    }
    std::vector<std::byte> all;
    for (const auto piece : pieces) all.insert(all.end(), piece.begin(), piece.end());
    Write(offset, all);
}

std::unique_ptr<File> FileSystem::CreateTemporary(const std::filesystem::path& path, File& model) {
    if (Exists(path)) Remove(path);
    auto file = CreateLike(path, model);
    Remove(path);
    return file;
}

}  // namespace jet
