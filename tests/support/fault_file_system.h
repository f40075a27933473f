// A file system in memory that fails on demand and remembers what has really reached its medium.
//
// Every changing call (write, flush, truncation, creation, removal, renaming, flush of the folder)
// is a step and has a number. At the step that a test names, the fault happens. A fault that stops
// the machine makes every later call fail until Restart or CutPower bring it up again.
#pragma once

#include <cstdint>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "jet/error.h"
#include "jet/file.h"

namespace tarn_test {

enum class Fault {
    kNone,
    kFail,          // the call fails and does nothing
    kFailHalfDone,  // a write fails after half of its bytes; other calls fail
    kFailDone,      // the call does its work and fails all the same
    kFullDisk,      // this and all later writes that lengthen a file fail, until Heal
    kStop,          // the process ends before the call
    kStopHalfDone,  // it ends when half of a write's bytes are there
    kStopDone,      // it ends when the call is done
};

class FaultFileSystem final : public jet::FileSystem {
public:
    FaultFileSystem();
    ~FaultFileSystem() override;

    // Counts steps from here; the fault happens at step `at`, the first being 1.
    void Arm(Fault fault, int at);
    // One more, later in the same count.
    void AlsoArm(Fault fault, int at);
    // Of a write that is cut short, so many thousandths are there; half of it unless told.
    void CutAt(int thousandths);
    // Reading fails at the call with this number; 0 for never.
    void ArmReading(int at);
    // There is room on the disk again, and reading works.
    void Heal();
    [[nodiscard]] bool HasHappened() const;
    [[nodiscard]] bool HasStopped() const;
    [[nodiscard]] int Steps() const;
    [[nodiscard]] int Flushes() const;  // of files
    [[nodiscard]] int Reads() const;

    // The process is gone, the machine goes on: all that was written is there.
    void Restart();
    // The machine went off: of what was not flushed, any part is there, in pieces of 512 bytes.
    void CutPower(std::uint32_t seed);

    // A file's bytes as a reader sees them.
    [[nodiscard]] std::vector<std::byte> Contents(const std::string& path) const;
    void SetContents(const std::string& path, std::vector<std::byte> bytes);
    [[nodiscard]] std::vector<std::string> Names() const;
    // A second one in the same state, everything on its medium.
    [[nodiscard]] std::unique_ptr<FaultFileSystem> Copy() const;

    std::unique_ptr<jet::File> Open(const std::filesystem::path& path, jet::OpenMode mode) override;
    bool Exists(const std::filesystem::path& path) override;
    void Remove(const std::filesystem::path& path) override;
    void Rename(const std::filesystem::path& from, const std::filesystem::path& to) override;
    std::filesystem::path Resolve(const std::filesystem::path& path) override { return path; }
    void FlushFolder(const std::filesystem::path& folder) override;

    struct State;

private:
    std::shared_ptr<State> state_;
};

}  // namespace tarn_test
