#!/usr/bin/env python3
"""What only one operating system has stands behind a few doors; all else builds anywhere."""
import re

import tree

# The two doors of the program, those of its command, those of its tests, and the benchmarks, which run on Linux only.
DOORS = ("jet/src/os/", "platform/system/", "tools/fcdtool/terminal.cpp", "tools/fcdtool/late_library.cpp",
         "rollup/windows_sha256.cpp", "tools/windows/",
         "tests/support/", "tests/faults/",
         "tests/jet/os_test.cpp", "tests/jet/elsewhere_test.cpp", "tests/jet/side_files_test.cpp",
         "tests/platform/TextFile_test.cpp", "tests/platform/NativePath_test.cpp", "bench/")
HEADER = re.compile(r'^\s*#\s*include\s*[<"]((sys|linux|netinet|arpa|net|mach)/.*|unistd\.h|fcntl\.h'
                    r"|dirent\.h|dlfcn\.h|grp\.h|pwd\.h|poll\.h|pthread\.h|pty\.h|sched\.h|semaphore\.h"
                    r"|signal\.h|csignal|spawn\.h|syslog\.h|termios\.h|utime\.h|windows\.h|io\.h"
                    r"|direct\.h|process\.h|shlobj\.h|(QtDBus|qpa|X11|xcb)/.*|Q\w+/private/.*|QtDBus|QDBus\w+"
                    r')[>"]')
CASE = re.compile(r"\b(_WIN32|WIN32|_MSC_VER|__linux__|__unix__|__APPLE__|_POSIX_VERSION|Q_OS_[A-Z]+)\b")
CALL = re.compile(r"(?<![\w.>])(?:(?:std)?::)?(popen|pclose|fork|execl|execv|execvp|waitpid|getpid|getuid"
                  r"|usleep|nanosleep|setenv|unsetenv|strcasecmp|strncasecmp|strndup|gettimeofday"
                  r"|localtime_r|gmtime_r|fsync|fdatasync|flock|mkstemp|mkdtemp|realpath|mmap)\s*\(")
TEXT = re.compile(r'"(\\.|[^"\\])*"|//.*')


def main():
    offenders = []
    for path in tree.code_files():
        name = tree.name(path)
        if name.startswith(DOORS):
            continue
        for number, line in enumerate(path.read_text(encoding="utf-8").splitlines(), 1):
            found = HEADER.match(line)
            if not found:
                plain = TEXT.sub('""', line)
                found = CASE.search(plain) or CALL.search(plain)
            if found:
                offenders.append(f"{name}:{number}: {found[1]}")
    tree.finish(offenders, "only a few doors know the operating system")


main()
