#include "jet_conformance/reference.h"

#include <zlib.h>

#include <array>
#include <sstream>

namespace {

std::string Unpack(const std::filesystem::path& path) {
    std::string text;
    gzFile file = gzopen(path.string().c_str(), "rb");
    if (file == nullptr) {
        return text;
    }
    std::array<char, 65536> part{};
    for (int size = 0; (size = gzread(file, part.data(), part.size())) > 0;) {
        text.append(part.data(), static_cast<std::size_t>(size));
    }
    gzclose(file);
    return text;
}

bool IsKind(const std::string& line, const std::string& kind) {
    return line.rfind("{\"k\":\"" + kind + "\"", 0) == 0;
}

void LeaveOut(std::string& line, const std::string& key) {
    const std::size_t start = line.find(key);
    if (start == std::string::npos) {
        return;
    }
    std::size_t end = start + key.size();
    while (end < line.size() && line[end] >= '0' && line[end] <= '9') {
        ++end;
    }
    line.erase(start, end - start);
}

// The JSON text of the value after `"name":`.
std::string NameOf(const std::string& line) {
    const std::string key = "\"name\":";
    const std::size_t start = line.find(key) + key.size();
    std::size_t end = start + 1;
    while (end < line.size() && line[end] != '"') {
        end += line[end] == '\\' ? 2 : 1;
    }
    return line.substr(start, end - start + 1);
}

}  // namespace

std::optional<Reference> ReadReference(const std::filesystem::path& dump) {
    if (!std::filesystem::exists(dump)) {
        return std::nullopt;
    }
    Reference reference;
    std::vector<std::string>* table = nullptr;
    std::istringstream lines(Unpack(dump));
    for (std::string line; std::getline(lines, line);) {
        if (IsKind(line, "file")) {
            reference.refused = line.find("\"encoded\":true") != std::string::npos ||
                                line.find("\"password\":null") == std::string::npos;
        } else if (IsKind(line, "table")) {
            table = &reference.tables[NameOf(line)];
        }
        if (table != nullptr && !IsKind(line, "linked")) {
            if (IsKind(line, "column")) {
                LeaveOut(line, ",\"display\":");
            }
            table->push_back(line);
        }
        if (IsKind(line, "endtable")) {
            table = nullptr;
        }
    }
    return reference;
}
