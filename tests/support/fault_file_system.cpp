#include "support/fault_file_system.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <map>

namespace tarn_test {

namespace {

constexpr std::size_t kSector = 512;

using Bytes = std::vector<std::byte>;

// One change that the medium may or may not have.
struct Pending {
    bool truncation = false;
    std::uint64_t offset = 0;  // of a write; the new size of a truncation
    Bytes bytes;
};

struct Node {
    Bytes now;
    Bytes onMedium;
    std::vector<Pending> pending;
    int shared = 0;
    bool exclusive = false;
};

using Folder = std::map<std::string, std::shared_ptr<Node>>;

void Put(Bytes& target, std::uint64_t offset, const std::byte* from, std::size_t size) {
    if (target.size() < offset + size) target.resize(offset + size);
    if (size > 0) std::memcpy(target.data() + offset, from, size);
}

void Bring(const Pending& change, Bytes& medium) {
    if (change.truncation) {
        medium.resize(change.offset);
    } else {
        Put(medium, change.offset, change.bytes.data(), change.bytes.size());
    }
}

}  // namespace

struct FaultFileSystem::State {
    Folder now;
    std::vector<Folder> sinceFlush;  // states of the folder that the medium may have
    std::map<int, Fault> faults;     // by step
    int readFaultAt = 0;
    std::size_t cutAt = 500;  // thousandths
    int steps = 0;
    int flushes = 0;
    int reads = 0;
    bool happened = false;
    bool stopped = false;
    bool full = false;

    State() : sinceFlush(1) {}

    static void Fail() { throw jet::Error(jet::ErrorKind::kIo, "A fault that the test injected."); }

    void RequireRunning() const {
        if (stopped) Fail();
    }

    // Runs one step. `whole` does it, `half` does a part of it.
    void Step(const std::function<void()>& whole, const std::function<void()>& half) {
        RequireRunning();
        const auto planned = faults.find(++steps);
        if (planned == faults.end()) {
            whole();
            return;
        }
        const Fault fault = planned->second;
        happened = true;
        if (fault == Fault::kFullDisk) {
            full = true;
            whole();  // fails by itself if it needs room
            return;
        }
        if (fault == Fault::kFailHalfDone || fault == Fault::kStopHalfDone) half();
        if (fault == Fault::kFailDone || fault == Fault::kStopDone) whole();
        if (fault == Fault::kStop || fault == Fault::kStopHalfDone || fault == Fault::kStopDone) {
            stopped = true;
        }
        Fail();
    }

    void FolderChanged() { sinceFlush.push_back(now); }
};

namespace {

class FaultFile final : public jet::File {
public:
    FaultFile(std::shared_ptr<FaultFileSystem::State> state, std::shared_ptr<Node> node)
        : state_(std::move(state)), node_(std::move(node)) {}
    ~FaultFile() override { Unlock(); }

    void Read(std::uint64_t offset, std::span<std::byte> into) override {
        state_->RequireRunning();
        if (++state_->reads == state_->readFaultAt) FaultFileSystem::State::Fail();
        if (offset > node_->now.size() || into.size() > node_->now.size() - offset) {
            FaultFileSystem::State::Fail();
        }
        if (!into.empty()) std::memcpy(into.data(), node_->now.data() + offset, into.size());
    }

    void Write(std::uint64_t offset, std::span<const std::byte> from) override {
        const auto put = [&](std::size_t size) {
            if (state_->full && offset + size > node_->now.size()) {
                // A full disk takes what still fits into the last block.
                Apply(offset, from.first(size / 3));
                throw jet::Error(jet::ErrorKind::kDiskFull, "There is no room left on the disk.");
            }
            Apply(offset, from.first(size));
        };
        state_->Step([&] { put(from.size()); }, [&] { put(from.size() * state_->cutAt / 1000); });
    }

    std::uint64_t Size() override {
        state_->RequireRunning();
        return node_->now.size();
    }

    void Truncate(std::uint64_t size) override {
        state_->Step(
            [&] {
                node_->now.resize(size);
                node_->pending.push_back({.truncation = true, .offset = size, .bytes = {}});
            },
            [] {});
    }

    void Flush() override {
        ++state_->flushes;
        // A flush that fails loses what it should have brought to the medium: the system counts it
        // as written and never tries again.
        const auto planned = state_->faults.find(state_->steps + 1);
        if (planned != state_->faults.end() && planned->second == Fault::kFail) {
            node_->pending.clear();
        }
        state_->Step(
            [&] {
                for (const Pending& change : node_->pending) Bring(change, node_->onMedium);
                node_->pending.clear();
            },
            [] {});
    }

    bool TryLock(bool exclusive) override {
        Unlock();
        if (node_->exclusive || (exclusive && node_->shared > 0)) return false;
        lock_ = exclusive ? 2 : 1;
        node_->exclusive = exclusive;
        node_->shared += exclusive ? 0 : 1;
        return true;
    }

private:
    void Apply(std::uint64_t offset, std::span<const std::byte> from) {
        Put(node_->now, offset, from.data(), from.size());
        node_->pending.push_back(
            {.truncation = false, .offset = offset, .bytes = Bytes(from.begin(), from.end())});
    }

    void Unlock() {
        if (lock_ == 2) node_->exclusive = false;
        if (lock_ == 1) --node_->shared;
        lock_ = 0;
    }

    std::shared_ptr<FaultFileSystem::State> state_;
    std::shared_ptr<Node> node_;
    int lock_ = 0;
};

// What the medium holds after the power went: every pending piece is there or not, by the draw.
void LosePart(Node& node, std::mt19937& draw) {
    Bytes left = node.onMedium;
    const auto favor = draw() % 5;  // of 4: how likely a piece is there
    for (const Pending& change : node.pending) {
        if (change.truncation) {
            if (draw() % 4 < favor) left.resize(change.offset);
            continue;
        }
        for (std::size_t at = 0; at < change.bytes.size();) {
            const std::uint64_t offset = change.offset + at;
            const std::size_t size =
                std::min<std::size_t>(change.bytes.size() - at, kSector - offset % kSector);
            if (draw() % 4 < favor) Put(left, offset, change.bytes.data() + at, size);
            at += size;
        }
    }
    node.pending.clear();
    node.now = left;
    node.onMedium = left;
}

}  // namespace

FaultFileSystem::FaultFileSystem() : state_(std::make_shared<State>()) {}
FaultFileSystem::~FaultFileSystem() = default;

void FaultFileSystem::Arm(Fault fault, int at) {
    Heal();
    state_->faults.clear();
    AlsoArm(fault, at);
    state_->steps = 0;
    state_->flushes = 0;
    state_->reads = 0;
    state_->happened = false;
}

void FaultFileSystem::AlsoArm(Fault fault, int at) {
    if (fault != Fault::kNone) state_->faults[at] = fault;
}

void FaultFileSystem::CutAt(int thousandths) {
    state_->cutAt = static_cast<std::size_t>(thousandths);
}

void FaultFileSystem::ArmReading(int at) {
    state_->readFaultAt = at;
    state_->reads = 0;
}

void FaultFileSystem::Heal() {
    state_->readFaultAt = 0;
    state_->full = false;
}

bool FaultFileSystem::HasHappened() const {
    return state_->happened;
}
bool FaultFileSystem::HasStopped() const {
    return state_->stopped;
}
int FaultFileSystem::Steps() const {
    return state_->steps;
}
int FaultFileSystem::Flushes() const {
    return state_->flushes;
}
int FaultFileSystem::Reads() const {
    return state_->reads;
}

void FaultFileSystem::Restart() {
    Heal();
    state_->faults.clear();
    state_->stopped = false;
}

void FaultFileSystem::CutPower(std::uint32_t seed) {
    Restart();
    std::mt19937 draw(seed);
    state_->now = state_->sinceFlush[draw() % state_->sinceFlush.size()];
    state_->sinceFlush.assign(1, state_->now);
    for (auto& [name, node] : state_->now) LosePart(*node, draw);
}

std::vector<std::byte> FaultFileSystem::Contents(const std::string& path) const {
    const auto found = state_->now.find(path);
    return found == state_->now.end() ? Bytes() : found->second->now;
}

void FaultFileSystem::SetContents(const std::string& path, std::vector<std::byte> bytes) {
    auto& node = state_->now[path];
    if (!node) node = std::make_shared<Node>();
    node->now = bytes;
    node->onMedium = std::move(bytes);
    node->pending.clear();
    state_->sinceFlush.assign(1, state_->now);
}

std::vector<std::string> FaultFileSystem::Names() const {
    std::vector<std::string> names;
    for (const auto& [name, node] : state_->now) names.push_back(name);
    return names;
}

std::unique_ptr<FaultFileSystem> FaultFileSystem::Copy() const {
    auto copy = std::make_unique<FaultFileSystem>();
    for (const auto& [name, node] : state_->now) copy->SetContents(name, node->now);
    return copy;
}

std::unique_ptr<jet::File> FaultFileSystem::Open(const std::filesystem::path& path,
                                                 jet::OpenMode mode) {
    state_->RequireRunning();
    const std::string name = path.string();
    const bool exists = state_->now.contains(name);
    const bool creates = mode == jet::OpenMode::kCreateNew || mode == jet::OpenMode::kCreateOrOpen;
    if (exists && mode == jet::OpenMode::kCreateNew) {
        throw jet::Error(jet::ErrorKind::kAlreadyExists, "The file exists already.");
    }
    if (!exists && !creates) {
        throw jet::Error(jet::ErrorKind::kFileNotFound, "The file cannot be found.");
    }
    if (!exists) {
        state_->Step(
            [&] {
                state_->now[name] = std::make_shared<Node>();
                state_->FolderChanged();
            },
            [] {});
    }
    return std::make_unique<FaultFile>(state_, state_->now[name]);
}

bool FaultFileSystem::Exists(const std::filesystem::path& path) {
    state_->RequireRunning();
    return state_->now.contains(path.string());
}

void FaultFileSystem::Remove(const std::filesystem::path& path) {
    state_->Step(
        [&] {
            state_->now.erase(path.string());
            state_->FolderChanged();
        },
        [] {});
}

void FaultFileSystem::Rename(const std::filesystem::path& from, const std::filesystem::path& to) {
    state_->Step(
        [&] {
            state_->now[to.string()] = state_->now[from.string()];
            if (from != to) state_->now.erase(from.string());
            state_->FolderChanged();
        },
        [] {});
}

void FaultFileSystem::FlushFolder(const std::filesystem::path&) {
    state_->Step([&] { state_->sinceFlush.assign(1, state_->now); }, [] {});
}

}  // namespace tarn_test
