// The report of a season: what a unit hands in, as a document.
#pragma once

#include <string>
#include <vector>

#include "review/document.h"
#include "review/finding.h"
#include "season/season.h"

namespace review {

struct ReportParts {
    const season::Season& season;
    const season::Season* previous = nullptr;  // what it is compared with, if anything
    std::vector<Finding> findings;
    std::string date;  // as it is to be shown
};

Document ReportOf(const ReportParts& parts);

}  // namespace review
