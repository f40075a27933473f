// Turns the runs of one program into a table of ratios: each peer's speed against ours, and how the
// time grows with the number of rows.
#pragma once

#include <benchmark/benchmark.h>

#include <map>
#include <string>
#include <vector>

namespace bench {

class Ratios : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run>& runs) override;
    void Finalize() override;

private:
    // question, rows, peer: rows per second.
    std::map<std::string, std::map<std::size_t, std::map<std::string, double>>> speeds_;
};

}  // namespace bench
