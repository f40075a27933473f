// The account of a file's pages: who uses each one, and who uses each usage map.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "check/findings.h"
#include "check/page_source.h"
#include "page/format.h"
#include "page/types.h"

namespace jet {

// What the whole check works on.
struct CheckContext {
    const PageSource& pages;
    const Format& format;
    Findings& findings;
    CheckReport& report;
};

class PageAccount {
public:
    explicit PageAccount(CheckContext& context);

    // Enters a page for its user; a second user is "page-twice". False then.
    bool Claim(std::uint32_t page, const std::string& user, const std::string& table);
    // Usage-map rows of many users share their pages.
    void ClaimShared(std::uint32_t page);
    [[nodiscard]] bool IsClaimed(std::uint32_t page) const;
    [[nodiscard]] const std::string& UserOf(std::uint32_t page) const;

    // The members of the usage map in a row, within the file; what is wrong with it is reported.
    // Every map has one user.
    std::vector<std::uint32_t> ReadMap(RowId row, const std::string& user,
                                       const std::string& table);

    // Compares the account with the map of free pages. Gives the pages that nobody has, and
    // that are not free either.
    std::vector<std::uint32_t> Unaccounted(RowId freeMap);

private:
    [[nodiscard]] std::vector<std::byte> MapRow(RowId row, bool global) const;
    void ReadInline(Bytes row, std::vector<std::uint32_t>& members, const Spot& spot);
    void ReadReferences(Bytes row, const std::string& user, std::vector<std::uint32_t>& members,
                        const Spot& spot, bool global);

    CheckContext& context_;
    std::vector<std::uint32_t> users_;  // of each page, a number in names_; 0 for nobody
    std::vector<std::string> names_{"nobody"};
    std::map<RowId, std::string> maps_;
};

}  // namespace jet
