// The tables of a season as reports show them, beside those of another one where there is one.
#pragma once

#include <optional>
#include <string>

#include "review/document.h"
#include "season/season.h"

namespace review {

// "-1250.00", as the worksheet shows a value.
std::string ValueText(const season::Single& value);
// "$1,250", as the worksheets show costs and totals.
std::string DollarsText(double dollars);
// "1,000.00"
std::string AcresText(double acres);

// The cost table of a zone; `before` is the same zone earlier, or null.
Table CostTable(const season::Zone& zone, const season::Zone* before, double tolerance);
// The values of a location with their totals; likewise.
Table NvcTable(const season::Season& season, const season::Zone& zone, int location,
               const season::Zone* before, double tolerance);

}  // namespace review
