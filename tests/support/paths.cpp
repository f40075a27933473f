#include "support/paths.h"

namespace support {

// Compiled here, the paths name no drive, which dialogs of Windows take for a part of a path.
std::filesystem::path SourceFolder() {
    return std::filesystem::absolute(TARN_SOURCE);
}

std::filesystem::path BuildFolder() {
    return std::filesystem::absolute(TARN_BUILD);
}

}  // namespace support
