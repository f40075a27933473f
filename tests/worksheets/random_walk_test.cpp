// A user who does anything in any order: what is in the file must always be what a simple model of
// the file says, field by field, whatever was on the screen in between.
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>

#include <array>
#include <map>
#include <random>

#include "datafile/FieldReaders.h"
#include "datafile/ZoneKeys.h"
#include "platform/text/Numbers.h"
#include "support/sanitizers.h"
#include "worksheet_fixture.h"
#include "worksheets/cost/frm6SuppressAcre.h"
#include "worksheets/goals/frm2RMAs.h"
#include "worksheets/nvc/frm5NVCTable.h"
#include "worksheets/resources/frm3SRMaster.h"
#include "worksheets/zones/frm4FMZs.h"

using worksheets::Zone;

using namespace PrepDatatables;
using FieldReaders::LongField;
using FieldReaders::SingleField;
using FieldReaders::TextField;

namespace {

constexpr int kSteps = 2000 / support::kOneOf;
constexpr int kMostZones = 5;
constexpr int kMostResources = 12;
constexpr int kMostGoals = 6;

struct Zone {
    int key = 0;
    QString name;
    int locations = 1;
    std::array<std::pair<float, float>, ZoneKeys::kCostClasses> classes{};
    // By location, resource, level: values outlive a smaller number of locations.
    std::map<std::array<int, 3>, float> values;
};

struct ListedResource {
    std::array<QString, 3> texts;
    float cost = 0;
};

struct Goal {
    int key = 0;
    QString heading;
    QString body;
};

class RandomWalk : public WorksheetTest {
protected:
    int Below(int limit) { return static_cast<int>(random_() % static_cast<unsigned>(limit)); }
    QString Word() {
        static const QString kLetters = QStringLiteral("abcXYZ 019.-'&");
        QString word;
        for (int i = Below(8); i >= 0; --i) {
            word += kLetters[Below(static_cast<int>(kLetters.size()))];
        }
        return word;
    }
    QString Number() {
        static const std::array<const char*, 10> kTexts{"0",    "7",     "-12.5", "1250",  "0.9",
                                                        "99.5", "12abc", "x",     "-0.25", "1,000"};
        return Below(2) == 0 ? QString::fromLatin1(kTexts[static_cast<std::size_t>(Below(10))])
                             : QString::number(Below(99999));
    }
    // Ends an edit in one of the ways that keep what was typed, or leaves it open.
    void EndEdit() {
        static constexpr std::array kKeys{Qt::Key_Return, Qt::Key_Tab, Qt::Key_Down, Qt::Key_Up};
        const int way = Below(5);
        if (way < 4) {
            Press(kKeys[static_cast<std::size_t>(way)]);
        }
    }
    // Types over a cell; false when the edit was given up with Esc.
    bool TypeOver(vsFlexGrid& grid, int row, int col, const QString& text) {
        if (grid.Editing() && grid.Row() == row && grid.Col() == col) {
            // Esc would take back what was typed into it before as well.
            Press(Qt::Key_Return);
        }
        ClickCell(grid, row, col);
        Press(Qt::Key_A, Qt::ControlModifier);
        Type(text);
        if (Below(8) == 0) {
            Press(Qt::Key_Escape);
            return false;
        }
        EndEdit();
        return true;
    }

    void Go(int sheet) {
        Leave();
        sheet_ = sheet;
        zone_ = 0;
        location_ = 1;
        goal_ = 0;
        switch (sheet) {
            case 2:
                Load<frm2RMAs>();
                break;
            case 3:
                Load<frm3SRMaster>();
                break;
            case 4:
                Load<frm4FMZs>();
                break;
            case 5:
                Load<frm5NVCTable>();
                break;
            default:
                Load<frm6SuppressAcre>();
        }
    }

    void StepInGoals();
    void StepInResources();
    void StepInZones();
    void StepInNVC();
    void StepInCosts();
    void AddResource();

    void ExpectGoals();
    void ExpectResources();
    void ExpectZones();

    std::mt19937 random_{20260704};
    int sheet_ = 4;
    int zone_ = 0;
    int location_ = 1;
    int goal_ = 0;
    int nextGoal_ = 1;
    std::vector<Zone> zones_;
    std::vector<ListedResource> resources_;
    std::vector<Goal> goals_;
};

void RandomWalk::StepInGoals() {
    auto& list = Find<QListWidget>("lstRMAs");
    const int count = static_cast<int>(goals_.size());
    switch (Below(5)) {
        case 0:
            if (count < kMostGoals) {
                ClickButton("cmdAdd");
                goals_.push_back({nextGoal_++, {}, {}});
                goal_ = count;
            }
            return;
        case 1:
            if (count > 0 && Below(3) == 0) {
                const bool yes = Below(2) == 0;
                support::Answers answers({yes ? QMessageBox::Yes : QMessageBox::No});
                ClickButton("cmdDelete");
                if (yes) {
                    goals_.erase(goals_.begin() + goal_);
                    goal_ = 0;
                }
            }
            return;
        case 2:
            if (count > 0) {
                goal_ = Below(count);
                ClickAt(*list.viewport(), list.visualItemRect(list.item(goal_)).center());
            }
            return;
        case 3:
            if (count > 0) {
                Find<QLineEdit>("txtHeading").setFocus();
                Press(Qt::Key_A, Qt::ControlModifier);
                goals_[static_cast<std::size_t>(goal_)].heading = Word();
                Type(goals_[static_cast<std::size_t>(goal_)].heading);
            }
            return;
        default:
            if (count > 0) {
                const QString first = Word();
                const QString second = Word();
                Find<QPlainTextEdit>("txtBody").setFocus();
                Press(Qt::Key_A, Qt::ControlModifier);
                Type(first);
                Press(Qt::Key_Return);
                Type(second);
                goals_[static_cast<std::size_t>(goal_)].body =
                    first + QStringLiteral("\r\n") + second;
            }
    }
}

void RandomWalk::AddResource() {
    const QString name = QStringLiteral("N") + Word();
    const int place = Below(static_cast<int>(resources_.size()) + 1) + 1;
    support::Answers answers;
    answers.Then([&](QWidget& dialog) {
        const auto box = [&](const char* which) {
            return dialog.findChild<QLineEdit*>(QString::fromLatin1(which));
        };
        QTest::keyClicks(box("txtResourceName"), name);
        QTest::keyClicks(box("txtShortName"), QStringLiteral("s"));
        QTest::keyClicks(box("txtUnits"), QStringLiteral("u"));
        QTest::keyClicks(box("txtCost"), QStringLiteral("12"));
        box("txtPosition")->clear();
        QTest::keyClicks(box("txtPosition"), QString::number(place));
        dialog.findChild<QAbstractButton*>(QStringLiteral("cmdOK"))->click();
    });
    ClickButton("cmdAdd");
    resources_.insert(resources_.begin() + (place - 1),
                      {{name, QStringLiteral("s"), QStringLiteral("u")}, 12});
}

void RandomWalk::StepInResources() {
    vsFlexGrid& grid = Grid("grdMasterList");
    const int count = static_cast<int>(resources_.size());
    if (count == 0 || (count < kMostResources && Below(6) == 0)) {
        AddResource();
        return;
    }
    const int row = Below(count) + 1;
    ListedResource& resource = resources_[static_cast<std::size_t>(row - 1)];
    switch (Below(4)) {
        case 0: {
            const int place = Below(count) + 1;
            if (TypeOver(grid, row, 0, QString::number(place))) {
                grid.FinishEdit();
                const ListedResource moved = resource;
                resources_.erase(resources_.begin() + (row - 1));
                resources_.insert(resources_.begin() + (place - 1), moved);
            }
            return;
        }
        case 1: {
            const int col = Below(3) + 1;
            static constexpr std::array kLengths{50, 20, 10};
            const QString text = Word().left(kLengths[static_cast<std::size_t>(col - 1)]);
            if (TypeOver(grid, row, col, text)) {
                resource.texts[static_cast<std::size_t>(col - 1)] = text;
            }
            return;
        }
        case 2: {
            const QString text = Number().left(5);
            if (TypeOver(grid, row, 4, text)) {
                resource.cost = static_cast<float>(platform::Val(text));
            }
            return;
        }
        default:
            if (Below(4) == 0) {
                ClickCell(grid, row, 1);
                support::Answers answers({QMessageBox::Yes});
                ClickButton("cmdDelete");
                resources_.erase(resources_.begin() + (row - 1));
            }
    }
}

void RandomWalk::StepInZones() {
    vsFlexGrid& grid = Grid("grdFMZs");
    const int count = static_cast<int>(zones_.size());
    if (count == 0 || (count < kMostZones && Below(10) == 0)) {
        ClickButton("cmdAdd");
        Zone zone;
        zone.key = count + 1;
        zone.name = Word();
        Type(zone.name);
        EndEdit();
        zones_.push_back(zone);
        return;
    }
    Zone& zone = zones_[static_cast<std::size_t>(Below(count))];
    if (Below(2) == 0) {
        const QString name = Word();
        if (TypeOver(grid, zone.key, 0, name)) {
            zone.name = name;
        }
        return;
    }
    const int locations = Below(5);
    if (TypeOver(grid, zone.key, 1, QString::number(locations))) {
        zone.locations = std::max(locations, 1);
    }
}

void RandomWalk::StepInNVC() {
    if (Below(6) == 0) {
        const int chosen = Below(static_cast<int>(zones_.size()));
        location_ = chosen == zone_ ? location_ : 1;
        zone_ = chosen;
        Choose("cboFMZs", zone_);
        return;
    }
    Zone& zone = zones_[static_cast<std::size_t>(zone_)];
    if (Below(6) == 0) {
        location_ = Below(zone.locations) + 1;
        Choose("cboRepLocs", location_ - 1);
        return;
    }
    const int resource = Below(ZoneKeys::kResources) + 1;
    const int level = Below(ZoneKeys::kFilLevels) + 1;
    const QString text = Number();
    if (TypeOver(Grid("grdNVC"), resource, level, text)) {
        zone.values[{location_, resource, level}] = static_cast<float>(platform::Val(text));
    }
}

void RandomWalk::StepInCosts() {
    if (Below(6) == 0) {
        zone_ = Below(static_cast<int>(zones_.size()));
        Choose("cboFMZs", zone_);
        return;
    }
    auto& sizeClass = zones_[static_cast<std::size_t>(zone_)]
                          .classes[static_cast<std::size_t>(Below(ZoneKeys::kCostClasses))];
    const int row =
        static_cast<int>(&sizeClass - zones_[static_cast<std::size_t>(zone_)].classes.data()) + 2;
    const bool size = Below(2) == 0;
    const QString text = Number();
    if (TypeOver(Grid("grdCosts"), row, size ? 1 : 2, text)) {
        (size ? sizeClass.first : sizeClass.second) = static_cast<float>(platform::Val(text));
    }
}

void RandomWalk::ExpectGoals() {
    ASSERT_EQ(tblManagementGoals->RecordCount(), static_cast<int>(goals_.size()));
    for (const Goal& goal : goals_) {
        tblManagementGoals->Seek("=", {goal.key});
        ASSERT_FALSE(tblManagementGoals->NoMatch());
        EXPECT_EQ(TextField(*tblManagementGoals, QStringLiteral("ManagementArea")), goal.heading);
        EXPECT_EQ(TextField(*tblManagementGoals, QStringLiteral("Explanation")), goal.body);
    }
}

void RandomWalk::ExpectResources() {
    ASSERT_EQ(tblSRMasterList->RecordCount(), static_cast<int>(resources_.size()));
    tblSRMasterList->SetIndex(QStringLiteral("Sequence"));
    int place = 0;
    for (const ListedResource& resource : resources_) {
        place == 0 ? tblSRMasterList->MoveFirst() : tblSRMasterList->MoveNext();
        ++place;
        EXPECT_EQ(LongField(*tblSRMasterList, QStringLiteral("Sequence")), place);
        EXPECT_EQ(TextField(*tblSRMasterList, QStringLiteral("LongName")), resource.texts[0]);
        EXPECT_EQ(TextField(*tblSRMasterList, QStringLiteral("ShortName")), resource.texts[1]);
        EXPECT_EQ(TextField(*tblSRMasterList, QStringLiteral("Units")), resource.texts[2]);
        EXPECT_EQ(SingleField(*tblSRMasterList, QStringLiteral("Cost")), resource.cost);
    }
    tblSRMasterList->SetIndex(QStringLiteral("PrimaryKey"));
}

void RandomWalk::ExpectZones() {
    ASSERT_EQ(tblFMZList->RecordCount(), static_cast<int>(zones_.size()));
    for (const Zone& zone : zones_) {
        tblFMZList->Seek("=", {zone.key});
        ASSERT_FALSE(tblFMZList->NoMatch());
        EXPECT_EQ(TextField(*tblFMZList, QStringLiteral("Name")), zone.name);
        EXPECT_EQ(LongField(*tblFMZList, QStringLiteral("RLCount")), zone.locations);
        for (int i = 0; i < ZoneKeys::kCostClasses; ++i) {
            tblSuppressionPerAcreCost->Seek("=", {zone.key, i + 1});
            const auto& [size, cost] = zone.classes[static_cast<std::size_t>(i)];
            EXPECT_EQ(SingleField(*tblSuppressionPerAcreCost, QStringLiteral("TopSize")), size);
            EXPECT_EQ(SingleField(*tblSuppressionPerAcreCost, QStringLiteral("Cost")), cost);
        }
        for (const auto& [place, value] : zone.values) {
            tblNVCPerAcre->Seek("=", {ZoneKeys::FMZRLKey(zone.key, place[0]), place[1]});
            ASSERT_FALSE(tblNVCPerAcre->NoMatch());
            EXPECT_EQ(SingleField(*tblNVCPerAcre, QStringLiteral("FIL%1").arg(place[2])), value);
        }
    }
}

TEST_F(RandomWalk, ThousandsOfActions_EndInAFileEqualToTheModel) {
    Load<frm4FMZs>();
    StepInZones();
    for (int step = 0; step < kSteps && !HasFailure(); ++step) {
        if (Below(15) == 0) {
            Go(Below(5) + 2);
        }
        switch (sheet_) {
            case 2:
                StepInGoals();
                break;
            case 3:
                StepInResources();
                break;
            case 4:
                StepInZones();
                break;
            case 5:
                StepInNVC();
                break;
            default:
                StepInCosts();
        }
        if (step % 50 == 49) {
            SCOPED_TRACE(step);
            form_->Save();
            ExpectGoals();
            ExpectResources();
            ExpectZones();
        }
        ASSERT_TRUE(errors_.empty()) << errors_.front().description.toStdString();
    }
    Leave();
    const QString path = PrepDatafile::CurrentPath();
    PrepDatafile::CloseDatafile();
    EXPECT_EQ(support::Complaints(path), QString());
}

}  // namespace
