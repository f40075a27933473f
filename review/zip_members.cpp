#include "review/zip_members.h"

#include <minizip/unzip.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <type_traits>

namespace review {

namespace {

struct Closer {
    void operator()(unzFile file) const { unzClose(file); }
};
using OpenZip = std::unique_ptr<std::remove_pointer_t<unzFile>, Closer>;

std::optional<std::string> ContentOf(unzFile zip, uLong size) {
    if (unzOpenCurrentFile(zip) != UNZ_OK) {
        return std::nullopt;
    }
    std::string content(size, '\0');
    const int read = unzReadCurrentFile(zip, content.data(), static_cast<unsigned>(size));
    const bool isWhole = read >= 0 && static_cast<uLong>(read) == size;
    // Closing compares the checksum.
    return unzCloseCurrentFile(zip) == UNZ_OK && isWhole ? std::optional(std::move(content))
                                                         : std::nullopt;
}

}  // namespace

bool EachZipMember(
    const std::filesystem::path& zip,
    const std::function<bool(const std::string& name, const std::string& content)>& take) {
    const OpenZip file(unzOpen(zip.string().c_str()));
    int step = file ? unzGoToFirstFile(file.get()) : UNZ_BADZIPFILE;
    while (step == UNZ_OK) {
        constexpr std::size_t kLongestName = 256;
        std::string name(kLongestName, '\0');
        unz_file_info info{};
        if (unzGetCurrentFileInfo(file.get(), &info, name.data(), kLongestName, nullptr, 0, nullptr,
                                  0) != UNZ_OK) {
            return false;
        }
        name.resize(std::min<std::size_t>(info.size_filename, kLongestName));
        const std::optional<std::string> content = ContentOf(file.get(), info.uncompressed_size);
        if (!content || !take(name, *content)) {
            return false;
        }
        step = unzGoToNextFile(file.get());
    }
    return step == UNZ_END_OF_LIST_OF_FILE;
}

}  // namespace review
