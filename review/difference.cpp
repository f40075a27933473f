#include "review/difference.h"

#include <algorithm>
#include <array>
#include <set>

#include "review/figures.h"
#include "review/json.h"
#include "review/wording.h"
#include "season/text.h"

namespace review {

namespace {

using season::Location;
using season::NvcRow;
using season::Season;
using season::Single;
using season::Text;
using season::Zone;

Content ContentOf(const Single& number) {
    return number ? Content(*number) : Content();
}
Content ContentOf(const Text& text) {
    return text ? Content(*text) : Content();
}

bool SameText(const Text& a, const Text& b) {
    return season::Words(a) == season::Words(b);
}

std::string NameOf(const Text& name) {
    return name.value_or(std::string());
}

class Comparison {
public:
    Comparison(const Season& older, const Season& newer, double tolerance)
        : older_(older), newer_(newer), tolerance_(tolerance) {}

    std::vector<Difference> Run() {
        CompareProperties();
        CompareGoals();
        CompareResources();
        CompareNvcNames();
        for (const Pair<Zone>& pair : PairZones(older_, newer_, tolerance_)) {
            Compare(pair);
        }
        return std::move(found_);
    }

private:
    Difference& Add(Change kind, std::string_view what, const Difference& place = {}) {
        Difference& difference = found_.emplace_back(place);
        difference.kind = kind;
        difference.what = what;
        return difference;
    }
    void AddChange(std::string_view what, const Difference& place, std::string field, Content older,
                   Content newer) {
        Difference& difference = Add(Change::kChanged, what, place);
        difference.field = std::move(field);
        difference.older = std::move(older);
        difference.newer = std::move(newer);
    }
    void CompareFigures(std::string_view what, const Difference& place, const char* field,
                        const Single& older, const Single& newer) {
        if (!SameFigure(older, newer, tolerance_)) {
            AddChange(what, place, field, ContentOf(older), ContentOf(newer));
        }
    }
    void CompareTexts(std::string_view what, const Difference& place, const char* field,
                      const Text& older, const Text& newer) {
        if (!SameText(older, newer)) {
            AddChange(what, place, field, ContentOf(older), ContentOf(newer));
        }
    }
    // A record that only one of the two has.
    void AddOrRemove(std::string_view what, const Difference& place, const char* field,
                     bool isAdded, const Text& name) {
        Difference& difference = Add(isAdded ? Change::kAdded : Change::kRemoved, what, place);
        difference.field = field;
        (isAdded ? difference.newer : difference.older) = ContentOf(name);
    }

    void CompareProperties();
    void CompareGoals();
    void CompareResources();
    void CompareNvcNames();
    void Compare(const Pair<Zone>& pair);
    void CompareCosts(const Zone& older, const Zone& newer, const Difference& place);
    void CompareLocations(const Zone& older, const Zone& newer, const Difference& place);
    void Compare(const Location* older, const Location* newer, const Difference& place);

    const Season& older_;
    const Season& newer_;
    double tolerance_;
    std::vector<Difference> found_;
};

void Comparison::CompareProperties() {
    std::set<std::string> names;
    std::vector<std::string> ordered;
    for (const Season* season : {&newer_, &older_}) {
        for (const season::Property& property : season->properties) {
            const std::string folded = season::Folded(property.name);
            if (folded != "dataformatid" && names.insert(folded).second) {
                ordered.push_back(property.name);
            }
        }
    }
    for (const std::string& name : ordered) {
        const std::string older = older_.PropertyText(name);
        const std::string newer = newer_.PropertyText(name);
        if (older == newer) {
            continue;
        }
        const auto has = [&name](const Season& season) {
            return std::any_of(season.properties.begin(), season.properties.end(),
                               [&name](const season::Property& property) {
                                   return season::Folded(property.name) == season::Folded(name);
                               });
        };
        Difference& difference = Add(!has(older_)   ? Change::kAdded
                                     : !has(newer_) ? Change::kRemoved
                                                    : Change::kChanged,
                                     "property");
        difference.field = name;
        difference.older = has(older_) ? Content(older) : Content();
        difference.newer = has(newer_) ? Content(newer) : Content();
    }
}

void Comparison::CompareGoals() {
    const char* const area = "ManagementArea";
    for (const Pair<season::Goal>& pair : PairGoals(older_, newer_)) {
        Difference place;
        const season::Goal& named = pair.newer != nullptr ? *pair.newer : *pair.older;
        place.goal = NameOf(named.area);
        if (pair.older == nullptr || pair.newer == nullptr) {
            AddOrRemove("goal", place, area, pair.older == nullptr, named.area);
            continue;
        }
        CompareTexts("name", place, area, pair.older->area, pair.newer->area);
        CompareTexts("goal", place, "Explanation", pair.older->explanation,
                     pair.newer->explanation);
    }
}

void Comparison::CompareResources() {
    const char* const longName = "LongName";
    for (const Pair<season::Resource>& pair : PairResources(older_, newer_)) {
        Difference place;
        const season::Resource& named = pair.newer != nullptr ? *pair.newer : *pair.older;
        place.resource = NameOf(named.longName);
        if (pair.older == nullptr || pair.newer == nullptr) {
            AddOrRemove("resource", place, longName, pair.older == nullptr, named.longName);
            continue;
        }
        const season::Resource& older = *pair.older;
        const season::Resource& newer = *pair.newer;
        CompareTexts("name", place, longName, older.longName, newer.longName);
        CompareTexts("resource", place, "ShortName", older.shortName, newer.shortName);
        CompareTexts("resource", place, "Units", older.units, newer.units);
        CompareTexts("resource", place, "UnitType", older.unitType, newer.unitType);
        CompareFigures("resource", place, "Cost", older.cost, newer.cost);
    }
}

void Comparison::CompareNvcNames() {
    const char* const field = "ResourceName";
    std::set<std::int32_t> numbers;
    for (const Season* season : {&older_, &newer_}) {
        for (const season::NvcResource& resource : season->nvcResources) {
            numbers.insert(resource.number);
        }
    }
    for (const std::int32_t number : numbers) {
        const auto find = [number](const Season& season) {
            const auto& all = season.nvcResources;
            const auto found = std::find_if(
                all.begin(), all.end(), [number](const auto& one) { return one.number == number; });
            return found == all.end() ? nullptr : &*found;
        };
        const season::NvcResource* const older = find(older_);
        const season::NvcResource* const newer = find(newer_);
        Difference place;
        place.resource = (newer != nullptr ? newer_ : older_).NvcName(number);
        if (older != nullptr && newer != nullptr) {
            CompareTexts("name", place, field, older->name, newer->name);
        } else {
            AddOrRemove("name", place, field, older == nullptr,
                        (newer != nullptr ? newer : older)->name);
        }
    }
}

void Comparison::Compare(const Pair<Zone>& pair) {
    const char* const field = "Name";
    Difference place;
    place.zone = NameOf((pair.newer != nullptr ? pair.newer : pair.older)->name);
    if (pair.older == nullptr || pair.newer == nullptr) {
        AddOrRemove("zone", place, field, pair.older == nullptr,
                    (pair.newer != nullptr ? pair.newer : pair.older)->name);
        return;
    }
    const Zone& older = *pair.older;
    const Zone& newer = *pair.newer;
    if (season::NameKey(season::Words(older.name)) == season::NameKey(season::Words(newer.name))) {
        CompareTexts("name", place, field, older.name, newer.name);
    } else {
        Difference& renamed = Add(Change::kRenamed, "zone", place);
        renamed.field = field;
        renamed.older = ContentOf(older.name);
        renamed.newer = ContentOf(newer.name);
    }
    CompareCosts(older, newer, place);
    CompareLocations(older, newer, place);
}

void Comparison::CompareCosts(const Zone& older, const Zone& newer, const Difference& place) {
    std::set<std::int32_t> numbers;
    for (const Zone* zone : {&older, &newer}) {
        for (const season::CostClass& row : zone->classes) {
            numbers.insert(row.number);
        }
    }
    for (const std::int32_t number : numbers) {
        const season::CostClass* const before = season::FindClass(older, number);
        const season::CostClass* const after = season::FindClass(newer, number);
        Difference here = place;
        here.sizeClass = number;
        if (before == nullptr || after == nullptr) {
            Add(before == nullptr ? Change::kAdded : Change::kRemoved, "cost", here);
            continue;
        }
        CompareFigures("cost", here, "TopSize", before->topSize, after->topSize);
        CompareFigures("cost", here, "Cost", before->cost, after->cost);
    }
}

void Comparison::CompareLocations(const Zone& older, const Zone& newer, const Difference& place) {
    const int before = season::LiveCount(older);
    const int after = season::LiveCount(newer);
    for (int number = 1; number <= std::max(before, after); ++number) {
        Difference here = place;
        here.location = number;
        if (number > before || number > after) {
            Add(number > before ? Change::kAdded : Change::kRemoved, "location", here);
            continue;
        }
        Compare(season::FindLocation(older, number), season::FindLocation(newer, number), here);
    }
}

void Comparison::Compare(const Location* older, const Location* newer, const Difference& place) {
    std::set<std::int32_t> numbers;
    for (const Location* location : {older, newer}) {
        for (std::size_t i = 0; location != nullptr && i < location->rows.size(); ++i) {
            numbers.insert(location->rows[i].resource);
        }
    }
    for (const std::int32_t number : numbers) {
        const NvcRow* const before = older != nullptr ? season::FindRow(*older, number) : nullptr;
        const NvcRow* const after = newer != nullptr ? season::FindRow(*newer, number) : nullptr;
        const auto here = [&] {
            Difference row = place;
            row.resource = newer_.NvcName(number);
            return row;
        };
        if (before == nullptr || after == nullptr) {
            Add(before == nullptr ? Change::kAdded : Change::kRemoved, "nvc", here());
            continue;
        }
        for (std::size_t i = 0; i < before->values.size(); ++i) {
            if (SameFigure(before->values[i], after->values[i], tolerance_)) {
                continue;
            }
            Difference value = here();
            value.fil = static_cast<std::int32_t>(i) + 1;
            AddChange("nvc", value, "FIL" + std::to_string(i + 1), ContentOf(before->values[i]),
                      ContentOf(after->values[i]));
        }
    }
}

std::string Escaped(std::string_view text) {
    return OnOneLine(text, Backslash::kDoubled);
}

std::string JsonContent(const Content& content) {
    if (const float* number = std::get_if<float>(&content)) {
        return JsonNumber(Single(*number));
    }
    if (const std::string* text = std::get_if<std::string>(&content)) {
        return JsonText(*text);
    }
    return "null";
}

}  // namespace

std::string_view ChangeName(Change change) {
    constexpr std::array<std::string_view, 4> kNames{"changed", "added", "removed", "renamed"};
    return kNames[static_cast<std::size_t>(change)];
}

std::string TextOf(const Content& content) {
    if (const float* number = std::get_if<float>(&content)) {
        std::string figure = Figure(*number);
        std::erase(figure, ',');
        return figure;
    }
    const std::string* const text = std::get_if<std::string>(&content);
    return text != nullptr ? *text : std::string();
}

std::string Difference::Place() const {
    PlaceWords words;
    for (const auto* const name : {&goal, &zone}) {
        if (*name) {
            words.Add(season::IsBlank(**name) ? "(no name)" : **name);
        }
    }
    if (location) {
        words.Add("location " + std::to_string(*location));
    }
    if (resource) {
        words.Add(season::IsBlank(*resource) ? "(no name)" : *resource);
    }
    if (sizeClass) {
        words.Add("class " + std::to_string(*sizeClass));
    }
    if (fil) {
        words.Add("FIL " + std::to_string(*fil));
    } else if (field && (kind == Change::kChanged || what == "property")) {
        words.Add(*field);
    }
    return std::move(words).Text();
}

std::vector<Difference> Compare(const Season& older, const Season& newer, double tolerance) {
    return Comparison(older, newer, tolerance).Run();
}

std::string LineOf(const Difference& difference) {
    return std::string(ChangeName(difference.kind)) + '\t' + std::string(difference.what) + '\t' +
           Escaped(difference.Place()) + '\t' + Escaped(TextOf(difference.older)) + '\t' +
           Escaped(TextOf(difference.newer));
}

std::string JsonOf(const Difference& difference) {
    return JsonObject()
        .Add("kind", ChangeName(difference.kind))
        .Add("what", difference.what)
        .Add("goal", difference.goal)
        .Add("zone", difference.zone)
        .Add("location", difference.location)
        .Add("resource", difference.resource)
        .Add("fil", difference.fil)
        .Add("class", difference.sizeClass)
        .Add("field", difference.field)
        .AddRaw("old", JsonContent(difference.older))
        .AddRaw("new", JsonContent(difference.newer))
        .Text();
}

std::vector<DifferenceCount> CountDifferences(const std::vector<Difference>& differences) {
    std::vector<DifferenceCount> counts;
    for (const Difference& difference : differences) {
        const auto known =
            std::find_if(counts.begin(), counts.end(), [&](const DifferenceCount& count) {
                return count.kind == difference.kind && count.what == difference.what;
            });
        if (known != counts.end()) {
            ++known->number;
        } else {
            counts.push_back({difference.kind, difference.what, 1});
        }
    }
    return counts;
}

}  // namespace review
