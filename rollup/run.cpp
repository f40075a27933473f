#include "rollup/run.h"

#include <algorithm>
#include <thread>

#include "rollup/ledger.h"
#include "rollup/reading.h"
#include "rollup/search.h"

namespace rollup {

namespace {

namespace fs = std::filesystem;

// Who asks gets an answer: what is not known to be gone is there.
bool IsGone(const fs::path& path) {
    std::error_code unknown;
    return fs::symlink_status(path, unknown).type() == fs::file_type::not_found;
}

std::uint64_t SizeOf(const fs::path& path) {
    std::error_code unknown;
    const std::uintmax_t size = fs::file_size(path, unknown);
    return unknown ? 0 : size;
}

class Runner {
public:
    Runner(Destination& destination, const Options& options, const Events& events)
        : destination_(destination), ledger_(destination), options_(options), events_(events) {}

    Summary Run(const std::vector<fs::path>& where) {
        FoundFiles found = FindFiles(where);
        for (const Unsearchable& folder : found.unsearchable) {
            events_.refused(PathText(folder.path), folder.reason);
        }
        summary_.unsearchable = found.unsearchable.size();
        if (options_.prune) {
            Prune();
        }
        events_.begins(found.files.size());
        ReadAll(found.files);
        destination_.Finish();
        return summary_;
    }

private:
    void Prune() {
        std::vector<std::string> gone;
        destination_.EachPath([&gone](const std::string& path) {
            if (IsGone(PathOfText(path))) {
                gone.push_back(path);
            }
        });
        for (const std::string& path : gone) {
            ledger_.Forget(path);
            ++summary_.pruned;
        }
    }

    void ReadAll(const std::vector<fs::path>& files) {
        const unsigned cores = std::max(1U, std::thread::hardware_concurrency());
        Reading reading(options_.jobs == 0 ? cores : options_.jobs, destination_);
        auto next = files.begin();
        while (!summary_.isStopped && (next != files.end() || !reading.IsEmpty())) {
            for (; next != files.end(); ++next) {
                const std::uint64_t bytes = SizeOf(*next);
                if (!reading.HasRoom(bytes)) {
                    break;
                }
                reading.Add({*next, ledger_.KnownHash(PathText(*next))}, bytes);
            }
            Enter(reading.Take());
            summary_.isStopped = events_.isStopped() && (next != files.end() || !reading.IsEmpty());
        }
    }

    void Enter(FileRead file) {
        ++summary_.files;
        if (file.isKnown) {
            ++summary_.unchanged;
            events_.fileDone(0);
            return;
        }
        const std::size_t rows = file.rows;
        const FileRow entered = ledger_.Enter(std::move(file));
        switch (entered.status) {
            case Status::kRead:
                ++summary_.read;
                summary_.rows += rows;
                break;
            case Status::kDuplicate:
                ++summary_.duplicates;
                break;
            case Status::kRefused:
                ++summary_.refused;
                events_.refused(entered.path, entered.reason.value_or(""));
                break;
        }
        events_.fileDone(rows);
    }

    Destination& destination_;
    Ledger ledger_;
    const Options& options_;
    const Events& events_;
    Summary summary_;
};

}  // namespace

Summary Run(const std::vector<fs::path>& where, Destination& destination, const Options& options,
            const Events& events) {
    return Runner(destination, options, events).Run(where);
}

}  // namespace rollup
