#include "rollup/destination_name.h"

#include <algorithm>
#include <string_view>

#include "rollup/destination.h"

namespace rollup {

namespace {

// The word before the colon, where one stands there as a kind does; a single letter is a drive.
std::string_view KindOf(std::string_view name) {
    const std::size_t colon = name.find(':');
    if (colon == std::string_view::npos || colon < 2) {
        return {};
    }
    const std::string_view word = name.substr(0, colon);
    const bool isWord =
        std::all_of(word.begin(), word.end(), [](char c) { return c >= 'a' && c <= 'z'; });
    return isWord ? word : std::string_view();
}

}  // namespace

DestinationName ParseDestination(const std::string& name) {
    const std::string_view kind = KindOf(name);
    DestinationName parsed;
    parsed.rest = kind.empty() ? name : name.substr(kind.size() + 1);
    if (kind == "csv") {
        parsed.kind = DestinationKind::kCsv;
    } else if (kind == "postgresql" || kind == "postgres") {
        parsed.kind = DestinationKind::kPostgres;
        if (parsed.rest.starts_with("//")) {
            parsed.rest = name;
        }
    } else if (!kind.empty() && kind != "sqlite") {
        throw DestinationError(name + ": There is no destination of the kind " + std::string(kind) +
                               "; there are sqlite:FILE, postgresql:CONNECTION and csv:DIR.");
    }
    // An empty connection string is one: the environment then says where the server is.
    if (parsed.rest.empty() && parsed.kind != DestinationKind::kPostgres) {
        throw DestinationError("The destination lacks its file or folder.");
    }
    return parsed;
}

}  // namespace rollup
