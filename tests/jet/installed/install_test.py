#!/usr/bin/env python3
"""Configures, builds and installs the engine alone, and builds the program at the end of its README
against the installed copy, with flags of its own: with CMake and with pkg-config."""
import re
import shlex
import shutil
import subprocess
import sys
import tempfile
from pathlib import Path

ENGINE = Path(__file__).resolve().parents[3] / "jet"
# Headers that other programs include must not make them change their own flags.
STRICT = ["-Wall", "-Wextra", "-Wpedantic", "-Wconversion", "-Wsign-conversion", "-Wshadow",
          "-Wold-style-cast", "-Wnon-virtual-dtor", "-Werror"]
CONSUMER = """cmake_minimum_required(VERSION 3.25)
project(consumer LANGUAGES C CXX)
find_package(jet 1 REQUIRED)
get_target_property(options jet::jet INTERFACE_COMPILE_OPTIONS)
if(options)
  message(FATAL_ERROR "the library hands on flags: ${options}")
endif()
add_executable(zones zones.cpp)
target_link_libraries(zones PRIVATE jet::jet)
# A program in C; its interface is in a library of its own.
add_executable(asks_version asks_version.c)
target_link_libraries(asks_version PRIVATE jet::jet_c)
# A module takes the engine in.
add_library(module MODULE module.cpp)
target_link_libraries(module PRIVATE jet::jet)
"""
MODULE = """#include "jet/database.h"
#include "jet/query.h"
extern "C" bool Has(const char* file, const char* table) {
    return jet::Database::Open(file)->HasTable(table);
}
extern "C" int Count(const char* file, const char* table) {
    return jet::Database::Open(file)->OpenQuery({.table = table})->RecordCount();
}
"""


# Its own files, in a program that is compiled in other ways than the library.
OWN_FILES = """#include <memory>
#include "jet/database.h"
#include "jet/recordset.h"
using Path = std::filesystem::path;
struct OwnFile final : jet::File {
    explicit OwnFile(std::unique_ptr<jet::File> other) : file(std::move(other)) {}
    void Read(std::uint64_t at, std::span<std::byte> into) override { file->Read(at, into); }
    void Write(std::uint64_t at, std::span<const std::byte> from) override { file->Write(at, from); }
    std::uint64_t Size() override { return file->Size(); }
    void Truncate(std::uint64_t size) override { file->Truncate(size); }
    void Flush() override { file->Flush(); }
    bool TryLock(bool exclusive) override { return file->TryLock(exclusive); }
    std::intptr_t Handle() const override { return file->Handle(); }
    std::unique_ptr<jet::File> file;
};
struct OwnFiles final : jet::FileSystem {
    std::unique_ptr<jet::File> Open(const Path& path, jet::OpenMode mode) override {
        return std::make_unique<OwnFile>(host.Open(path, mode));
    }
    std::unique_ptr<jet::File> CreateLike(const Path& path, jet::File& model) override {
        return std::make_unique<OwnFile>(host.CreateLike(path, model));
    }
    bool Exists(const Path& path) override { return host.Exists(path); }
    void Remove(const Path& path) override { host.Remove(path); }
    void Rename(const Path& from, const Path& to) override { host.Rename(from, to); }
    Path Resolve(const Path& path) override { return host.Resolve(path); }
    void FlushFolder(const Path& folder) override { host.FlushFolder(folder); }
    jet::FileSystem& host = jet::HostFileSystem();
};
int main() {
    namespace fs = std::filesystem;
    OwnFiles files;
    jet::Database::Create("own.mdb", jet::Version::kJet4, files)->Close();
    fs::permissions("own.mdb", fs::perms(0640));
    const auto database = jet::Database::Open("own.mdb", {}, files);
    database->CreateTable({"Zones", {{"Zone"}}, {}});
    const auto rights = fs::status("own.mdb-log").permissions();
    try {
        database->CreateTable({"Zones", {{"Zone"}}, {}});
    } catch (const jet::Error& error) {
        return rights == fs::perms(0640) && error.Number() == 3010 ? 0 : 1;
    }
    return 2;
}
"""
FLAGS_OF_OTHERS = ["-fno-rtti", "-funsigned-char", "-D_GLIBCXX_ASSERTIONS", "-fshort-enums", "-O2",
                   "-fvisibility=hidden"]


C_PROGRAM = """#include "jet/jet.h"
#include <stdio.h>
int main(void) {
    puts(jet_version());
    return 0;
}
"""


def run(*command, folder=None):
    done = subprocess.run([str(part) for part in command], cwd=folder, text=True, check=False,
                          stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
    if done.returncode != 0:
        print(done.stdout)
        sys.exit(f"failed: {' '.join(map(str, command))}")
    return done.stdout


def expect(found, wanted):
    if found != wanted:
        sys.exit(f"expected {wanted!r}, found {found!r}")


def readme_program():
    text = (ENGINE / "README.md").read_text(encoding="utf-8")
    return re.findall(r"^```cpp\n(.*?)^```$", text, re.MULTILINE | re.DOTALL)[-1]


def version():
    header = (ENGINE / "include/jet/version.h").read_text(encoding="utf-8")
    return ".".join(re.findall(r"#define JET_VERSION_\w+ (\d+)", header))


def configure(source, build, *options):
    launcher = ["-DCMAKE_CXX_COMPILER_LAUNCHER=ccache"] if shutil.which("ccache") else []
    run("cmake", "-S", source, "-B", build, *launcher, *options)
    run("cmake", "--build", build, "--parallel", "2")


def with_cmake(folder, prefix):
    consumer = folder / "consumer"
    consumer.mkdir()
    (consumer / "CMakeLists.txt").write_text(CONSUMER, encoding="utf-8")
    (consumer / "zones.cpp").write_text(readme_program(), encoding="utf-8")
    (consumer / "asks_version.c").write_text(C_PROGRAM, encoding="utf-8")
    (consumer / "module.cpp").write_text(MODULE, encoding="utf-8")
    configure(consumer, consumer / "build", f"-DCMAKE_PREFIX_PATH={prefix}",
              "-DCMAKE_CXX_FLAGS=" + " ".join(STRICT))
    expect(run(consumer / "build/zones", folder=folder), "11 characters\n")
    expect((folder / "zones.mdb").exists(), True)
    expect(run(prefix / "bin/jetdoctor", folder / "zones.mdb").count("error"), 0)
    (folder / "zones.mdb").unlink()
    expect(run(consumer / "build/asks_version"), version() + "\n")
    shown = run("nm", "-D", "--defined-only", next(prefix.rglob("libjet_c.so")))
    expect([line for line in shown.splitlines() if " T " in line and " T jet_" not in line], [])
    symbols = run("nm", "-D", "--defined-only", consumer / "build/libmodule.so")
    expect([line for line in symbols.splitlines() if "3jet" in line and " W " not in line], [])


def with_pkg_config(folder, prefix, compiler):
    if not shutil.which("pkg-config"):
        print("pkg-config is not installed, so its description is not tried")
        return
    description = next(prefix.rglob("jet.pc"))
    ask = ["env", f"PKG_CONFIG_PATH={description.parent}", "pkg-config"]
    flags = shlex.split(run(*ask, "--cflags", "--libs", "jet"))
    source = folder / "consumer/zones.cpp"
    run(compiler, "-std=c++20", *STRICT, source, *flags, "-o", folder / "zones")
    expect(run(folder / "zones", folder=folder), "11 characters\n")
    expect(run(*ask, "--modversion", "jet").strip(), version())
    (folder / "own_files.cpp").write_text(OWN_FILES, encoding="utf-8")
    for other in filter(shutil.which, ("c++", "clang++")):
        run(other, "-std=c++20", *FLAGS_OF_OTHERS, folder / "own_files.cpp", *flags, "-o",
            folder / "own_files")
        run(folder / "own_files", folder=folder)
        (folder / "own.mdb").unlink()
    flags = shlex.split(run(*ask, "--cflags", "--libs", "jet_c"))
    program = folder / "consumer/asks_version.c"
    run("cc", "-std=c99", "-Wall", "-Wextra", "-Wpedantic", "-Wstrict-prototypes", "-Werror", program,
        *flags, "-o", folder / "asks_version")


def main():
    compiler = sys.argv[1]
    with tempfile.TemporaryDirectory(prefix="jet install ") as name:
        folder = Path(name)
        built = folder / "installed first"
        configure(ENGINE, folder / "build", f"-DCMAKE_CXX_COMPILER={compiler}",
                  "-DCMAKE_BUILD_TYPE=None", "-DCMAKE_CXX_FLAGS=-O0")
        run("cmake", "--install", folder / "build", "--prefix", built)
        # Nothing of the place where it was installed is written down in it.
        prefix = folder / "moved"
        built.rename(prefix)
        with_cmake(folder, prefix)
        with_pkg_config(folder, prefix, compiler)
    print("installed, and used from outside")


main()
