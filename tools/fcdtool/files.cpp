#include "tools/fcdtool/files.h"

#include <cerrno>
#include <fstream>
#include <stdexcept>

#include "jet/path.h"
#include "review/wording.h"
#include "season/data_file.h"

namespace fcdtool {

std::filesystem::path PathOf(const std::string& word) {
    return jet::PathOf(word);
}

season::Season ReadFile(const std::string& file) {
    try {
        return season::Read(PathOf(file));
    } catch (const season::Refused& refused) {
        throw season::Refused(file + ": " + refused.what());
    }
}

void RequireOther(const std::string& file, const std::vector<std::string>& sources) {
    for (const std::string& source : sources) {
        std::error_code absent;
        if (std::filesystem::equivalent(PathOf(file), PathOf(source), absent)) {
            throw std::runtime_error(file + ": This is the file that is read.");
        }
    }
}

void ThrowNotWritten(const std::string& file, std::error_code failed) {
    throw std::runtime_error(file + ": " + review::WhyNotWritten(failed));
}

namespace {

std::filesystem::path PartOf(const std::string& file) {
    std::filesystem::path part = PathOf(file);
    part += ".part";
    return part;
}

void WritePart(const NewFile& file) {
    errno = 0;
    std::ofstream out(PartOf(file.file), std::ios::binary | std::ios::trunc);
    out.write(file.text.data(), static_cast<std::streamsize>(file.text.size()));
    out.close();
    if (!out) {
        ThrowNotWritten(file.file, std::error_code(errno, std::generic_category()));
    }
}

// A file that is to be replaced by what is written, and nothing that could not be.
void RequireReplaceable(const std::string& file, const std::vector<std::string>& sources) {
    RequireOther(file, sources);
    std::error_code absent;
    if (std::filesystem::is_directory(PathOf(file), absent)) {
        throw std::runtime_error(file + ": This is a folder.");
    }
}

}  // namespace

void SaveFiles(const std::vector<NewFile>& files, const std::vector<std::string>& sources) {
    for (const NewFile& file : files) {
        RequireReplaceable(file.file, sources);
    }
    try {
        for (const NewFile& file : files) {
            WritePart(file);
        }
        for (const NewFile& file : files) {
            std::error_code failed;
            std::filesystem::rename(PartOf(file.file), PathOf(file.file), failed);
            if (failed) {
                ThrowNotWritten(file.file, failed);
            }
        }
    } catch (...) {
        for (const NewFile& file : files) {
            std::error_code ignored;
            std::filesystem::remove(PartOf(file.file), ignored);
        }
        throw;
    }
}

void SaveFile(const std::string& file, const std::vector<std::string>& sources,
              std::string_view text) {
    SaveFiles({{file, std::string(text)}}, sources);
}

}  // namespace fcdtool
