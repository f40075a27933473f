// A program that a test starts, listens to and kills.
#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>

namespace tarn_test {

class ChildProcess {
public:
    // Starts a program with one argument.
    ChildProcess(const std::filesystem::path& program, const std::filesystem::path& argument);
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;
    ~ChildProcess();  // kills it if it lives

    // The next line that it writes; none when it has ended and all is read.
    [[nodiscard]] std::optional<std::string> ReadLine();
    // Ends it at once, without a word to it, and waits until it is gone.
    void Kill();

private:
    class Impl;
    std::unique_ptr<Impl> impl_;
    bool lives_ = true;
};

}  // namespace tarn_test
