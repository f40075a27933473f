// Runs of operations into which faults are planted, and how far they came.
#pragma once

#include <functional>
#include <initializer_list>
#include <string>
#include <vector>

#include "support/fault_file_system.h"

namespace tarn_test {

// How far a run came: states of the file by number, 0 being the one before the run.
struct Progress {
    std::size_t acknowledged = 0;
    std::size_t durable = 0;
    bool underWay = false;  // state acknowledged + 1 was begun
};

// Takes a step; one that fails is tried again `patience` times. Throws what it threw last when the
// process has stopped or patience is used up.
inline void Persist(FaultFileSystem& files, int patience, const std::function<void()>& step) {
    for (int left = patience;; --left) {
        try {
            step();
            return;
        } catch (const jet::Error&) {
            if (files.HasStopped() || left == 0) throw;
            files.Heal();
        }
    }
}

// Whether what was found is one of the states that may be there after a run: none older than what
// was acknowledged to the caller or, after a power cut, made durable; none newer than was begun.
template <typename State>
bool IsAcknowledgedState(const std::vector<State>& states, const State& found,
                         const Progress& progress, bool powerCut) {
    const std::size_t first = powerCut ? progress.durable : progress.acknowledged;
    const std::size_t last = progress.acknowledged + (progress.underWay ? 1 : 0);
    for (std::size_t i = first; i <= last; ++i) {
        if (states[i] == found) return true;
    }
    return false;
}

using Play = std::function<void(FaultFileSystem&, Progress&)>;
using Look = std::function<void(FaultFileSystem&, const Progress&, const std::string& where)>;

// Plays a run on copies of `files`, with one more step before the fault each time, until the run
// ends before the fault comes. Looks at what each run left.
inline void FailAtEveryStep(const FaultFileSystem& files, std::initializer_list<Fault> faults,
                            const Play& play, const Look& look) {
    for (const Fault fault : faults) {
        bool happened = true;
        for (int step = 1; happened; ++step) {
            const auto copy = files.Copy();
            copy->Arm(fault, step);
            Progress progress;
            play(*copy, progress);
            happened = copy->HasHappened();
            copy->Heal();
            look(*copy, progress, "step " + std::to_string(step));
        }
    }
}

}  // namespace tarn_test
