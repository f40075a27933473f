// A virtual display whose picture lies in a file that this process maps: a frame is seen in it
// without asking the X server and so without taking part in what is measured.
#pragma once

#include <sys/types.h>

#include <cstddef>
#include <cstdint>
#include <string>

#include "bench/Folder.h"

namespace program_bench {

class Display {
public:
    // Starts the X server; throws std::runtime_error when there is none.
    Display();
    ~Display();
    Display(const Display&) = delete;
    Display& operator=(const Display&) = delete;

    [[nodiscard]] const std::string& Name() const { return name_; }  // ":7"
    // Whether any window has been painted: without one every pixel is black.
    [[nodiscard]] bool IsPainted() const;

private:
    void StartServer();
    void MapPicture();

    bench::Folder folder_;
    std::string name_;
    pid_t server_ = 0;
    const std::uint8_t* picture_ = nullptr;
    std::size_t size_ = 0;
    const std::uint32_t* pixels_ = nullptr;
};

// The one display of this run.
Display& TheDisplay();

}  // namespace program_bench
