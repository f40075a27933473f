// SHA-256 as Windows itself computes it.
#define WIN32_LEAN_AND_MEAN
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

#include <bcrypt.h>

#include <algorithm>
#include <array>
#include <stdexcept>

#include "rollup/hexadecimal.h"
#include "rollup/sha256.h"

namespace rollup {

namespace {

constexpr std::size_t kSize = 32;
constexpr std::size_t kLargestPart = 1U << 30;

void Require(NTSTATUS result) {
    if (!BCRYPT_SUCCESS(result)) {
        throw std::runtime_error("The system's library cannot compute SHA-256.");
    }
}

}  // namespace

class Sha256::State {
public:
    State() {
        BCRYPT_ALG_HANDLE algorithm = nullptr;
        Require(::BCryptOpenAlgorithmProvider(&algorithm, BCRYPT_SHA256_ALGORITHM, nullptr, 0));
        algorithm_.reset(algorithm);
        BCRYPT_HASH_HANDLE hash = nullptr;
        Require(::BCryptCreateHash(algorithm, &hash, nullptr, 0, nullptr, 0, 0));
        hash_.reset(hash);
    }
    [[nodiscard]] BCRYPT_HASH_HANDLE Hash() const { return hash_.get(); }

private:
    struct Close {
        void operator()(BCRYPT_ALG_HANDLE algorithm) const {
            ::BCryptCloseAlgorithmProvider(algorithm, 0);
        }
    };
    struct Destroy {
        void operator()(BCRYPT_HASH_HANDLE hash) const { ::BCryptDestroyHash(hash); }
    };
    std::unique_ptr<void, Close> algorithm_;
    std::unique_ptr<void, Destroy> hash_;
};

Sha256::Sha256() : state_(std::make_unique<State>()) {}

Sha256::~Sha256() = default;

void Sha256::Add(std::span<const std::byte> part) {
    while (!part.empty()) {
        const std::span<const std::byte> next = part.first(std::min(part.size(), kLargestPart));
        // It only reads, although its interface does not say so.
        auto* bytes = reinterpret_cast<PUCHAR>(const_cast<std::byte*>(next.data()));
        Require(::BCryptHashData(state_->Hash(), bytes, static_cast<ULONG>(next.size()), 0));
        part = part.subspan(next.size());
    }
}

std::string Sha256::Finish() {
    std::array<unsigned char, kSize> digest{};
    Require(::BCryptFinishHash(state_->Hash(), digest.data(), kSize, 0));
    return Hexadecimal(digest);
}

}  // namespace rollup
