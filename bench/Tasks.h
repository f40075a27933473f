// The tasks of the table of figures, each on one peer and one number of rows.
#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "bench/Peer.h"

namespace bench {

// Calls `work` and adds the seconds it took. A function of its own, by whose name an instruction
// counter finds what is to be counted.
void Timed(double& seconds, const std::function<void()>& work);

struct Task {
    const char* name;
    Shape shape;
    bool filled;  // begins with a file of that many rows, else with an empty one
    bool writes;
    bool opens;  // opens the file itself
    // Gives the number of rows that the timed part handled.
    std::size_t (*run)(Peer& peer, const std::filesystem::path& file, std::size_t rows,
                       double& seconds);
};

const std::vector<Task>& Tasks();

// Makes the file that a task begins with, and closes it.
void Prepare(const Task& task, Peer& peer, const std::filesystem::path& file, std::size_t rows);
const Task& FindTask(const std::string& name);

// Runs the task on a file of its own and prints its line of the table: task, peer, rows, seconds,
// rows per second, peak of memory in KB. The file is made by a process of its own and the task runs
// in another one, so that the peak is the task's. Gives 0 when it went well, as a process does.
int PrintFigures(const Task& task, const std::string& peer, std::size_t rows);

// What stands above the lines.
void PrintHead();

// Runs `work` in a process of its own and gives what it gives, or 1 when it ends with an error.
int InOwnProcess(const std::function<int()>& work);
// The most memory that this process has had, in KB.
long PeakMemory();

}  // namespace bench
