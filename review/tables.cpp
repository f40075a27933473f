#include "review/tables.h"

#include <algorithm>
#include <cmath>

#include "review/figures.h"
#include "review/looking.h"
#include "review/pairs.h"

namespace review {

namespace {

using season::Single;
using season::Zone;

Cell Compared(std::string text, const std::string& before, bool isSame) {
    Cell cell = NumberCell(std::move(text));
    if (!isSame) {
        cell.isChanged = true;
        cell.before = before;
    }
    return cell;
}

std::string BoundText(const season::CostClass* row) {
    const double bound = row != nullptr ? season::Amount(row->topSize) : 0;
    return bound == 0 ? (row != nullptr && season::Amount(row->cost) != 0 ? "open" : "")
                      : AcresText(bound);
}

std::string CostText(const season::CostClass* row) {
    return row == nullptr ? "" : DollarsText(season::Amount(row->cost));
}

bool IsInUse(const season::CostClass* row) {
    return row != nullptr && (season::Amount(row->topSize) != 0 || season::Amount(row->cost) != 0);
}

const season::NvcRow* RowOf(const Zone* zone, int location, std::int32_t resource) {
    if (zone == nullptr || location > season::LiveCount(*zone)) {
        return nullptr;
    }
    const season::Location* const found = season::FindLocation(*zone, location);
    return found != nullptr ? season::FindRow(*found, resource) : nullptr;
}

Single ValueOf(const season::NvcRow* row, std::size_t level) {
    return row != nullptr ? row->values[level] : Single();
}

std::vector<Cell> TotalsRow(const Zone& zone, int location, const Zone* before, double tolerance) {
    const bool isNew = before != nullptr && location > season::LiveCount(*before);
    const ValueRow totals = TotalsOf(season::FindLocation(zone, location));
    const ValueRow former =
        before != nullptr && !isNew ? TotalsOf(season::FindLocation(*before, location)) : totals;
    std::vector<Cell> row{HeadCell("Total per acre")};
    for (std::size_t i = 0; i < totals.size(); ++i) {
        const bool isSame = std::abs(totals[i] - former[i]) <=
                            tolerance * std::max(std::abs(totals[i]), std::abs(former[i]));
        row.push_back(Compared(DollarsText(totals[i]), DollarsText(former[i]),
                               isSame || DollarsText(totals[i]) == DollarsText(former[i])));
    }
    return row;
}

}  // namespace

std::string ValueText(const Single& value) {
    std::string text = Fixed(value.value_or(0.0F), 2);
    std::erase(text, ',');
    return text;
}

std::string DollarsText(double dollars) {
    if (!std::isfinite(dollars)) {
        return Figure(dollars);
    }
    const std::string figure = Fixed(dollars, 0);
    return figure.starts_with('-') ? "-$" + figure.substr(1) : "$" + figure;
}

std::string AcresText(double acres) {
    const auto size = static_cast<float>(acres);
    const std::string two = Fixed(size, 2);
    return std::round(Typed(size) * 100) == Typed(size) * 100 ? two : Figure(size);
}

Table CostTable(const Zone& zone, const Zone* before, double tolerance) {
    Table table;
    table.caption = "Suppression cost per acre";
    table.head = {HeadCell("Class"), HeadCell("Over, acres"), HeadCell("To, acres"),
                  HeadCell("Cost per acre")};
    std::string from = "0";
    for (int number = 1; number <= season::kCostClasses; ++number) {
        const season::CostClass* const now = season::FindClass(zone, number);
        const season::CostClass* const then =
            before != nullptr ? season::FindClass(*before, number) : now;
        if (!IsInUse(now) && !IsInUse(then)) {
            continue;
        }
        const auto same = [&](Single season::CostClass::*field) {
            return SameFigure(now != nullptr ? now->*field : Single(),
                              then != nullptr ? then->*field : Single(), tolerance);
        };
        table.rows.push_back(
            {HeadCell(std::to_string(number)), NumberCell(IsInUse(now) ? from : ""),
             Compared(BoundText(now), BoundText(then), same(&season::CostClass::topSize)),
             Compared(CostText(now), CostText(then), same(&season::CostClass::cost))});
        from = BoundText(now);
    }
    return table;
}

Table NvcTable(const season::Season& season, const Zone& zone, int location, const Zone* before,
               double tolerance) {
    Table table;
    const bool isNew = before != nullptr && location > season::LiveCount(*before);
    // A location may begin a page, where its zone's heading is not in view.
    table.caption = PlaceOf(zone, location).Words() + ": net value change per acre" +
                    (isNew ? " (a new location)" : "");
    table.head = {HeadCell("Resource")};
    for (int fil = 1; fil <= season::kFilLevels; ++fil) {
        table.head.push_back(HeadCell("FIL " + std::to_string(fil)));
        table.head.back().isNumber = true;
    }
    for (int resource = 1; resource <= season::kNvcResources; ++resource) {
        const season::NvcRow* const now = RowOf(&zone, location, resource);
        const season::NvcRow* const then =
            before != nullptr && !isNew ? RowOf(before, location, resource) : now;
        std::vector<Cell> row{HeadCell(season.NvcName(resource))};
        for (std::size_t i = 0; i < season::kFilLevels; ++i) {
            const Single value = ValueOf(now, i);
            const Single former = ValueOf(then, i);
            row.push_back(Compared(ValueText(value), ValueText(former),
                                   SameFigure(value, former, tolerance)));
        }
        table.rows.push_back(std::move(row));
    }
    table.totals = {TotalsRow(zone, location, before, tolerance)};
    return table;
}

}  // namespace review
