#include "faults/faults.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <limits.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

namespace {

using tarn_faults::Mode;
using tarn_faults::Switchboard;

template <typename Function>
Function* Next(Function* /*type*/, const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

Switchboard* MapFile() {
    const char* path = std::getenv("TARN_FAULTS");
    if (path == nullptr) return nullptr;
    static auto* const really = Next(&::open, "open");
    const int descriptor = really(path, O_RDWR | O_CLOEXEC);
    if (descriptor < 0) return nullptr;
    void* memory =
        ::mmap(nullptr, sizeof(Switchboard), PROT_READ | PROT_WRITE, MAP_SHARED, descriptor, 0);
    ::close(descriptor);
    return memory == MAP_FAILED ? nullptr : static_cast<Switchboard*>(memory);
}

Switchboard& Board() {
    static Switchboard own;
    static Switchboard* const mapped = MapFile();
    return mapped != nullptr ? *mapped : own;
}

enum class Verdict { kPass, kFail, kHalf };

Verdict Judge(Switchboard& board) {
    ++board.seen;
    if (board.mode == Mode::kCount || board.seen < board.nth) return Verdict::kPass;
    if (board.mode == Mode::kOnce && board.seen > board.nth) return Verdict::kPass;
    ++board.happened;
    if (board.mode == Mode::kShort && board.seen == board.nth) return Verdict::kHalf;
    errno = board.error;
    return Verdict::kFail;
}

Verdict ForPath(tarn_faults::Call call, const char* path) {
    Switchboard& board = Board();
    if (board.mode == Mode::kOff || (board.calls & call) == 0) return Verdict::kPass;
    if (path == nullptr || std::strstr(path, board.pattern) == nullptr) return Verdict::kPass;
    return Judge(board);
}

Verdict ForDescriptor(tarn_faults::Call call, int descriptor) {
    Switchboard& board = Board();
    if (board.mode == Mode::kOff || (board.calls & call) == 0) return Verdict::kPass;
    char name[64];
    std::snprintf(name, sizeof name, "/proc/self/fd/%d", descriptor);
    char path[PATH_MAX + 1];
    const ssize_t length = ::readlink(name, path, PATH_MAX);
    if (length <= 0 || path[0] != '/') return Verdict::kPass;  // a pipe or the like
    path[length] = '\0';
    return ForPath(call, path);
}

bool IsForWriting(int flags) {
    return (flags & O_ACCMODE) != O_RDONLY || (flags & (O_CREAT | O_TRUNC)) != 0;
}

Verdict ForOpening(const char* path, int flags) {
    const auto call = IsForWriting(flags) ? tarn_faults::kOpen : tarn_faults::kOpenAny;
    return ForPath(call, path);
}

// A write that takes half says so, and the caller then meets the failure of the next one.
std::size_t Taken(Verdict verdict, std::size_t size) {
    return verdict == Verdict::kHalf ? (size + 1) / 2 : size;
}

// The same of a write of several pieces.
std::vector<iovec> TakenOf(Verdict verdict, const iovec* pieces, int count) {
    std::vector<iovec> taken(pieces, pieces + count);
    std::size_t size = 0;
    for (const iovec& piece : taken) size += piece.iov_len;
    std::size_t left = Taken(verdict, size);
    for (iovec& piece : taken) {
        piece.iov_len = std::min(piece.iov_len, left);
        left -= piece.iov_len;
    }
    return taken;
}

int ModeOf(int flags, std::va_list arguments) {
    return (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(arguments, int) : 0;
}

}  // namespace

extern "C" {

Switchboard* TarnFaults() {
    return &Board();
}

int open(const char* path, int flags, ...) {
    static auto* const really = Next(&::open, "open");
    std::va_list arguments;
    va_start(arguments, flags);
    const int mode = ModeOf(flags, arguments);
    va_end(arguments);
    return ForOpening(path, flags) == Verdict::kPass ? really(path, flags, mode) : -1;
}

int open64(const char* path, int flags, ...) {
    static auto* const really = Next(&::open64, "open64");
    std::va_list arguments;
    va_start(arguments, flags);
    const int mode = ModeOf(flags, arguments);
    va_end(arguments);
    return ForOpening(path, flags) == Verdict::kPass ? really(path, flags, mode) : -1;
}

int openat(int folder, const char* path, int flags, ...) {
    static auto* const really = Next(&::openat, "openat");
    std::va_list arguments;
    va_start(arguments, flags);
    const int mode = ModeOf(flags, arguments);
    va_end(arguments);
    return ForOpening(path, flags) == Verdict::kPass ? really(folder, path, flags, mode) : -1;
}

int openat64(int folder, const char* path, int flags, ...) {
    static auto* const really = Next(&::openat64, "openat64");
    std::va_list arguments;
    va_start(arguments, flags);
    const int mode = ModeOf(flags, arguments);
    va_end(arguments);
    return ForOpening(path, flags) == Verdict::kPass ? really(folder, path, flags, mode) : -1;
}

ssize_t read(int descriptor, void* into, size_t size) {
    static auto* const really = Next(&::read, "read");
    const Verdict verdict = ForDescriptor(tarn_faults::kRead, descriptor);
    return verdict == Verdict::kFail ? -1 : really(descriptor, into, Taken(verdict, size));
}

ssize_t pread(int descriptor, void* into, size_t size, off_t at) {
    static auto* const really = Next(&::pread, "pread");
    const Verdict verdict = ForDescriptor(tarn_faults::kRead, descriptor);
    return verdict == Verdict::kFail ? -1 : really(descriptor, into, Taken(verdict, size), at);
}

ssize_t write(int descriptor, const void* from, size_t size) {
    static auto* const really = Next(&::write, "write");
    const Verdict verdict = ForDescriptor(tarn_faults::kWrite, descriptor);
    return verdict == Verdict::kFail ? -1 : really(descriptor, from, Taken(verdict, size));
}

ssize_t pwrite(int descriptor, const void* from, size_t size, off_t at) {
    static auto* const really = Next(&::pwrite, "pwrite");
    const Verdict verdict = ForDescriptor(tarn_faults::kWrite, descriptor);
    return verdict == Verdict::kFail ? -1 : really(descriptor, from, Taken(verdict, size), at);
}

ssize_t pwrite64(int descriptor, const void* from, size_t size, off64_t at) {
    static auto* const really = Next(&::pwrite64, "pwrite64");
    const Verdict verdict = ForDescriptor(tarn_faults::kWrite, descriptor);
    return verdict == Verdict::kFail ? -1 : really(descriptor, from, Taken(verdict, size), at);
}

ssize_t pwritev(int descriptor, const iovec* pieces, int count, off_t at) {
    static auto* const really = Next(&::pwritev, "pwritev");
    const Verdict verdict = ForDescriptor(tarn_faults::kWrite, descriptor);
    if (verdict == Verdict::kFail) return -1;
    return really(descriptor, TakenOf(verdict, pieces, count).data(), count, at);
}

ssize_t pwritev64(int descriptor, const iovec* pieces, int count, off64_t at) {
    static auto* const really = Next(&::pwritev64, "pwritev64");
    const Verdict verdict = ForDescriptor(tarn_faults::kWrite, descriptor);
    if (verdict == Verdict::kFail) return -1;
    return really(descriptor, TakenOf(verdict, pieces, count).data(), count, at);
}

int fsync(int descriptor) {
    static auto* const really = Next(&::fsync, "fsync");
    const Verdict verdict = ForDescriptor(tarn_faults::kFlush, descriptor);
    return verdict == Verdict::kPass ? really(descriptor) : -1;
}

int fdatasync(int descriptor) {
    static auto* const really = Next(&::fdatasync, "fdatasync");
    const Verdict verdict = ForDescriptor(tarn_faults::kFlush, descriptor);
    return verdict == Verdict::kPass ? really(descriptor) : -1;
}

int ftruncate(int descriptor, off_t size) {
    static auto* const really = Next(&::ftruncate, "ftruncate");
    const Verdict verdict = ForDescriptor(tarn_faults::kResize, descriptor);
    return verdict == Verdict::kPass ? really(descriptor, size) : -1;
}

int ftruncate64(int descriptor, off64_t size) {
    static auto* const really = Next(&::ftruncate64, "ftruncate64");
    const Verdict verdict = ForDescriptor(tarn_faults::kResize, descriptor);
    return verdict == Verdict::kPass ? really(descriptor, size) : -1;
}

int rename(const char* from, const char* to) {
    static auto* const really = Next(&::rename, "rename");
    return ForPath(tarn_faults::kName, to) == Verdict::kPass ? really(from, to) : -1;
}

int unlink(const char* path) {
    static auto* const really = Next(&::unlink, "unlink");
    return ForPath(tarn_faults::kName, path) == Verdict::kPass ? really(path) : -1;
}

int linkat(int fromFolder, const char* from, int toFolder, const char* to, int flags) {
    static auto* const really = Next(&::linkat, "linkat");
    return ForPath(tarn_faults::kName, to) == Verdict::kPass
               ? really(fromFolder, from, toFolder, to, flags)
               : -1;
}

}  // extern "C"
