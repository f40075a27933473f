#include "bench/program/Display.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>

namespace program_bench {
namespace {

constexpr std::size_t kWidth = 1024;
constexpr std::size_t kHeight = 768;
constexpr std::size_t kStep = 16;  // the pixels looked at lie so far apart
// The server draws the pointer into the picture as soon as there is a window below it; it hides no
// more of the pixels than this.
constexpr int kPointer = 16;

// The picture's header tells, in big-endian numbers, its own size and the number of colors that
// follow it.
constexpr std::size_t kHeaderSizeAt = 0;
constexpr std::size_t kColorsAt = 76;
constexpr std::size_t kColorSize = 12;

std::size_t Number(const std::uint8_t* at) {
    return std::size_t(at[0]) << 24 | std::size_t(at[1]) << 16 | std::size_t(at[2]) << 8 | at[3];
}

}  // namespace

Display::Display() {
    StartServer();
    MapPicture();
}

Display::~Display() {
    if (picture_ != nullptr) munmap(const_cast<std::uint8_t*>(picture_), size_);
    kill(server_, SIGTERM);
    waitpid(server_, nullptr, 0);
}

// The server chooses a free number and writes it to the pipe once it is ready.
void Display::StartServer() {
    std::array<int, 2> ends{};
    if (pipe(ends.data()) != 0) throw std::runtime_error("no pipe to the X server");
    const std::string number = std::to_string(ends[1]);
    const std::string folder = folder_.Path().string();
    // A display does not start anew because its last program has gone.
    std::array<const char*, 12> words{"Xvfb",       "-screen",      "0",         "1024x768x24",
                                      "-fbdir",     folder.c_str(), "-nolisten", "tcp",
                                      "-displayfd", number.c_str(), "-noreset",  nullptr};
    posix_spawn_file_actions_t quiet;
    posix_spawn_file_actions_init(&quiet);
    posix_spawn_file_actions_addopen(&quiet, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    const int failure = posix_spawnp(&server_, "Xvfb", &quiet, nullptr,
                                     const_cast<char* const*>(words.data()), environ);
    posix_spawn_file_actions_destroy(&quiet);
    close(ends[1]);
    std::array<char, 16> answer{};
    const ssize_t length = failure == 0 ? read(ends[0], answer.data(), answer.size() - 1) : 0;
    close(ends[0]);
    if (length <= 0) throw std::runtime_error("the X server (Xvfb) does not start");
    name_ = ":" + std::to_string(std::atoi(answer.data()));
}

void Display::MapPicture() {
    const std::filesystem::path file = folder_.Path() / "Xvfb_screen0";
    const int descriptor = open(file.c_str(), O_RDONLY | O_CLOEXEC);
    struct stat status = {};
    if (descriptor < 0 || fstat(descriptor, &status) != 0) {
        throw std::runtime_error("the display has no picture");
    }
    size_ = std::size_t(status.st_size);
    void* mapped = mmap(nullptr, size_, PROT_READ, MAP_SHARED, descriptor, 0);
    close(descriptor);
    if (mapped == MAP_FAILED) throw std::runtime_error("the display's picture cannot be mapped");
    picture_ = static_cast<const std::uint8_t*>(mapped);
    const std::size_t begin =
        Number(picture_ + kHeaderSizeAt) + kColorSize * Number(picture_ + kColorsAt);
    if (begin + 4 * kWidth * kHeight > size_) throw std::runtime_error("the picture is too small");
    pixels_ = reinterpret_cast<const std::uint32_t*>(picture_ + begin);
}

bool Display::IsPainted() const {
    const volatile std::uint32_t* pixels = pixels_;
    int painted = 0;
    for (std::size_t y = kStep / 2; y < kHeight; y += kStep) {
        for (std::size_t x = kStep / 2; x < kWidth; x += kStep) {
            painted += (pixels[y * kWidth + x] & 0xFFFFFF) != 0 ? 1 : 0;
        }
    }
    return painted > kPointer;
}

Display& TheDisplay() {
    static Display display;
    return display;
}

}  // namespace program_bench
