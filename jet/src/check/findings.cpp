#include "check/findings.h"

#include <algorithm>

namespace jet {

namespace {

// A table that is damaged throughout should not hide the others.
constexpr std::uint64_t kMostOfOneKind = 20;

const char* SeverityWord(Severity severity) {
    switch (severity) {
        case Severity::kError:
            return "error";
        case Severity::kWarning:
            return "warning";
        case Severity::kNote:
            break;
    }
    return "note";
}

}  // namespace

void Findings::Error(const Spot& spot, const char* code, std::string sentence) {
    Add(Severity::kError, spot, code, std::move(sentence));
}

void Findings::Warning(const Spot& spot, const char* code, std::string sentence) {
    Add(Severity::kWarning, spot, code, std::move(sentence));
}

void Findings::Note(const Spot& spot, const char* code, std::string sentence) {
    Add(Severity::kNote, spot, code, std::move(sentence));
}

void Findings::Add(Severity severity, const Spot& spot, const char* code, std::string sentence) {
    if (++counts_[{code, spot.table}] <= kMostOfOneKind) {
        report_.findings.push_back(
            {severity, code, spot.table, spot.page, spot.row, std::move(sentence)});
    }
}

void Findings::Finish() {
    for (const auto& [kind, count] : counts_) {
        if (count > kMostOfOneKind) {
            report_.findings.push_back(
                {Severity::kNote, kind.first, kind.second, -1, -1,
                 std::to_string(count - kMostOfOneKind) + " more findings of this kind."});
        }
    }
}

bool CheckReport::IsSound() const {
    return std::none_of(findings.begin(), findings.end(), [](const Finding& finding) {
        return finding.severity == Severity::kError;
    });
}

std::string CheckReport::Text() const {
    std::string text;
    for (const Finding& finding : findings) {
        text += SeverityWord(finding.severity);
        text += " " + finding.code;
        if (!finding.table.empty()) {
            text += ", table " + finding.table;
        }
        if (finding.page >= 0) {
            text += ", page " + std::to_string(finding.page);
        }
        if (finding.row >= 0) {
            text += ", row " + std::to_string(finding.row);
        }
        text += ": " + finding.sentence + "\n";
    }
    text += std::to_string(pages) + " pages, " + std::to_string(tables) + " tables, " +
            std::to_string(rows) + " rows, " + std::to_string(indexes) + " indexes, " +
            std::to_string(entries) + " entries: ";
    const auto count = [&](Severity severity) {
        return std::to_string(
            std::count_if(findings.begin(), findings.end(),
                          [&](const Finding& finding) { return finding.severity == severity; }));
    };
    text += findings.empty() ? "clean\n"
                             : count(Severity::kError) + " errors, " + count(Severity::kWarning) +
                                   " warnings, " + count(Severity::kNote) + " notes\n";
    return text;
}

}  // namespace jet
