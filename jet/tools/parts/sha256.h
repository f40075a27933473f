// SHA-256, by which dumps stand for long values.
#pragma once

#include <cstddef>
#include <span>
#include <string>

// In lower-case hexadecimal digits.
std::string Sha256(std::span<const std::byte> bytes);
