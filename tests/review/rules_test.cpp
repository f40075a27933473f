// Each rule finds the fault that is planted for it, at its place, and nothing else.
#include <limits>

#include "review/figures.h"
#include "review/planted_file.h"

namespace {

using season::CostClass;
using season::NvcRow;
using season::Season;
using season::Zone;
using tarn_test::Plant;
using testing::ElementsAreArray;

constexpr float kInfinite = std::numeric_limits<float>::infinity();

struct Fault {
    const char* name;
    Plant plant;
    std::vector<std::string> found;
};

void PrintTo(const Fault& fault, std::ostream* out) {
    *out << fault.name;
}

CostClass& Class(Season& season, std::size_t zone, int number) {
    return season.zones[zone].classes[static_cast<std::size_t>(number - 1)];
}

void SetClass(Season& season, std::size_t zone, int number, float size, float cost) {
    Class(season, zone, number).topSize = size;
    Class(season, zone, number).cost = cost;
}

NvcRow& Row(Season& season, std::size_t zone, int location, int resource) {
    return season.zones[zone]
        .locations[static_cast<std::size_t>(location - 1)]
        .rows[static_cast<std::size_t>(resource - 1)];
}

void SetRow(Season& season, std::size_t zone, int location, int resource,
            const std::array<float, 6>& values) {
    std::copy(values.begin(), values.end(), Row(season, zone, location, resource).values.begin());
}

void Clear(Season& season, std::size_t zone, int location) {
    for (int resource = 1; resource <= 14; ++resource) {
        SetRow(season, zone, location, resource, {});
    }
}

void SetProperty(Season& season, const std::string& name, const season::Text& value) {
    for (season::Property& property : season.properties) {
        if (property.name == name) property.value = value;
    }
}

class Rules : public testing::TestWithParam<Fault> {};

TEST_P(Rules, Check_APlantedFault_FindsItAndNothingElse) {
    const tarn_test::TempFolder folder;
    const Season season = tarn_test::PlantedFile(folder / "UMFOR26.fcd", GetParam().plant);
    EXPECT_THAT(tarn_test::Summaries(review::Check({season})), ElementsAreArray(GetParam().found));
}

const Fault kZones[] = {
    {"nothing", [](Season&) {}, {}},
    {"zone without a name",
     [](Season& s) { s.zones[1].name = " \t"; },
     {"zone-blank-name zone= \t"}},
    {"zone whose name is null",
     [](Season& s) { s.zones[1].name = std::nullopt; },
     {"zone-blank-name zone="}},
    {"two zones without names",
     [](Season& s) { s.zones[0].name = s.zones[1].name = ""; },
     {"zone-blank-name zone=", "zone-blank-name zone="}},
    {"two names alike",
     [](Season& s) { s.zones[2].name = " zone 1 "; },
     {"zone-duplicate-name zone= zone 1 "}},
    {"no location",
     [](Season& s) {
         s.zones[0].rlCount = 0;
         s.zones[0].locations.clear();
     },
     {"zone-rl-count zone=Zone 1"}},
    {"number of locations null",
     [](Season& s) {
         s.zones[0].rlCount = std::nullopt;
         s.zones[0].locations.clear();
     },
     {"zone-rl-count zone=Zone 1"}},
    {"a hundred locations",
     [](Season& s) {
         s.zones = {tarn_test::SoundZone(1, 99)};
         s.zones[0].rlCount = 100;
     },
     {"zone-rl-count zone=Zone 1"}},
    {"kept locations", [](Season& s) { s.zones[1].rlCount = 1; }, {"stale-locations zone=Zone 2"}},
    {"no zone", [](Season& s) { s.zones.clear(); }, {"zones-none"}},
};
INSTANTIATE_TEST_SUITE_P(Zones, Rules, testing::ValuesIn(kZones));

const Fault kCosts[] = {
    {"a class is missing",
     [](Season& s) { s.zones[0].classes.erase(s.zones[0].classes.begin() + 7); },
     {"cost-missing-class zone=Zone 1 class=8"}},
    {"a missing class counts as unused",
     [](Season& s) { s.zones[0].classes.erase(s.zones[0].classes.begin() + 1); },
     {"cost-missing-class zone=Zone 1 class=2", "cost-order zone=Zone 1 class=3"}},
    {"a tenth class",
     [](Season& s) {
         s.zones[0].classes.push_back({10, 1.0F, 1.0F});
     },
     {"cost-missing-class zone=Zone 1 class=10"}},
    {"a bound that does not rise",
     [](Season& s) { Class(s, 0, 3).topSize = 10.0F; },
     {"cost-order zone=Zone 1 class=3"}},
    {"an open class amid others",
     [](Season& s) { Class(s, 0, 3).topSize = 0.0F; },
     {"cost-order zone=Zone 1 class=3"}},
    {"an open first class",
     [](Season& s) { Class(s, 0, 1).topSize = std::nullopt; },
     {"cost-order zone=Zone 1 class=1"}},
    {"a gap",
     [](Season& s) {
         SetClass(s, 0, 2, 0, 0);
         SetClass(s, 0, 3, 0, 0);
     },
     {"cost-order zone=Zone 1 class=4"}},
    {"the first class is not used",
     [](Season& s) { SetClass(s, 0, 1, 0, 0); },
     {"cost-order zone=Zone 1 class=2"}},
    {"bound and cost negative",
     [](Season& s) { SetClass(s, 0, 1, -1, 4500); },
     {"cost-negative zone=Zone 1 class=1"}},
    {"a negative cost",
     [](Season& s) { Class(s, 0, 5).cost = -5.0F; },
     {"cost-negative zone=Zone 1 class=5"}},
    {"no cost",
     [](Season& s) {
         for (int n = 1; n <= 9; ++n) SetClass(s, 1, n, 0, 0);
     },
     {"cost-none zone=Zone 2"}},
    {"a bound without a cost",
     [](Season& s) { Class(s, 0, 4).cost = std::nullopt; },
     {"cost-zero zone=Zone 1 class=4", "cost-rises zone=Zone 1 class=5"}},
    {"a cost that rises",
     [](Season& s) { Class(s, 0, 3).cost = 3000.0F; },
     {"cost-rises zone=Zone 1 class=3"}},
    {"no open class",
     [](Season& s) { SetClass(s, 0, 5, 0, 0); },
     {"cost-no-open-class zone=Zone 1"}},
    {"nine classes need none open",
     [](Season& s) {
         for (int n = 1; n <= 9; ++n)
             SetClass(s, 0, n, static_cast<float>(n), static_cast<float>(100 - n));
     },
     {}},
    {"an infinite bound leaves its class out",
     [](Season& s) { Class(s, 0, 3).topSize = kInfinite; },
     {"number-not-finite zone=Zone 1 class=3"}},
};
INSTANTIATE_TEST_SUITE_P(Costs, Rules, testing::ValuesIn(kCosts));

const Fault kValues[] = {
    {"a row is missing",
     [](Season& s) {
         auto& rows = s.zones[1].locations[1].rows;
         rows.erase(rows.begin() + 12);
     },
     {"nvc-missing-row zone=Zone 2 location=2 resource=Value 13"}},
    {"a row beyond the live locations may be missing",
     [](Season& s) {
         s.zones[1].rlCount = 1;
         s.zones[1].locations[1].rows.pop_back();
     },
     {"stale-locations zone=Zone 2"}},
    {"all values 0", [](Season& s) { Clear(s, 0, 2); }, {"nvc-all-zero zone=Zone 1 location=2"}},
    {"two locations of nothing but 0",
     [](Season& s) {
         Clear(s, 0, 1);
         Clear(s, 0, 2);
     },
     {"nvc-all-zero zone=Zone 1 location=1", "nvc-all-zero zone=Zone 1 location=2"}},
    {"a table copied",
     [](Season& s) {
         s.zones[0] = tarn_test::SoundZone(1, 3);
         s.zones[0].locations[1].rows = s.zones[0].locations[0].rows;
         s.zones[0].locations[2].rows = s.zones[0].locations[0].rows;
     },
     {"nvc-same-as zone=Zone 1 location=2", "nvc-same-as zone=Zone 1 location=3"}},
    {"a gain in FIL 6",
     [](Season& s) {
         Clear(s, 0, 1);
         SetRow(s, 0, 1, 2, {1, 1, 1, 1, 1, 1});
     },
     {"nvc-gain-high zone=Zone 1 location=1 fil=6"}},
    {"sums that cancel out are no gain",
     [](Season& s) {
         Clear(s, 0, 1);
         SetRow(s, 0, 1, 1, {0, 0, 0, 0, 0, 0.3F});
         SetRow(s, 0, 1, 2, {0, 0, 0, 0, 0, -0.1F});
         SetRow(s, 0, 1, 3, {0, 0, 0, 0, 0, -0.2F});
     },
     {}},
    {"totals that improve",
     [](Season& s) {
         Clear(s, 0, 1);
         SetRow(s, 0, 1, 1, {0, -50, -100, -99, -120, -110});
     },
     {"nvc-improves zone=Zone 1 location=1 fil=4"}},
    {"totals that improve by half a percent",
     [](Season& s) {
         Clear(s, 0, 1);
         SetRow(s, 0, 1, 1, {0, -90, -200, -199, -198.5F, -198});
     },
     {}},
    {"values that change their sign twice",
     [](Season& s) {
         SetRow(s, 0, 1, 5, {-5, 0, 5, 0, -20, -30});
     },
     {"nvc-sign-flip zone=Zone 1 location=1 resource=Value 5"}},
    {"values that change their sign once",
     [](Season& s) {
         SetRow(s, 0, 1, 5, {5, 0, 4, 0, -20, -30});
     },
     {}},
    {"a digit too many",
     [](Season& s) {
         SetRow(s, 0, 1, 5, {-10, -11, -96, -13, -14, -15});
     },
     {"nvc-slip zone=Zone 1 location=1 resource=Value 5 fil=3"}},
    {"a comma read as the end",
     [](Season& s) {
         SetRow(s, 0, 1, 5, {0, -1100, -1, -1300, -1500, -1600});
     },
     {"nvc-slip zone=Zone 1 location=1 resource=Value 5 fil=3",
      "nvc-slip zone=Zone 1 location=1 resource=Value 5 fil=4"}},
    {"a value between two of another sign",
     [](Season& s) {
         SetRow(s, 0, 1, 5, {40, 45, 90, -1, -1, -9});
     },
     {}},
    {"no number",
     [](Season& s) { Row(s, 0, 1, 5).values[1] = std::nanf(""); },
     {"number-not-finite zone=Zone 1 location=1 resource=Value 5 fil=2"}},
    {"no number beyond the live locations",
     [](Season& s) {
         s.zones[0].rlCount = 1;
         Row(s, 0, 2, 5).values[1] = -kInfinite;
     },
     {"stale-locations zone=Zone 1"}},
};
INSTANTIATE_TEST_SUITE_P(Values, Rules, testing::ValuesIn(kValues));

const Fault kLists[] = {
    {"a number left out", [](Season& s) { s.resources[2].sequence = 4; }, {"resource-sequence"}},
    {"a number that is null",
     [](Season& s) { s.resources[2].sequence = std::nullopt; },
     {"resource-sequence"}},
    {"a resource without a name",
     [](Season& s) { s.resources[1].longName = " "; },
     {"resource-blank-name resource= "}},
    {"two resources alike",
     [](Season& s) { s.resources[2].longName = "hand CREW "; },
     {"resource-duplicate-name resource=hand CREW "}},
    {"no kind of cost",
     [](Season& s) { s.resources[0].unitType = std::nullopt; },
     {"resource-unit-type resource=Engine, type 6"}},
    {"an unknown kind of cost",
     [](Season& s) { s.resources[0].unitType = "times"; },
     {"resource-unit-type resource=Engine, type 6"}},
    {"a resource that costs nothing",
     [](Season& s) { s.resources[0].cost = std::nullopt; },
     {"resource-cost-zero resource=Engine, type 6"}},
    {"an infinite cost",
     [](Season& s) { s.resources[0].cost = kInfinite; },
     {"number-not-finite resource=Engine, type 6"}},
    {"no resource",
     [](Season& s) {
         s.resources.clear();
         SetProperty(s, "SRDataSource", "");
     },
     {"resources-none"}},
    {"no source", [](Season& s) { SetProperty(s, "SRDataSource", " "); }, {"source-note-missing"}},
    {"no unit", [](Season& s) { s.properties.pop_back(); }, {"unit-blank"}},
    {"last year's unit",
     [](Season& s) { SetProperty(s, "UnitName", "Umatilla '25"); },
     {"unit-year"}},
    {"a unit without a year",
     [](Season& s) { SetProperty(s, "UnitName", "Coeur d'Alene"); },
     {"unit-year"}},
    {"no goal", [](Season& s) { s.goals.clear(); }, {"goals-none"}},
    {"a goal without a heading", [](Season& s) { s.goals[1].area = ""; }, {"goal-blank goal=2"}},
    {"a goal without anything",
     [](Season& s) { s.goals[1].area = s.goals[1].explanation = std::nullopt; },
     {"goal-blank goal=2"}},
    {"a goal without a text",
     [](Season& s) { s.goals[0].explanation = " "; },
     {"goal-blank goal=Wilderness"}},
};
INSTANTIATE_TEST_SUITE_P(Lists, Rules, testing::ValuesIn(kLists));

TEST(RulesElsewhere, UnitYear_InAFileOfAnotherFormOfName_SaysNothing) {
    const tarn_test::TempFolder folder;
    const Season season = tarn_test::PlantedFile(
        folder / "draft.fcd", [](Season& s) { SetProperty(s, "UnitName", "Umatilla"); });
    EXPECT_TRUE(review::Check({season}).empty());
}

TEST(RulesWithPrevious, UnchangedZone_IsNamedWhenAllIsLastYears) {
    const tarn_test::TempFolder folder;
    const Season older = tarn_test::PlantedFile(folder / "UMFOR25.fcd", [](Season& s) {
        for (Zone& zone : s.zones) zone.key += 70;
        Clear(s, 2, 1);
        Clear(s, 2, 2);
        for (int n = 1; n <= 9; ++n) SetClass(s, 2, n, 0, 0);
    });
    const Season newer = tarn_test::PlantedFile(folder / "UMFOR26.fcd", [](Season& s) {
        s.zones[1].name = "ZONE 2";
        Row(s, 0, 1, 1).values[0] = -3.0F;
        Clear(s, 2, 1);
        Clear(s, 2, 2);
        for (int n = 1; n <= 9; ++n) SetClass(s, 2, n, 0, 0);
    });
    const auto found =
        tarn_test::Summaries(review::Check({newer, &older}, {"cost-none", "nvc-all-zero"}));
    EXPECT_THAT(found, testing::ElementsAre("unchanged-zone zone=ZONE 2"));
}

// Other files with the same amounts everywhere but for a spread.
class Usual : public review::Population {
public:
    review::Usual UsualOf(std::int32_t, int fil, bool negative) const override {
        return negative && fil == 3 ? review::Usual{count, 2, spread} : review::Usual();
    }
    std::uint64_t count = 20;
    double spread = 0.1;
};

TEST(RulesAgainstOthers, Outlier_IsAnAmountFarFromTheOthers) {
    const tarn_test::TempFolder folder;
    const Season season = tarn_test::PlantedFile(folder / "UMFOR26.fcd", [](Season& s) {
        s.zones = {tarn_test::SoundZone(1, 1)};
        for (int resource = 1; resource <= 14; ++resource) {
            SetRow(s, 0, 1, resource, {0, 0, -100, -100, -100, -100});
        }
        SetRow(s, 0, 1, 9, {0, 0, -1000, -1000, -1000, -1000});
        SetRow(s, 0, 1, 8, {0, 0, -250, -250, -250, -250});
    });
    Usual usual;
    EXPECT_THAT(tarn_test::Summaries(review::Check({season, nullptr, &usual})),
                testing::ElementsAre("outlier zone=Zone 1 location=1 resource=Value 9 fil=3"));
    usual.count = 19;
    EXPECT_TRUE(review::Check({season, nullptr, &usual}).empty()) << "too few others";
    usual.count = 20;
    usual.spread = 0;
    EXPECT_TRUE(review::Check({season, nullptr, &usual}).empty()) << "all alike";
}

TEST(Findings, LineAndJson_HoldRulePlaceAndSentence) {
    const tarn_test::TempFolder folder;
    const Season season = tarn_test::PlantedFile(folder / "UMFOR26.fcd", [](Season& s) {
        s.zones[0].name = "Wet\tPrairie \"A\"";
        s.nvcResources[3].name = "Forage";
        SetRow(s, 0, 2, 4, {0, -1100, -1, -1300, -1500, -1600});
    });
    const auto findings = review::Check({season});
    ASSERT_EQ(findings.size(), 2U);
    EXPECT_EQ(review::LineOf(findings[0]),
              "warning: nvc-slip: Wet\\tPrairie \"A\", location 2, Forage, FIL 3: -1 beside -1,100 "
              "and -1,300. A digit may be missing, or a comma was typed.");
    EXPECT_EQ(review::JsonOf(findings[0], "a.fcd"),
              R"({"file":"a.fcd","rule":"nvc-slip","severity":"warning",)"
              R"("zone":"Wet\tPrairie \"A\"","zoneKey":1,"location":2,"resource":"Forage","fil":3,)"
              R"("class":null,"goal":null,"value":-1,)"
              R"("text":"Wet\tPrairie \"A\", location 2, Forage, FIL 3: -1 beside -1,100 and )"
              R"(-1,300.","advice":"A digit may be missing, or a comma was typed."})");
}

TEST(Figures, AreReadAsTheyWereTyped) {
    EXPECT_EQ(review::Figure(12.3F), "12.3");
    EXPECT_EQ(review::Figure(-1234567.0F), "-1,234,567");
    EXPECT_EQ(review::Figure(-0.0F), "0");
    EXPECT_EQ(review::Fixed(1.005F, 2), "1.01") << "halves go away from zero, in decimal";
    EXPECT_EQ(review::Fixed(-999.995, 2), "-1,000.00");
    EXPECT_EQ(review::Fixed(0.4F, 0), "0");
    EXPECT_EQ(review::Fixed(-0.4F, 0), "0");
    EXPECT_EQ(review::Fixed(9.5F, 0), "10");
}

}  // namespace
