// A folder of its own for one test, with a blank in its path, removed afterwards.
#pragma once

#include <filesystem>
#include <random>
#include <string>

namespace tarn_test {

class TempFolder {
public:
    TempFolder() {
        std::random_device random;
        do {
            path_ =
                std::filesystem::temp_directory_path() / ("tarn test " + std::to_string(random()));
        } while (!std::filesystem::create_directory(path_));
    }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;
    ~TempFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    [[nodiscard]] const std::filesystem::path& Path() const { return path_; }
    [[nodiscard]] std::filesystem::path operator/(const std::string& name) const {
        return path_ / name;
    }

private:
    std::filesystem::path path_;
};

}  // namespace tarn_test
