// A folder for one task's file, with a blank in its path; removed at the end.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>

namespace bench {

class Folder {
public:
    Folder() {
        // mkdtemp puts letters of its own in the place of the last six.
        std::string name = (std::filesystem::temp_directory_path() / "tarn bench XXXXXX").string();
        if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("no folder for a benchmark");
        path_ = name;
    }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;
    ~Folder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    [[nodiscard]] const std::filesystem::path& Path() const { return path_; }
    [[nodiscard]] std::filesystem::path File() const { return path_ / "bench file.mdb"; }

private:
    std::filesystem::path path_;
};

}  // namespace bench
