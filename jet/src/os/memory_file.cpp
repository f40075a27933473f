// Files that live in memory.
#include <algorithm>
#include <cstring>
#include <filesystem>
#include <map>
#include <vector>

#include "jet/error.h"
#include "jet/file.h"

namespace jet {

namespace {

struct Contents {
    std::vector<std::byte> bytes;
    int sharedLocks = 0;
    bool exclusiveLock = false;
};

class MemoryFile final : public File {
public:
    MemoryFile(std::shared_ptr<Contents> contents, bool writable)
        : contents_(std::move(contents)), writable_(writable) {}
    ~MemoryFile() override { Unlock(); }

    void Read(std::uint64_t offset, std::span<std::byte> into) override {
        const auto& bytes = contents_->bytes;
        if (offset > bytes.size() || into.size() > bytes.size() - offset) {
            throw Error(ErrorKind::kIo, "The file is shorter than expected.");
        }
        if (!into.empty()) std::memcpy(into.data(), bytes.data() + offset, into.size());
    }

    void Write(std::uint64_t offset, std::span<const std::byte> from) override {
        RequireWritable();
        auto& bytes = contents_->bytes;
        if (bytes.size() < offset + from.size()) bytes.resize(offset + from.size());
        if (!from.empty()) std::memcpy(bytes.data() + offset, from.data(), from.size());
    }

    std::uint64_t Size() override { return contents_->bytes.size(); }

    void Truncate(std::uint64_t size) override {
        RequireWritable();
        contents_->bytes.resize(size);
    }

    void Flush() override {}

    bool TryLock(bool exclusive) override {
        Unlock();
        if (contents_->exclusiveLock || (exclusive && contents_->sharedLocks > 0)) return false;
        if (exclusive) {
            contents_->exclusiveLock = true;
        } else {
            ++contents_->sharedLocks;
        }
        lock_ = exclusive ? Lock::kExclusive : Lock::kShared;
        return true;
    }

private:
    enum class Lock { kNone, kShared, kExclusive };

    void RequireWritable() const {
        if (!writable_) throw Error(ErrorKind::kReadOnly, "The file was opened for reading only.");
    }

    void Unlock() {
        if (lock_ == Lock::kExclusive) contents_->exclusiveLock = false;
        if (lock_ == Lock::kShared) --contents_->sharedLocks;
        lock_ = Lock::kNone;
    }

    std::shared_ptr<Contents> contents_;
    bool writable_;
    Lock lock_ = Lock::kNone;
};

class MemoryFileSystem final : public FileSystem {
public:
    std::unique_ptr<File> Open(const std::filesystem::path& path, OpenMode mode) override {
        const bool writable = mode != OpenMode::kReadOnly;
        const auto found = files_.find(path);
        if (found == files_.end()) {
            if (mode == OpenMode::kReadOnly || mode == OpenMode::kReadWrite) {
                throw Error(ErrorKind::kFileNotFound, "The file cannot be found.");
            }
            auto contents = std::make_shared<Contents>();
            // Entered last, so that a file that could not be opened is not there.
            auto file = std::make_unique<MemoryFile>(contents, writable);
            files_.emplace(path, std::move(contents));
            return file;
        }
        if (mode == OpenMode::kCreateNew) {
            throw Error(ErrorKind::kAlreadyExists, "The file exists already.");
        }
        return std::make_unique<MemoryFile>(found->second, writable);
    }

    bool Exists(const std::filesystem::path& path) override { return files_.contains(path); }

    void Remove(const std::filesystem::path& path) override { files_.erase(path); }

    void Rename(const std::filesystem::path& from, const std::filesystem::path& to) override {
        const auto found = files_.find(from);
        if (found == files_.end()) {
            throw Error(ErrorKind::kFileNotFound, "The file cannot be found.");
        }
        if (from == to) return;
        files_[to] = found->second;
        files_.erase(found);
    }

    std::filesystem::path Resolve(const std::filesystem::path& path) override { return path; }

    void FlushFolder(const std::filesystem::path&) override {}

private:
    std::map<std::filesystem::path, std::shared_ptr<Contents>> files_;
};

}  // namespace

std::unique_ptr<FileSystem> MakeMemoryFileSystem() {
    return std::make_unique<MemoryFileSystem>();
}

}  // namespace jet
