#include "bench/program/Questions.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>

#include "bench/Folder.h"
#include "bench/program/Display.h"
#include "jet/database.h"
#include "jet/recordset.h"

namespace program_bench {
namespace {

namespace fs = std::filesystem;

constexpr int kResources = 14;
constexpr int kCostClasses = 9;
constexpr int kLocationsPerKey = 100;

// The copy of the program folder, removed at the end.
class ProgramCopy {
public:
    ProgramCopy() { fs::copy(TARN_PROGRAM_FOLDER, folder_.Path(), fs::copy_options::recursive); }
    [[nodiscard]] fs::path operator/(const std::string& name) const {
        return folder_.Path() / name;
    }

private:
    bench::Folder folder_;
};

const ProgramCopy& ProgramFolder() {
    static const ProgramCopy folder;
    return folder;
}

void AddZone(jet::Recordset& zones, jet::Recordset& costs, jet::Recordset& values, int key) {
    zones.AddNew();
    zones.Set("Name", u"Zone " + std::u16string(1, char16_t(u'A' + key % 26)));
    zones.Set("RLCount", 1);
    zones.Update();
    for (int sequence = 1; sequence <= kCostClasses; ++sequence) {
        costs.AddNew();
        costs.Set("FMZKey", key);
        costs.Set("Sequence", sequence);
        costs.Update();
    }
    for (int resource = 1; resource <= kResources; ++resource) {
        values.AddNew();
        values.Set("FMZRLKey", key * kLocationsPerKey + 1);
        values.Set("ResourceNumber", resource);
        values.Update();
    }
}

std::vector<Target>& Targets() {
    static std::vector<Target> targets;
    return targets;
}

const Target* TargetOf(const std::string& answer) {
    const auto found =
        std::find_if(Targets().begin(), Targets().end(),
                     [&answer](const Target& each) { return each.answer == answer; });
    return found == Targets().end() ? nullptr : &*found;
}

double Median(std::vector<double> values) {
    if (values.empty()) return 0;
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

}  // namespace

std::string BareWindow() {
    return TARN_BARE_WINDOW;
}

std::string OurProgram() {
    return ProgramFolder() / "tarnprep";
}

std::string ReviewProgram() {
    return ProgramFolder() / "tarnreview";
}

std::string SampleFile() {
    for (const auto& entry : fs::directory_iterator(ProgramFolder() / "Costs")) {
        if (entry.path().filename().string().starts_with("UMFOR")) return entry.path();
    }
    throw std::runtime_error("the program folder has no sample");
}

std::string FileWithZones(int zones) {
    const fs::path file = ProgramFolder() / ("Costs/zones" + std::to_string(zones) + ".fcd");
    if (fs::exists(file)) return file;
    fs::copy_file(ProgramFolder() / "FCD.new", file);
    const auto database = jet::Database::Open(file);
    const auto list = database->OpenTable("FMZList");
    const auto costs = database->OpenTable("SuppressionPerAcreCost");
    const auto values = database->OpenTable("NVCPerAcre");
    for (int key = 1; key <= zones; ++key) AddZone(*list, *costs, *values, key);
    return file;
}

int Measure(const std::string& name, int repetitions, const std::function<Figures()>& take) {
    benchmark::RegisterBenchmark(name.c_str(),
                                 [take](benchmark::State& state) {
                                     for (auto _ : state) {
                                         for (const auto& [figure, value] : take()) {
                                             state.counters[figure] = value;
                                         }
                                         state.SetIterationTime(1);
                                     }
                                 })
        ->UseManualTime()
        ->Iterations(1)
        ->Repetitions(repetitions);
    return 0;
}

int Expect(std::vector<Target> targets) {
    for (Target& target : targets) Targets().push_back(std::move(target));
    return 0;
}

Figures Play(const std::string& scenario, const std::string& dataFile) {
    const fs::path results = ProgramFolder() / "probe.txt";
    Process program({OurProgram(), dataFile}, {{"QT_PLUGIN_PATH", TARN_PROBE_FOLDER},
                                               {"QT_QPA_GENERIC_PLUGINS", "tarnprobe"},
                                               {"TARN_PROBE_SCENARIO", scenario},
                                               {"TARN_PROBE_RESULTS", results}});
    program.WaitForEnd();
    std::ifstream lines(results);
    std::map<std::string, std::vector<double>> steps;
    std::string step;
    for (double milliseconds = 0; lines >> step >> milliseconds;) {
        steps[step].push_back(milliseconds);
    }
    Figures medians;
    for (const auto& [name, taken] : steps) medians[name] = Median(taken);
    return medians;
}

bool Answers::ReportContext(const Context& /*context*/) {
    return true;
}

void Answers::ReportRuns(const std::vector<Run>& runs) {
    for (const Run& run : runs) {
        if (run.run_type != Run::RT_Iteration || run.error_occurred) continue;
        for (const auto& [figure, counter] : run.counters) {
            taken_[run.run_name.function_name + "/" + figure].push_back(counter.value);
        }
    }
}

void Answers::Finalize() {
    std::printf("%-40s %10s %10s %8s %8s\n", "answer (median)", "figure", "floor", "ratio",
                "target");
    for (const auto& [answer, values] : taken_) {
        const double figure = Median(values);
        std::printf("%-40s %10.2f", answer.c_str(), figure);
        if (const Target* target = TargetOf(answer)) {
            if (target->floor.empty()) {
                std::printf(" %10s %8s %8.2f  %s", "", "", target->limit,
                            figure <= target->limit ? "met" : "missed");
            } else {
                const double floor = Median(taken_[target->floor]);
                std::printf(" %10.2f %8.2f %8.2f  %s", floor, figure / floor, target->limit,
                            figure <= target->limit * floor ? "met" : "missed");
            }
        }
        std::printf("\n");
    }
}

}  // namespace program_bench
