#include "rollup/search.h"

#include <algorithm>
#include <set>
#include <system_error>

#include "season/text.h"

namespace rollup {

namespace {

namespace fs = std::filesystem;

// One name for each file, whatever way led to it; of a link that leads nowhere its own.
fs::path NameOf(const fs::path& path) {
    std::error_code failed;
    fs::path name = fs::canonical(path, failed);
    if (failed) {
        name = fs::absolute(path, failed).lexically_normal();
    }
    return name;
}

bool IsDataFileName(const fs::path& path) {
    return season::Folded(path.extension().string()) == ".fcd";
}

class Search {
public:
    void Look(const fs::path& path) {
        std::error_code failed;
        const fs::file_status status = fs::status(path, failed);
        if (status.type() == fs::file_type::directory) {
            Enter(path);
        } else if (status.type() == fs::file_type::not_found) {
            found_.unsearchable.push_back(
                {fs::absolute(path, failed), "There is no such file or folder."});
        } else {
            found_.files.push_back(NameOf(path));
        }
    }
    FoundFiles Take() {
        std::sort(found_.files.begin(), found_.files.end());
        found_.files.erase(std::unique(found_.files.begin(), found_.files.end()),
                           found_.files.end());
        return std::move(found_);
    }

private:
    void Enter(const fs::path& folder) {
        fs::path name = NameOf(folder);
        // A link may lead to a folder that it lies in.
        if (!entered_.insert(name).second) {
            return;
        }
        std::error_code failed;
        fs::directory_iterator entry(name, failed);
        for (; !failed && entry != fs::directory_iterator(); entry.increment(failed)) {
            std::error_code unknown;
            if (entry->is_directory(unknown)) {
                Enter(entry->path());
            } else if (IsDataFileName(entry->path())) {
                found_.files.push_back(NameOf(entry->path()));
            }
        }
        if (failed) {
            found_.unsearchable.push_back(
                {std::move(name), "The folder cannot be searched: " + failed.message() + "."});
        }
    }

    FoundFiles found_;
    std::set<fs::path> entered_;
};

}  // namespace

FoundFiles FindFiles(const std::vector<fs::path>& where) {
    Search search;
    for (const fs::path& path : where) {
        search.Look(path);
    }
    return search.Take();
}

}  // namespace rollup
