#include "rollup/sha256.h"

#include <openssl/evp.h>

#include <array>
#include <stdexcept>

#include "rollup/hexadecimal.h"

namespace rollup {

namespace {

void Require(int result) {
    if (result != 1) {
        throw std::runtime_error("The system's library cannot compute SHA-256.");
    }
}

}  // namespace

class Sha256::State {
public:
    State() { Require(EVP_DigestInit_ex(context_.get(), EVP_sha256(), nullptr)); }
    [[nodiscard]] EVP_MD_CTX* Context() const { return context_.get(); }

private:
    struct Free {
        void operator()(EVP_MD_CTX* context) const { EVP_MD_CTX_free(context); }
    };
    std::unique_ptr<EVP_MD_CTX, Free> context_{EVP_MD_CTX_new()};
};

Sha256::Sha256() : state_(std::make_unique<State>()) {}

Sha256::~Sha256() = default;

void Sha256::Add(std::span<const std::byte> part) {
    Require(EVP_DigestUpdate(state_->Context(), part.data(), part.size()));
}

std::string Sha256::Finish() {
    constexpr std::size_t kSize = 32;
    std::array<unsigned char, kSize> digest{};
    unsigned int size = 0;
    Require(EVP_DigestFinal_ex(state_->Context(), digest.data(), &size));
    return Hexadecimal(digest);
}

}  // namespace rollup
