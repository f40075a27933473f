// What the questions about the program share: the programs, their files, and the table of answers.
#pragma once

#include <benchmark/benchmark.h>

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "bench/program/Process.h"

namespace program_bench {

// The floor, and our program in a copy of its program folder: its logs and the data files that it
// opens are this run's own.
std::string BareWindow();
std::string OurProgram();
std::string ReviewProgram();  // TARN Review in the same copy
std::string SampleFile();
std::string FileWithZones(int zones);  // each with one location; made when first asked for

// Figures by name: milliseconds or kilobytes.
using Figures = std::map<std::string, double>;
// Registers a measurement, which is repeated in turn with all the others of the run. Its answers
// are called "NAME/FIGURE" and are the medians.
int Measure(const std::string& name, int repetitions, const std::function<Figures()>& take);

// What an answer should not exceed: `limit` times the answer `floor` or, without a floor, `limit`.
struct Target {
    std::string answer;
    std::string floor;
    double limit = 0;
};
int Expect(std::vector<Target> targets);

// Lets the probe play a scenario in our program: the median milliseconds of each step.
Figures Play(const std::string& scenario, const std::string& dataFile);

// Prints the answers beside what is expected of them.
class Answers : public benchmark::BenchmarkReporter {
public:
    bool ReportContext(const Context& context) override;
    void ReportRuns(const std::vector<Run>& runs) override;
    void Finalize() override;

private:
    std::map<std::string, std::vector<double>> taken_;
};

}  // namespace program_bench
