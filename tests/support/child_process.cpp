#include "support/child_process.h"

#ifdef _WIN32
#define WIN32_LEAN_AND_MEAN
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>
#else
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#endif

#include <cstdio>
#include <stdexcept>
#include <utility>

namespace tarn_test {

#ifdef _WIN32

class ChildProcess::Impl {
public:
    Impl(const std::filesystem::path& program, const std::filesystem::path& argument) {
        SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
        HANDLE writeEnd = nullptr;
        if (::CreatePipe(&readEnd_, &writeEnd, &inherited, 0) == 0) {
            throw std::runtime_error("no pipe could be made");
        }
        ::SetHandleInformation(readEnd_, HANDLE_FLAG_INHERIT, 0);
        STARTUPINFOW start{};
        start.cb = sizeof start;
        start.dwFlags = STARTF_USESTDHANDLES;
        start.hStdOutput = writeEnd;
        std::wstring line = L'"' + program.wstring() + L"\" \"" + argument.wstring() + L'"';
        const BOOL started = ::CreateProcessW(program.c_str(), line.data(), nullptr, nullptr, TRUE,
                                              0, nullptr, nullptr, &start, &process_);
        ::CloseHandle(writeEnd);
        if (started == 0) throw std::runtime_error(program.string() + " could not be started");
    }
    ~Impl() { ::CloseHandle(readEnd_); }

    bool Read(char& next) {
        DWORD got = 0;
        return ::ReadFile(readEnd_, &next, 1, &got, nullptr) != 0 && got == 1;
    }

    void Kill() {
        ::TerminateProcess(process_.hProcess, 1);
        ::WaitForSingleObject(process_.hProcess, INFINITE);
        ::CloseHandle(process_.hThread);
        ::CloseHandle(process_.hProcess);
    }

private:
    HANDLE readEnd_ = nullptr;
    PROCESS_INFORMATION process_{};
};

#else

class ChildProcess::Impl {
public:
    Impl(const std::filesystem::path& program, const std::filesystem::path& argument) {
        int ends[2];
        if (::pipe(ends) != 0) throw std::runtime_error("no pipe could be made");
        process_ = ::fork();
        if (process_ == 0) {
            ::dup2(ends[1], STDOUT_FILENO);
            ::close(ends[0]);
            ::close(ends[1]);
            ::execl(program.c_str(), program.c_str(), argument.c_str(), nullptr);
            ::_exit(127);
        }
        ::close(ends[1]);
        readEnd_ = ends[0];
        if (process_ < 0) throw std::runtime_error(program.string() + " could not be started");
    }
    ~Impl() { ::close(readEnd_); }

    bool Read(char& next) { return ::read(readEnd_, &next, 1) == 1; }

    void Kill() {
        ::kill(process_, SIGKILL);
        ::waitpid(process_, nullptr, 0);
    }

private:
    int readEnd_ = -1;
    pid_t process_ = -1;
};

#endif

ChildProcess::ChildProcess(const std::filesystem::path& program,
                           const std::filesystem::path& argument)
    : impl_(std::make_unique<Impl>(program, argument)) {}

ChildProcess::~ChildProcess() {
    Kill();
}

std::optional<std::string> ChildProcess::ReadLine() {
    std::string line;
    char next = 0;
    while (impl_->Read(next)) {
        if (next == '\n') return line;
        if (next != '\r') line += next;
    }
    // A line that a kill has cut short was never complete.
    return std::nullopt;
}

void ChildProcess::Kill() {
    if (std::exchange(lives_, false)) impl_->Kill();
}

}  // namespace tarn_test
