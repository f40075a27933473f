#include "rollup/reading.h"

#include <exception>

namespace rollup {

namespace {

// Of files that are being read or wait to be written; their figures take a few times as much.
constexpr std::uint64_t kMostBytes = std::uint64_t{12} << 20;
constexpr std::size_t kMostEntriesForEachThread = 3;

}  // namespace

Reading::Reading(unsigned threads, const Destination& destination) : destination_(destination) {
    for (unsigned i = 0; i < threads; ++i) {
        threads_.emplace_back([this] { Work(); });
    }
}

Reading::~Reading() {
    {
        const std::lock_guard lock(mutex_);
        isEnding_ = true;
    }
    more_.notify_all();
    for (std::thread& thread : threads_) {
        thread.join();
    }
}

bool Reading::HasRoom(std::uint64_t bytes) const {
    return entries_.empty() || (bytes_ + bytes <= kMostBytes &&
                                entries_.size() < threads_.size() * kMostEntriesForEachThread);
}

void Reading::Add(Task task, std::uint64_t bytes) {
    entries_.emplace_back();
    Entry& entry = entries_.back();
    entry.task = std::move(task);
    entry.bytes = bytes;
    bytes_ += bytes;
    {
        const std::lock_guard lock(mutex_);
        waiting_.push_back(&entry);
    }
    more_.notify_one();
}

FileRead Reading::Take() {
    {
        std::unique_lock lock(mutex_);
        done_.wait(lock, [this] { return entries_.front().isDone; });
    }
    Entry entry = std::move(entries_.front());
    entries_.pop_front();
    bytes_ -= entry.bytes;
    if (entry.error) {
        std::rethrow_exception(entry.error);
    }
    return std::move(entry.result);
}

void Reading::Work() {
    for (;;) {
        Entry* entry = nullptr;
        {
            std::unique_lock lock(mutex_);
            more_.wait(lock, [this] { return isEnding_ || !waiting_.empty(); });
            if (isEnding_) {
                return;
            }
            entry = waiting_.front();
            waiting_.pop_front();
        }
        FileRead result;
        std::exception_ptr error;
        try {
            result = ReadForRollup(entry->task.path, entry->task.known, destination_);
        } catch (...) {
            error = std::current_exception();
        }
        {
            const std::lock_guard lock(mutex_);
            entry->result = std::move(result);
            entry->error = error;
            entry->isDone = true;
        }
        done_.notify_one();
    }
}

}  // namespace rollup
