// Several threads that read data files, whose results come in the order of the tasks.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <filesystem>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "rollup/reader.h"

namespace rollup {

class Reading {
public:
    Reading(unsigned threads, const Destination& destination);
    Reading(const Reading&) = delete;
    Reading& operator=(const Reading&) = delete;
    ~Reading();  // waits for the files that are being read; the rest is not begun

    struct Task {
        std::filesystem::path path;
        std::string known;  // see ReadForRollup
    };
    // Whether another file of this size can be begun without taking more memory than there should
    // be taken; one always can.
    [[nodiscard]] bool HasRoom(std::uint64_t bytes) const;
    void Add(Task task, std::uint64_t bytes);
    [[nodiscard]] bool IsEmpty() const { return entries_.empty(); }
    // The result of the oldest task, when it is there. Throws what its reading threw.
    FileRead Take();

private:
    struct Entry {
        Task task;
        std::uint64_t bytes = 0;
        bool isDone = false;
        FileRead result;
        std::exception_ptr error;
    };

    void Work();

    const Destination& destination_;
    // Entries are added and taken by the owner's thread; what is in them is guarded.
    std::deque<Entry> entries_;
    std::deque<Entry*> waiting_;
    std::uint64_t bytes_ = 0;
    bool isEnding_ = false;
    std::mutex mutex_;
    std::condition_variable more_;
    std::condition_variable done_;
    std::vector<std::thread> threads_;
};

}  // namespace rollup
