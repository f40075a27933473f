// How long does it take to switch to another worksheet, until it is painted, as the zones grow
// more?
#include "bench/program/Questions.h"

namespace program_bench {
namespace {

constexpr int kRepetitions = 3;
constexpr double kMilliseconds = 30;

int Register(int zones) {
    const std::string name = "switch/" + std::to_string(zones);
    return Measure(name, kRepetitions, [zones] { return Play("switch", FileWithZones(zones)); });
}

[[maybe_unused]] const int kRegistered[] = {
    Register(10), Register(1000), Register(5000),
    Expect({{"switch/1000/introduction_to_zones", "", kMilliseconds},
            {"switch/1000/zones_to_values", "", kMilliseconds},
            {"switch/1000/values_to_costs", "", kMilliseconds},
            {"switch/1000/costs_to_introduction", "", kMilliseconds}})};

}  // namespace
}  // namespace program_bench
