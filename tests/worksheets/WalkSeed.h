// Which of all walks a random walk takes: always the same one, unless TARN_SEED asks for another.
#pragma once

#include <QtGlobal>

inline unsigned WalkSeed() {
    constexpr unsigned kSeed = 20261121;
    bool set = false;
    const int seed = qEnvironmentVariableIntValue("TARN_SEED", &set);
    return set ? static_cast<unsigned>(seed) : kSeed;
}
