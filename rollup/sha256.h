// The SHA-256 of a text that comes in parts.
#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <string>

namespace rollup {

class Sha256 {
public:
    Sha256();
    Sha256(const Sha256&) = delete;
    Sha256& operator=(const Sha256&) = delete;
    ~Sha256();
    void Add(std::span<const std::byte> part);
    // 64 hexadecimal digits in small letters; nothing can be added afterwards.
    [[nodiscard]] std::string Finish();

private:
    class State;
    std::unique_ptr<State> state_;
};

}  // namespace rollup
