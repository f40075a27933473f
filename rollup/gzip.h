// Texts compressed as gzip does.
#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

namespace rollup {

// Throws std::bad_alloc when there is no memory for it.
class Gzip {
public:
    Gzip();
    Gzip(const Gzip&) = delete;
    Gzip& operator=(const Gzip&) = delete;
    ~Gzip();
    void Add(std::string_view text);
    // The compressed whole; nothing can be added afterwards.
    [[nodiscard]] std::string Finish();

private:
    class State;
    void Deflate(std::string_view text, int flush);

    std::unique_ptr<State> state_;
    std::string compressed_;
};

// Reads a compressed file in parts.
class GzipReader {
public:
    // A file that is not there or no such file reads as cut off.
    explicit GzipReader(const std::filesystem::path& file);
    GzipReader(const GzipReader&) = delete;
    GzipReader& operator=(const GzipReader&) = delete;
    ~GzipReader();
    // The next byte; -1 at the end.
    int Next() { return at_ < part_.size() ? static_cast<unsigned char>(part_[at_++]) : Refill(); }
    // Whether the file was whole, once its end was reached.
    [[nodiscard]] bool IsWhole() const { return isWhole_; }

private:
    int Refill();

    class State;
    std::unique_ptr<State> state_;
    std::string part_;
    std::size_t at_ = 0;
    bool isWhole_ = false;
};

}  // namespace rollup
