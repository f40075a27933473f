#include "check/lone_definitions.h"

#include <algorithm>
#include <iterator>
#include <set>

#include "check/table_layout.h"
#include "page/bytes.h"

namespace jet {

namespace {

constexpr std::uint16_t kDefinitionMark = 0x0102;
constexpr std::size_t kNextAt = 4;

}  // namespace

std::vector<std::uint32_t> LoneDefinitions(const PageSource& pages, const PageAccount& account) {
    std::set<std::uint32_t> found;
    std::set<std::uint32_t> continued;
    for (std::uint32_t page = 2; page < pages.PageCount(); ++page) {
        const auto bytes = pages.Read(page);
        if (ReadU16(bytes, 0) == kDefinitionMark && !account.IsClaimed(page)) {
            found.insert(page);
            continued.insert(ReadU32(bytes, kNextAt));
        }
    }
    std::vector<std::uint32_t> lone;
    std::set_difference(found.begin(), found.end(), continued.begin(), continued.end(),
                        std::back_inserter(lone));
    return lone;
}

bool IsWholeDefinition(const PageSource& pages, const Format& format, std::uint32_t page) {
    CheckReport report;
    Findings silent(report);
    CheckContext aside{pages, format, silent, report};
    return ReadTableLayout(aside, page, {}).has_value() && report.IsSound();
}

}  // namespace jet
