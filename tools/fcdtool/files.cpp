#include "tools/fcdtool/files.h"

#include <stdexcept>

#include "jet/path.h"
#include "review/new_files.h"
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
    std::vector<review::NewFile> whole;
    for (const NewFile& file : files) {
        whole.push_back({PathOf(file.file), file.text});
    }
    try {
        review::SaveFiles(whole);
    } catch (const std::filesystem::filesystem_error& error) {
        const std::u8string name = error.path1().u8string();
        ThrowNotWritten(std::string(name.begin(), name.end()), error.code());
    }
}

void SaveFile(const std::string& file, const std::vector<std::string>& sources,
              std::string_view text) {
    SaveFiles({{file, std::string(text)}}, sources);
}

}  // namespace fcdtool
