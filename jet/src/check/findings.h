// What a check has found so far.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <utility>

#include "jet/check.h"
#include "page/types.h"

namespace jet {

// Where something was found; a part that is not known stays as it is.
struct Spot {
    std::string table;
    std::int64_t page = -1;
    int row = -1;
};

// Ends the look at one thing - a row, a page, a map - whose bytes make no sense. Thrown and caught
// inside the check only.
struct Damage {
    const char* code;
    std::string sentence;
};

class Findings {
public:
    explicit Findings(CheckReport& report) : report_(report) {}

    void Error(const Spot& spot, const char* code, std::string sentence);
    void Warning(const Spot& spot, const char* code, std::string sentence);
    void Note(const Spot& spot, const char* code, std::string sentence);
    // Counts what was left out, of each code and table.
    void Finish();

private:
    void Add(Severity severity, const Spot& spot, const char* code, std::string sentence);

    CheckReport& report_;
    std::map<std::pair<std::string, std::string>, std::uint64_t> counts_;
};

}  // namespace jet
