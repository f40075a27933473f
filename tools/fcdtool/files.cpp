#include "tools/fcdtool/files.h"

#include <fstream>
#include <stdexcept>

#include "season/data_file.h"

namespace fcdtool {

std::filesystem::path PathOf(const std::string& word) {
    return std::filesystem::path(word);
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

void SaveFile(const std::string& file, const std::vector<std::string>& sources,
              std::string_view text) {
    RequireOther(file, sources);
    const std::filesystem::path path = PathOf(file);
    std::filesystem::path part = path;
    part += ".part";
    std::error_code failed;
    {
        std::ofstream out(part, std::ios::binary | std::ios::trunc);
        out.write(text.data(), static_cast<std::streamsize>(text.size()));
        out.close();
        if (out) {
            std::filesystem::rename(part, path, failed);
            if (!failed) {
                return;
            }
        }
    }
    std::filesystem::remove(part, failed);
    throw std::runtime_error(file + ": The file cannot be written.");
}

}  // namespace fcdtool
