// Counts up on two pages of a file for ever and prints each number once its operation returned, so
// that a test can kill the process and look at what it left. Usage: count_up FILE
#include <cstdio>

#include "jet/file.h"
#include "page/bytes.h"
#include "page/operation.h"
#include "page/pager.h"

namespace {

[[noreturn]] void CountUpAndTell(jet::Pager& pager) {
    std::uint32_t number = jet::ReadU32(pager.Page(jet::PageNumber{3}).Data(), 100);
    for (;;) {
        ++number;
        {
            jet::Operation operation(pager);
            // Two pages far apart must always agree.
            jet::WriteU32(operation.Change(jet::PageNumber{3}), 100, number);
            jet::WriteU32(operation.Change(jet::PageNumber{5}), 3000, number);
            operation.Commit();
        }
        std::printf("%lu\n", static_cast<unsigned long>(number));
        std::fflush(stdout);
        if (number % 50 == 0) pager.MakeDurable();
    }
}

}  // namespace

int main(int argc, char* argv[]) {
    if (argc != 2) {
        std::fputs("usage: count_up FILE\n", stderr);
        return 2;
    }
    jet::Recovery recovery;
    const auto pager = jet::Pager::Open(jet::HostFileSystem(), argv[1], {}, recovery);
    CountUpAndTell(*pager);
}
