// Changes to the files of a folder that wait to be made together.
//
// A new file is written under a name of its own and gets its place when the changes are made; by
// then it is on the disk and not only on its way there. Disks take many files at once hardly slower
// than one, which is why changes wait for each other.
#pragma once

#include <filesystem>
#include <map>
#include <optional>

namespace rollup {

class CsvChanges {
public:
    // What comes to a place; a file that waited for it goes.
    void Put(const std::filesystem::path& place, const std::filesystem::path& file);
    void Remove(const std::filesystem::path& place);
    // Changes made after these.
    void Add(CsvChanges& later);

    // What will be of a place: the file that comes to it, or nothing for one that goes; null where
    // no change waits.
    [[nodiscard]] const std::optional<std::filesystem::path>* Find(
        const std::filesystem::path& place) const;

    // The new files get their places; the files that go are removed. What was done is on the disk
    // when these return. They throw std::filesystem::filesystem_error and jet::Error.
    void MakeComing() const;
    void MakeGoing() const;
    // Nothing waits any longer.
    void Forget() noexcept { changes_.clear(); }
    // The same, and the files that waited go.
    void Drop() noexcept;

private:
    std::map<std::filesystem::path, std::optional<std::filesystem::path>> changes_;
};

}  // namespace rollup
