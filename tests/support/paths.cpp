#include "support/paths.h"

namespace support {

std::filesystem::path SourceFolder() {
    return TARN_SOURCE;
}

std::filesystem::path BuildFolder() {
    return TARN_BUILD;
}

}  // namespace support
