#include "review/difference_words.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

#include "review/figures.h"
#include "review/tables.h"

namespace review {

namespace {

using Naming = std::pair<std::string_view, std::string_view>;

// What people call the fields of the data file.
constexpr std::array<Naming, 12> kFields{{{"TopSize", "largest size"},
                                          {"Cost", "cost"},
                                          {"LongName", "name"},
                                          {"ShortName", "short name"},
                                          {"Units", "units"},
                                          {"UnitType", "kind"},
                                          {"Explanation", "explanation"},
                                          {"ManagementArea", "heading"},
                                          {"ResourceName", "name"},
                                          {"Name", "name"},
                                          {"UnitName", "name of the unit"},
                                          {"SRDataSource", "source of data"}}};
constexpr std::array<Naming, 2> kWhats{{{"nvc", "value"}, {"property", "file"}}};

template <typename Namings>
std::string Called(const Namings& namings, std::string_view name) {
    const auto found = std::find_if(namings.begin(), namings.end(),
                                    [name](const Naming& naming) { return naming.first == name; });
    return std::string(found != namings.end() ? found->second : name);
}

std::string Shown(const Difference& difference, float figure) {
    const bool isPlain = difference.what == "nvc" || !difference.field;
    return isPlain                          ? ValueText(figure)
           : *difference.field == "TopSize" ? AcresText(static_cast<double>(figure))
                                            : DollarsText(static_cast<double>(figure));
}

bool IsNumber(const Content& content) {
    return std::holds_alternative<float>(content);
}

}  // namespace

DifferenceWords WordsOf(const Difference& difference) {
    DifferenceWords words;
    words.what = Called(kWhats, difference.what);
    Difference named = difference;
    if (named.field) {
        named.field = Called(kFields, *named.field);
    }
    words.place = named.Place();
    words.older = TextOf(difference.older);
    words.newer = TextOf(difference.newer);
    words.isFigure = IsNumber(difference.older) || IsNumber(difference.newer);
    if (words.isFigure) {
        // Nothing counts as 0.
        const auto shown = [&difference](const Content& content) {
            return Shown(difference, IsNumber(content) ? std::get<float>(content) : 0.0F);
        };
        const std::string older = shown(difference.older);
        const std::string newer = shown(difference.newer);
        // What rounding would hide is shown in full.
        if (older != newer) {
            words.older = older;
            words.newer = newer;
        }
    }
    return words;
}

}  // namespace review
