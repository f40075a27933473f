// Makes jet/src/values/collation_tables.inc from the two tables of weights beside this file:
//
//   make_collation general_97.tsv general_legacy.tsv > collation_tables.inc
//
// The result is checked in, so that the engine builds without this step (also when it is built for
// another system); run the target `collation_tables` after a change of the tables. A weight word
// has the layout that collation.cpp unpacks.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace {

struct Line {
    std::uint32_t code = 0;
    char kind = 'P';
    std::vector<std::uint32_t> primary, secondary, special;
};

struct Run {
    std::uint32_t first = 0;
    std::uint32_t count = 0;
    std::uint32_t word = 0;
    std::uint32_t step = 0;  // added to the primary weight from one code unit to the next
};

std::vector<std::uint32_t> HexBytes(const std::string& text) {
    std::vector<std::uint32_t> bytes;
    for (std::size_t i = 0; i + 1 < text.size(); i += 2) {
        bytes.push_back(static_cast<std::uint32_t>(std::stoul(text.substr(i, 2), nullptr, 16)));
    }
    return bytes;
}

std::vector<std::vector<std::string>> ReadTable(const char* path) {
    std::ifstream file(path);
    if (!file) {
        std::cerr << "cannot read " << path << "\n";
        std::exit(1);
    }
    std::vector<std::vector<std::string>> rows;
    for (std::string line; std::getline(file, line);) {
        if (line.empty() || line[0] == '#') {
            continue;
        }
        std::vector<std::string> fields(1);
        for (const char c : line) {
            c == '\t' ? fields.emplace_back() : (fields.back() += c, fields.back());
        }
        fields.resize(5);
        rows.push_back(fields);
    }
    return rows;
}

// A byte that is the whole primary of some character is one weight, any other byte begins a weight
// of two bytes.
std::uint32_t CountWeights(const std::vector<std::uint32_t>& primary,
                           const std::set<std::uint32_t>& single) {
    std::uint32_t weights = 0;
    for (std::size_t i = 0; i < primary.size(); ++weights) {
        i += single.count(primary[i]) != 0 ? 1 : 2;
    }
    return weights;
}

std::uint32_t KindCode(const Line& line) {
    switch (line.kind) {
        case 'P':
            return 1;
        case 'D':
            return 2;
        case 'M':
            return 3;
        case 'S':
            return 4;
        case 'K':
            return line.special.at(0) == 2 ? 5 : 6;
        default:
            std::cerr << "unknown kind " << line.kind << "\n";
            std::exit(1);
    }
}

void PrintRare(const Line& line, std::uint32_t weights) {
    std::printf("    {{");
    for (const std::uint32_t byte : line.primary) {
        std::printf("0x%02X, ", byte);
    }
    std::printf("}, %zu, {", line.primary.size());
    for (const std::uint32_t byte : line.secondary) {
        std::printf("0x%02X, ", byte);
    }
    std::printf("}, %zu, %u},\n", line.secondary.size(), weights);
}

std::vector<Line> ReadLegacy(const char* path) {
    std::vector<Line> lines;
    for (const auto& fields : ReadTable(path)) {
        Line line;
        line.code = static_cast<std::uint32_t>(std::stoul(fields[0], nullptr, 16));
        line.kind = fields[1].at(0);
        line.primary = HexBytes(fields[2]);
        line.secondary = HexBytes(fields[3]);
        // The flag of kana is a single digit.
        line.special = HexBytes(fields[4].size() == 1 ? "0" + fields[4] : fields[4]);
        lines.push_back(line);
    }
    return lines;
}

// The runs of the table; characters that do not fit in a word are printed on the way.
std::vector<Run> MakeRuns(const std::vector<Line>& lines) {
    std::set<std::uint32_t> single;
    for (const Line& line : lines) {
        if (line.primary.size() == 1) {
            single.insert(line.primary[0]);
        }
    }
    std::vector<Run> runs;
    std::uint32_t rare = 0;
    for (const Line& line : lines) {
        const std::uint32_t weights = CountWeights(line.primary, single);
        std::uint32_t word = 0;
        std::uint32_t primary = 0;
        if (line.primary.size() > 2 || line.secondary.size() > 1) {
            PrintRare(line, weights);
            word = 7U | rare++ << 16;
        } else {
            for (const std::uint32_t byte : line.primary) {
                primary = primary << 8 | byte;
            }
            const auto& second = line.kind == 'S' ? line.special : line.secondary;
            word = KindCode(line) | static_cast<std::uint32_t>(line.primary.size()) << 3 |
                   weights << 5 | (second.empty() ? 0 : second[0]) << 8 | primary << 16;
        }
        Run* last = runs.empty() ? nullptr : &runs.back();
        if (last != nullptr && line.code == last->first + last->count &&
            (word & 0xFFFF) == (last->word & 0xFFFF) && (word & 7) != 7) {
            const std::uint32_t rise = (word >> 16) - (last->word >> 16);
            if (last->count == 1 && rise < 0x100) {
                last->step = rise;
            }
            if (rise == last->step * last->count) {
                ++last->count;
                continue;
            }
        }
        runs.push_back({line.code, 1, word, 0});
    }
    return runs;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::cerr << "usage: make_collation general_97.tsv general_legacy.tsv\n";
        return 1;
    }
    std::printf("// Made by make_collation from the tables of weights; do not edit.\n");
    std::printf("constexpr std::array<std::uint32_t, 256> kGeneral97 = {");
    int column = 0;
    for (const auto& fields : ReadTable(argv[1])) {
        const auto primary = HexBytes(fields[2]);
        std::uint32_t word = fields[1] == "P" ? 1 : fields[1] == "B" ? 2 : 3;
        word |= static_cast<std::uint32_t>(primary.size()) << 3;
        word |= static_cast<std::uint32_t>(std::stoul(fields[4])) << 5;
        word |= (fields[3].empty() ? 0U
                                   : static_cast<std::uint32_t>(std::stoul(fields[3], nullptr, 16)))
                << 8;
        word |= (primary.size() == 2 ? primary[0] << 8 | primary[1] : primary[0]) << 16;
        std::printf("%s0x%08X,", column++ % 8 == 0 ? "\n    " : " ", word);
    }
    std::printf("\n};\n\nconstexpr RareWeights kRareWeights[] = {\n");
    const std::vector<Run> runs = MakeRuns(ReadLegacy(argv[2]));
    std::printf("};\n\nconstexpr WeightRun kWeightRuns[] = {");
    column = 0;
    for (const Run& run : runs) {
        std::printf("%s{0x%04X, %u, 0x%08X, %u},", column++ % 4 == 0 ? "\n    " : " ", run.first,
                    run.count, run.word, run.step);
    }
    std::printf("\n};\n");
    return 0;
}
