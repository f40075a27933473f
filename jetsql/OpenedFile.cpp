#include "jetsql/OpenedFile.h"

#include <fstream>

#include "jet/path.h"

namespace jetsql {

namespace {

// The smaller of the two page sizes; the counters that writers raise lie within it.
constexpr std::size_t kFirstPage = 2048;

}  // namespace

OpenedFile::OpenedFile(const std::filesystem::path& path) : path_(path) {
    database_ = jet::Database::Open(path, {.exclusive = false, .readOnly = true});
    stamp_ = Look();
}

bool OpenedFile::IsUnchanged() const {
    return Look() == stamp_;
}

OpenedFile::Stamp OpenedFile::Look() const {
    Stamp stamp;
    std::error_code failed;
    stamp.size = std::filesystem::file_size(path_, failed);
    stamp.written = std::filesystem::last_write_time(path_, failed);
    stamp.firstPage.resize(kFirstPage);
    std::ifstream file(path_, std::ios::binary);
    file.read(stamp.firstPage.data(), static_cast<std::streamsize>(kFirstPage));
    stamp.firstPage.resize(static_cast<std::size_t>(file.gcount()));
    return stamp;
}

std::shared_ptr<OpenedFile> OpenedFiles::Open(const std::string& path) {
    std::error_code failed;
    const std::filesystem::path given = jet::PathOf(path);
    std::filesystem::path whole = std::filesystem::weakly_canonical(given, failed);
    if (failed) whole = given;
    std::weak_ptr<OpenedFile>& known = files_[whole];
    std::shared_ptr<OpenedFile> file = known.lock();
    if (!file || !file->IsUnchanged()) {
        file = std::make_shared<OpenedFile>(whole);
        known = file;
    }
    return file;
}

}  // namespace jetsql
