#include "review/new_files.h"

#include <cerrno>
#include <fstream>
#include <system_error>

namespace review {

namespace {

std::filesystem::path PartOf(const NewFile& file) {
    std::filesystem::path part = file.path;
    part += ".part";
    return part;
}

void WritePart(const NewFile& file) {
    errno = 0;
    std::ofstream out(PartOf(file), std::ios::binary | std::ios::trunc);
    out.write(file.text.data(), static_cast<std::streamsize>(file.text.size()));
    out.close();
    if (!out) {
        throw std::filesystem::filesystem_error("not written", file.path,
                                                std::error_code(errno, std::generic_category()));
    }
}

}  // namespace

void SaveFiles(const std::vector<NewFile>& files) {
    try {
        for (const NewFile& file : files) {
            WritePart(file);
        }
        for (const NewFile& file : files) {
            std::error_code failed;
            std::filesystem::rename(PartOf(file), file.path, failed);
            if (failed) {
                throw std::filesystem::filesystem_error("not replaced", file.path, failed);
            }
        }
    } catch (...) {
        for (const NewFile& file : files) {
            std::error_code ignored;
            std::filesystem::remove(PartOf(file), ignored);
        }
        throw;
    }
}

}  // namespace review
