// How long from a key press in a cell until what came of it is painted?
#include "bench/program/Questions.h"

namespace program_bench {
namespace {

constexpr int kRepetitions = 3;
constexpr double kMilliseconds = 8;

int Register(int zones) {
    const std::string name = "key/" + std::to_string(zones);
    int registered =
        Measure(name, kRepetitions, [zones] { return Play("type", FileWithZones(zones)); });
    for (const char* step : {"values_press", "values_release", "values_next_cell", "zones_press",
                             "zones_release", "zones_next_cell"}) {
        registered += Expect({{name + "/" + step, "", kMilliseconds}});
    }
    return registered;
}

[[maybe_unused]] const int kRegistered[] = {Register(10), Register(1000), Register(5000)};

}  // namespace
}  // namespace program_bench
