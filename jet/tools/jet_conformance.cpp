// jet_conformance DIR
//
// Reads every Jet 3 and Jet 4 file of a folder through the engine. Where NAME.jsonl.gz lies beside
// NAME, tables, columns, rows and the order of every index are compared with that dump; with or
// without it, every index must have exactly the rows of its table, and every key is made anew from
// the row and compared byte for byte. A line for each file, then a summary by type of column.
//
// Exit status: 0 when everything matched, 1 when something did not, 2 without any file.
#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <string>
#include <vector>

#include "jet/error.h"
#include "jet_conformance/reference.h"
#include "jet_conformance/table_dump.h"
#include "parts/dump_values.h"
#include "recordset/open_file.h"
#include "values/key.h"

namespace {

constexpr std::size_t kMostFaultsShown = 5;

struct FileResult {
    std::uint64_t tables = 0, rows = 0, entries = 0;
    std::string remark;
    std::vector<std::string> faults;
};

bool IsJetFile(const std::filesystem::path& path) {
    std::array<char, 20> head{};
    std::ifstream file(path, std::ios::binary);
    return file.read(head.data(), head.size()) &&
           std::memcmp(head.data() + 4, "Standard Jet DB", 16) == 0;
}

void CompareLines(const std::string& table, const std::vector<std::string>& expected,
                  const std::vector<std::string>& found, FileResult& result) {
    for (std::size_t i = 0; i < std::max(expected.size(), found.size()); ++i) {
        const std::string left = i < expected.size() ? expected[i] : "(nothing)";
        const std::string right = i < found.size() ? found[i] : "(nothing)";
        if (left != right) {
            const auto [a, b] = std::mismatch(left.begin(), left.end(), right.begin(), right.end());
            const auto at = static_cast<std::size_t>(a - left.begin());
            const std::size_t from = at < 40 ? 0 : at - 40;
            result.faults.push_back("table " + table + ", line " + std::to_string(i + 1) +
                                    ": expected ..." + left.substr(from, 100) + "... found ..." +
                                    right.substr(from, 100) + "...");
        }
    }
}

void CompareTables(jet::OpenFile& file, const Reference* reference, FileResult& result,
                   KeyCounts& keys) {
    std::vector<std::string> names;
    for (const jet::CatalogEntry& entry : file.Tables().Entries()) {
        jet::Table& table = file.Tables().Open(entry);
        const TableDump dump = DumpTable(table, entry.system);
        ++result.tables;
        result.rows += dump.rows;
        result.entries += dump.entries;
        for (const std::string& fault : dump.faults) {
            result.faults.push_back("table " + entry.name + ": " + fault);
        }
        for (const auto& [label, count] : dump.keys) {
            KeyCount& sum = keys[label];
            sum.matched += count.matched;
            sum.total += count.total;
            sum.variant += count.variant;
            sum.unsupported += count.unsupported;
        }
        names.push_back(QuotedName(entry.name));
        if (reference == nullptr) {
            continue;
        }
        const auto expected = reference->tables.find(names.back());
        CompareLines(
            entry.name,
            expected == reference->tables.end() ? std::vector<std::string>() : expected->second,
            dump.lines, result);
    }
    for (const auto& [name, lines] :
         reference == nullptr ? decltype(reference->tables)() : reference->tables) {
        if (std::find(names.begin(), names.end(), name) == names.end()) {
            result.faults.push_back("table " + name + " is missing");
        }
    }
}

FileResult CompareFile(const std::filesystem::path& path, KeyCounts& keys) {
    FileResult result;
    const auto reference = ReadReference(path.string() + ".jsonl.gz");
    if (!reference) {
        result.remark = ", no dump";
    }
    try {
        const auto database = jet::Database::Open(path, {.exclusive = false, .readOnly = true});
        if (reference && reference->refused) {
            result.faults.push_back("the file should have been refused");
        }
        CompareTables(*database->Internals().file, reference ? &*reference : nullptr, result, keys);
    } catch (const jet::Error& error) {
        const bool right = error.Kind() == jet::ErrorKind::kEncrypted ||
                           error.Kind() == jet::ErrorKind::kUnsupportedVersion;
        if (right && (!reference || reference->refused)) {
            result.remark += std::string(", refused as it must be: ") + error.what();
        } else {
            result.faults.push_back(error.what());
        }
    }
    return result;
}

void PrintFile(const std::filesystem::path& path, const FileResult& result) {
    std::printf("%s %s: %llu tables, %llu rows, %llu index entries%s\n",
                result.faults.empty() ? "ok  " : "FAIL", path.filename().string().c_str(),
                static_cast<unsigned long long>(result.tables),
                static_cast<unsigned long long>(result.rows),
                static_cast<unsigned long long>(result.entries), result.remark.c_str());
    for (std::size_t i = 0; i < std::min(result.faults.size(), kMostFaultsShown); ++i) {
        std::printf("     %s\n", result.faults[i].c_str());
    }
    if (result.faults.size() > kMostFaultsShown) {
        std::printf("     and %zu more\n", result.faults.size() - kMostFaultsShown);
    }
}

void PrintKeys(const KeyCounts& keys) {
    std::printf("\nKeys made anew, matched / total:\n");
    for (const auto& [label, count] : keys) {
        std::printf("  %-52s %8llu / %llu", label.c_str(),
                    static_cast<unsigned long long>(count.matched),
                    static_cast<unsigned long long>(count.total));
        if (count.variant != 0) {
            std::printf(", %llu of them in another writer's way",
                        static_cast<unsigned long long>(count.variant));
        }
        if (count.unsupported != 0) {
            std::printf(", %llu not supported", static_cast<unsigned long long>(count.unsupported));
        }
        std::printf("\n");
    }
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2 || !std::filesystem::is_directory(argv[1])) {
        std::fputs("usage: jet_conformance DIR\n", stderr);
        return 2;
    }
    std::vector<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::directory_iterator(argv[1])) {
        if (entry.is_regular_file() && IsJetFile(entry.path())) {
            files.push_back(entry.path());
        }
    }
    std::sort(files.begin(), files.end());
    KeyCounts keys;
    std::size_t matched = 0;
    for (const auto& path : files) {
        const FileResult result = CompareFile(path, keys);
        PrintFile(path, result);
        matched += result.faults.empty() ? 1 : 0;
    }
    PrintKeys(keys);
    std::printf("\n%zu of %zu files matched\n", matched, files.size());
    return files.empty() ? 2 : matched == files.size() ? 0 : 1;
}
