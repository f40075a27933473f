// Costs per acre by fire size and their worksheet.
#include <random>
#include <set>

#include "datafile/FieldReaders.h"
#include "platform/RuntimeError.h"
#include "worksheet_fixture.h"
#include "worksheets/cost/c35AACTable.h"
#include "worksheets/cost/frm6SuppressAcre.h"
#include "worksheets/zones/ZoneRecords.h"

#include <QAbstractItemModel>
#include <QLabel>

using PrepDatatables::tblSuppressionPerAcreCost;

namespace {

class CostTest : public WorksheetTest {
protected:
    void SetUp() override {
        WorksheetTest::SetUp();
        first_ = ZoneRecords::Create(QStringLiteral("North"), 1);
        second_ = ZoneRecords::Create(QStringLiteral("South"), 1);
    }
    static float Stored(int key, int sequence, const char* field) {
        tblSuppressionPerAcreCost->Seek("=", {key, sequence});
        return FieldReaders::SingleField(*tblSuppressionPerAcreCost, QString::fromLatin1(field));
    }
    static bool IsNull(int key, int sequence) {
        tblSuppressionPerAcreCost->Seek("=", {key, sequence});
        return tblSuppressionPerAcreCost->IsNull(QStringLiteral("Cost"));
    }

    // What the line under the grid says.
    QString Note() {
        const auto& line = Find<QLabel>("lblNote");
        EXPECT_EQ(line.isVisible(), !line.text().isEmpty());
        return line.text();
    }

    int first_ = 0;
    int second_ = 0;
};

c35AACTable Table(const std::vector<std::pair<float, float>>& classes) {
    c35AACTable table;
    for (std::size_t i = 0; i < classes.size(); ++i) {
        table.TopSize(static_cast<int>(i) + 1, classes[i].first);
        table.Cost(static_cast<int>(i) + 1, classes[i].second);
    }
    return table;
}

TEST(CostForSize, SizeAtABound_BelongsToThatClass) {
    const auto table = Table({{10, 500}, {100, 300}, {1000, 200}, {0, 150}});
    EXPECT_EQ(table.CostForSize(10), 500);
    EXPECT_EQ(table.CostForSize(10.5F), 300);
    EXPECT_EQ(table.CostForSize(1000), 200);
    EXPECT_EQ(table.CostForSize(5000), 150) << "the open-ended class";
}

TEST(CostForSize, NoOpenEndedClass_TakesTheLastBoundedOne) {
    EXPECT_EQ(Table({{10, 500}, {100, 300}, {1000, 200}}).CostForSize(5000), 200);
}

TEST(CostForSize, ZeroOrLess_TakesTheFirstClass) {
    const auto table = Table({{10, 500}, {100, 300}});
    EXPECT_EQ(table.CostForSize(0), 500);
    EXPECT_EQ(table.CostForSize(-1), 500);
}

TEST(CostForSize, EmptyTable_CostsNothing) {
    const c35AACTable table;
    EXPECT_EQ(table.CostForSize(0), 0);
    EXPECT_EQ(table.CostForSize(100), 0);
}

TEST(CostForSize, SingleOpenClass_CoversEverySize) {
    const auto table = Table({{0, 80}});
    EXPECT_EQ(table.CostForSize(0.01F), 80);
    EXPECT_EQ(table.CostForSize(1e6F), 80);
    EXPECT_EQ(table.CostForSize(0), 80);
}

TEST(CostForSize, CostBehindAGap_IsNotTaken) {
    EXPECT_EQ(Table({{10, 500}, {0, 0}, {0, 40}}).CostForSize(50), 500);
}

// With ascending bounds in use from class 1 on, the cost is that of the first class that reaches
// the size, else the open-ended one behind them, else the last one.
TEST(CostForSize, RandomTablesOfTheUsualShape_AgreeWithThePlainRule) {
    std::mt19937 random(5);
    std::uniform_int_distribution<int> count(1, 8);
    std::uniform_real_distribution<float> step(0.5F, 500);
    for (int round = 0; round < 3000; ++round) {
        const int used = count(random);
        const bool open = round % 2 == 0;
        std::vector<std::pair<float, float>> classes;
        float top = 0;
        for (int i = 0; i < used; ++i) {
            top += step(random);
            classes.emplace_back(top, step(random));
        }
        if (open) {
            classes.emplace_back(0.0F, step(random));
        }
        const float size = step(random) * static_cast<float>(used);
        float expected = classes.back().second;
        for (int i = used - 1; i >= 0; --i) {
            if (size <= classes[static_cast<std::size_t>(i)].first) {
                expected = classes[static_cast<std::size_t>(i)].second;
            }
        }
        ASSERT_EQ(Table(classes).CostForSize(size), expected) << size;
    }
}

TEST(CostTable, IndexOutside_IsASubscriptError) {
    c35AACTable table;
    EXPECT_THROW((void)table.TopSize(0), platform::RuntimeError);
    EXPECT_THROW((void)table.Cost(10), platform::RuntimeError);
    EXPECT_THROW(table.TopSize(10, 1), platform::RuntimeError);
    EXPECT_THROW(table.Cost(-1, 1), platform::RuntimeError);
}

TEST_F(CostTest, MissingRows_AreReportedAndNeverAddedAndLeavingStaysPossible) {
    for (const int sequence : {2, 9}) {
        tblSuppressionPerAcreCost->Seek("=", {first_, sequence});
        tblSuppressionPerAcreCost->Delete();
    }
    Load<frm6SuppressAcre>();
    Enter(Grid("grdCosts"), 3, 2, QStringLiteral("55"));
    Enter(Grid("grdCosts"), 4, 2, QStringLiteral("66"));
    Choose("cboFMZs", 1);
    ASSERT_EQ(errors_.size(), 1U);
    EXPECT_EQ(errors_[0].number, 3021);
    EXPECT_TRUE(errors_[0].description.contains(QStringLiteral("2, 9")));
    EXPECT_EQ(errors_[0].subject, QStringLiteral("North"));
    EXPECT_EQ(Find<QComboBox>("cboFMZs").currentIndex(), 1);
    EXPECT_EQ(Stored(first_, 3, "Cost"), 66);
    EXPECT_EQ(tblSuppressionPerAcreCost->RecordCount(), 16);
    Leave();
    EXPECT_EQ(errors_.size(), 1U) << "reported once";
}

TEST_F(CostTest, EqualValueAssigned_StillMarksTheTable) {
    c35AACTable table;
    table.Initialize(first_);
    table.SaveChanges();
    EXPECT_TRUE(IsNull(first_, 1));
    table.Cost(3, 0);
    table.SaveChanges();
    EXPECT_FALSE(IsNull(first_, 1));
    EXPECT_FALSE(IsNull(first_, 9));
    EXPECT_TRUE(IsNull(second_, 1));
    EXPECT_EQ(Count(folder_.Trace(), QStringLiteral("c35AACTable.Initialize %1").arg(first_)), 1);
    EXPECT_EQ(Count(folder_.Trace(), QStringLiteral("c35AACTable.SaveChanges")), 2);
}

TEST_F(CostTest, MissingRow_ReadsAsZeroAndFailsTheSave) {
    tblSuppressionPerAcreCost->Seek("=", {first_, 4});
    tblSuppressionPerAcreCost->Delete();
    c35AACTable table;
    table.Initialize(first_);
    EXPECT_EQ(table.Cost(4), 0);
    table.Cost(9, 90);
    EXPECT_THROW(table.SaveChanges(), platform::RuntimeError);
    EXPECT_EQ(Stored(first_, 9, "Cost"), 90) << "the other rows are saved";
}

TEST_F(CostTest, NewZone_ShowsTheFirstBoundAndZeroCosts) {
    Load<frm6SuppressAcre>();
    vsFlexGrid& grid = Grid("grdCosts");
    EXPECT_EQ(manager_.worksheetID, QStringLiteral("SCA"));
    EXPECT_EQ(grid.Rows(), 11);
    EXPECT_EQ(grid.TextMatrix(2, 0), QStringLiteral("0"));
    for (int row = 2; row <= 10; ++row) {
        EXPECT_EQ(grid.TextMatrix(row, 1), QString());
        EXPECT_EQ(grid.TextMatrix(row, 2), QStringLiteral("0"));
    }
    EXPECT_EQ(grid.TextMatrix(3, 0), QString());
    EXPECT_EQ(grid.TextMatrix(0, 0), QStringLiteral("Fire size, in acres"));
    EXPECT_EQ(grid.TextMatrix(0, 1), QStringLiteral("Fire size, in acres"));
    EXPECT_EQ(grid.TextMatrix(1, 1), QStringLiteral("To"));
    EXPECT_EQ(grid.TextMatrix(1, 2), QStringLiteral("Suppression cost\rper acre"));
    EXPECT_EQ(grid.ColWidth(1), 1400);
    EXPECT_EQ(grid.ColWidth(2), 1440);
}

TEST_F(CostTest, Trace_UsesTheNamesOfEachHandler) {
    Load<frm6SuppressAcre>();
    Enter(Grid("grdCosts"), 2, 1, QStringLiteral("10"));
    Leave();
    const QStringList trace = folder_.Trace();
    EXPECT_TRUE(trace.contains(QStringLiteral("   Load frmSuppressAcre")));
    EXPECT_EQ(Count(trace, QStringLiteral("frmSuppressAcre.Setup")), 1);
    EXPECT_EQ(Count(trace, QStringLiteral("frmCostPerAcre.cboFMZs_Click")), 1);
    EXPECT_GE(Count(trace, QStringLiteral("frmSuppressAcre.grdCosts_EnterCell")), 1);
    EXPECT_EQ(Count(trace, QStringLiteral("frmSuppressAcre.grdCosts_AfterEdit 2, 1")), 1);
    EXPECT_EQ(Count(trace, QStringLiteral("frmSuppressAcre.SaveChanges")), 1);
    for (const char* procedure : {"grdCosts_BeforeEdit", "grdCosts_ChangeEdit", "DisplayData",
                                  "ShowNextLowerBound", "FormatCostGrid"}) {
        EXPECT_GE(Count(trace, QStringLiteral("frmSuppressAcre.") + QLatin1String(procedure)), 1)
            << procedure;
    }
    EXPECT_EQ(trace.last(), QStringLiteral("   Unloaded frm6SuppressAcre"));
}

TEST_F(CostTest, ToCells_GiveTheNextClassItsFrom) {
    Load<frm6SuppressAcre>();
    vsFlexGrid& grid = Grid("grdCosts");
    const std::vector<std::pair<const char*, const char*>> cases{
        {"0.9", "1"}, {"0.5", "0.51"}, {"9", "10"}, {"5", "5.1"},
        {"10", "11"}, {"99.5", "100"}, {"0", ""},   {"9999999", ""}};
    for (const auto& [top, from] : cases) {
        Enter(grid, 4, 1, QString::fromLatin1(top));
        EXPECT_EQ(grid.TextMatrix(5, 0), QString::fromLatin1(from)) << top;
        EXPECT_EQ(grid.TextMatrix(6, 0), QString()) << "only the next class";
    }
}

TEST_F(CostTest, To_OfAClass_RecomputesTheFromOfTheNextOneOnly) {
    Load<frm6SuppressAcre>();
    vsFlexGrid& grid = Grid("grdCosts");
    Enter(grid, 3, 1, QStringLiteral("50"));
    Enter(grid, 6, 1, QStringLiteral("900"));
    grid.Select(4, 1);
    folder_.ForgetTrace();
    Type(QStringLiteral("70"));
    EXPECT_EQ(grid.TextMatrix(5, 0), QString()) << "only when the cell is left";
    EXPECT_EQ(Count(folder_.Trace(), QStringLiteral("frmSuppressAcre.ShowNextLowerBound")), 0);
    Press(Qt::Key_Return);
    EXPECT_EQ(Count(folder_.Trace(), QStringLiteral("frmSuppressAcre.ShowNextLowerBound")), 1);
    const std::vector<const char*> from{"0", "", "51", "71", "", "901", "", "", ""};
    for (int row = 2; row <= 10; ++row) {
        EXPECT_EQ(grid.TextMatrix(row, 0).toStdString(), from[static_cast<std::size_t>(row) - 2]);
    }
}

TEST_F(CostTest, SavedTwice_WritesOnce) {
    Load<frm6SuppressAcre>();
    Enter(Grid("grdCosts"), 2, 2, QStringLiteral("500"));
    form_->Save();
    EXPECT_EQ(Stored(first_, 1, "Cost"), 500);
    // What a second save would overwrite.
    tblSuppressionPerAcreCost->Edit();
    tblSuppressionPerAcreCost->SetField(QStringLiteral("Cost"), 7);
    tblSuppressionPerAcreCost->Update();
    form_->Save();
    EXPECT_EQ(Stored(first_, 1, "Cost"), 7);
    EXPECT_TRUE(errors_.empty());
}

TEST_F(CostTest, LastClass_UpdatesNothingFurther) {
    Load<frm6SuppressAcre>();
    Enter(Grid("grdCosts"), 10, 1, QStringLiteral("10"));
    EXPECT_TRUE(errors_.empty());
    Leave();
    EXPECT_EQ(Stored(first_, 9, "TopSize"), 10);
}

TEST_F(CostTest, EveryKeystroke_IsStored) {
    Load<frm6SuppressAcre>();
    vsFlexGrid& grid = Grid("grdCosts");
    ClickCell(grid, 4, 1);
    for (const auto& [key, stored] : {std::pair("1", "1"), {"2", "12"}, {"x", "12"}}) {
        Type(QString::fromLatin1(key));
        EXPECT_TRUE(grid.Editing());
        EXPECT_EQ(grid.TextMatrix(4, 1), QString::fromLatin1(stored)) << "what the table holds";
    }
    form_->Save();
    EXPECT_EQ(Stored(first_, 3, "TopSize"), 12) << "the leading number, with the editor open";
}

TEST_F(CostTest, ThousandsSeparator_EndsTheNumberAndIsReported) {
    Load<frm6SuppressAcre>();
    vsFlexGrid& grid = Grid("grdCosts");
    Enter(grid, 2, 2, QStringLiteral("1,200"));
    EXPECT_EQ(grid.TextMatrix(2, 2), QStringLiteral("1")) << "what is stored shows at once";
    for (const char* part : {"Class 1", "1,200", " 1.", "1200"}) {
        EXPECT_TRUE(Note().contains(QString::fromLatin1(part))) << part << Note().toStdString();
    }
    Enter(grid, 3, 2, QStringLiteral("-5"));
    EXPECT_EQ(Note(), QString());
    Leave();
    EXPECT_EQ(Stored(first_, 1, "Cost"), 1);
    EXPECT_EQ(Stored(first_, 2, "Cost"), -5) << "nothing is refused";
}

TEST_F(CostTest, AnotherZone_IsDrawnAnewWithoutTheNotesOfTheFormerOne) {
    Load<frm6SuppressAcre>();
    vsFlexGrid& grid = Grid("grdCosts");
    Enter(grid, 2, 2, QStringLiteral("1,200"));
    EXPECT_NE(Note(), QString());
    std::set<int> drawn;
    QObject::connect(grid.model(), &QAbstractItemModel::dataChanged, &grid,
                     [&drawn](const QModelIndex& first, const QModelIndex& last) {
                         for (int row = first.row(); row <= last.row(); ++row) {
                             drawn.insert(row);
                         }
                     });
    Choose("cboFMZs", 1);
    EXPECT_EQ(Note(), QString());
    EXPECT_EQ(drawn.size(), 9U);
}

TEST_F(CostTest, SizeBelowZero_IsMarkedThoughItsCellIsEmpty) {
    Load<frm6SuppressAcre>();
    vsFlexGrid& grid = Grid("grdCosts");
    Enter(grid, 2, 1, QStringLiteral("-3"));
    EXPECT_EQ(grid.TextMatrix(2, 1), QString());
    EXPECT_EQ(grid.CellNote(2, 1), QStringLiteral("Stored as -3"));
}

TEST_F(CostTest, EachEdit_IsTakenBackAndRepeatedOnScreenAndInTheFile) {
    Load<frm6SuppressAcre>();
    vsFlexGrid& grid = Grid("grdCosts");
    Enter(grid, 2, 1, QStringLiteral("10"));
    Enter(grid, 2, 2, QStringLiteral("500"));
    Choose("cboFMZs", 1);
    Enter(grid, 3, 2, QStringLiteral("7"));
    form_->Save();
    for (int i = 0; i < 3; ++i) {
        Press(Qt::Key_Z, Qt::ControlModifier);
    }
    EXPECT_EQ(Find<QComboBox>("cboFMZs").currentIndex(), 0);
    EXPECT_EQ(grid.TextMatrix(2, 1), QString());
    EXPECT_EQ(grid.TextMatrix(3, 0), QString()) << "where the next class starts goes with it";
    EXPECT_EQ(grid.TextMatrix(2, 2), QStringLiteral("0"));
    EXPECT_EQ(Stored(second_, 2, "Cost"), 0) << "the zone that was left is saved";
    Press(Qt::Key_Y, Qt::ControlModifier);
    EXPECT_EQ(grid.TextMatrix(2, 1), QStringLiteral("10"));
    EXPECT_EQ(grid.TextMatrix(3, 0), QStringLiteral("11"));
    Press(Qt::Key_Z, Qt::ControlModifier);
    Leave();
    EXPECT_EQ(Stored(first_, 1, "TopSize"), 0);
    EXPECT_EQ(Stored(first_, 1, "Cost"), 0);
    EXPECT_TRUE(errors_.empty());
}

TEST_F(CostTest, FromColumn_NeverEntersEditMode) {
    Load<frm6SuppressAcre>();
    vsFlexGrid& grid = Grid("grdCosts");
    ClickCell(grid, 3, 0);
    EXPECT_FALSE(grid.Editing());
    Press(Qt::Key_F2);
    EXPECT_FALSE(grid.Editing());
    Type(QStringLiteral("7"));
    EXPECT_FALSE(grid.Editing());
    EXPECT_EQ(grid.TextMatrix(3, 0), QString());
    Press(Qt::Key_Right);
    EXPECT_TRUE(grid.Editing());
}

TEST_F(CostTest, EditLimits_Are9And7Characters) {
    Load<frm6SuppressAcre>();
    vsFlexGrid& grid = Grid("grdCosts");
    ClickCell(grid, 2, 1);
    Type(QStringLiteral("123456789012"));
    EXPECT_EQ(grid.EditText(), QStringLiteral("123456789"));
    Press(Qt::Key_Tab);
    Type(QStringLiteral("123456789012"));
    EXPECT_EQ(grid.EditText(), QStringLiteral("1234567"));
}

TEST_F(CostTest, AnotherZone_SavesTheOneThatIsLeft) {
    Load<frm6SuppressAcre>();
    ClickCell(Grid("grdCosts"), 2, 2);
    Type(QStringLiteral("250"));
    Choose("cboFMZs", 1);
    EXPECT_EQ(Stored(first_, 1, "Cost"), 250);
    EXPECT_EQ(Grid("grdCosts").TextMatrix(2, 2), QStringLiteral("0"));
    Leave();
    EXPECT_TRUE(IsNull(second_, 1));
}

TEST_F(CostTest, Esc_PutsTheStoredValueBack) {
    Load<frm6SuppressAcre>();
    vsFlexGrid& grid = Grid("grdCosts");
    Enter(grid, 2, 1, QStringLiteral("10"));
    ClickCell(grid, 2, 1);
    Type(QStringLiteral("777"));
    Press(Qt::Key_Escape);
    EXPECT_EQ(grid.TextMatrix(2, 1), QStringLiteral("10"));
    EXPECT_EQ(grid.TextMatrix(3, 0), QStringLiteral("11"));
    Leave();
    EXPECT_EQ(Stored(first_, 1, "TopSize"), 10);
}

TEST_F(CostTest, NegativeSizeThatIsShownEmpty_SurvivesEsc) {
    c35AACTable table;
    table.Initialize(first_);
    table.TopSize(1, -3);
    table.SaveChanges();
    Load<frm6SuppressAcre>();
    EXPECT_EQ(Grid("grdCosts").TextMatrix(2, 1), QString());
    ClickCell(Grid("grdCosts"), 2, 1);
    Type(QStringLiteral("5"));
    Press(Qt::Key_Escape);
    Leave();
    EXPECT_EQ(Stored(first_, 1, "TopSize"), -3);
}

TEST_F(CostTest, NumberBeyondTheSingles_IsReportedAndPutBack) {
    Load<frm6SuppressAcre>();
    vsFlexGrid& grid = Grid("grdCosts");
    Enter(grid, 2, 2, QStringLiteral("40"));
    Enter(grid, 2, 2, QStringLiteral("9e99"));
    EXPECT_TRUE(Note().contains(QStringLiteral("The number \"9e99\" is too large.")));
    EXPECT_EQ(grid.TextMatrix(2, 2), QStringLiteral("40"));
    Leave();
    EXPECT_EQ(Stored(first_, 1, "Cost"), 40);
}

TEST_F(CostTest, LongNumberInTheFile_SurvivesWalkingOverIt) {
    c35AACTable table;
    table.Initialize(first_);
    table.TopSize(1, 1.234567e-20F);
    table.Cost(1, 98765432.0F);
    table.SaveChanges();
    Load<frm6SuppressAcre>();
    ClickCell(Grid("grdCosts"), 2, 1);
    Press(Qt::Key_Tab);
    Press(Qt::Key_Tab);
    Press(Qt::Key_Tab);
    Leave();
    EXPECT_EQ(Stored(first_, 1, "TopSize"), 1.234567e-20F);
    EXPECT_EQ(Stored(first_, 1, "Cost"), 98765432.0F);
}

}  // namespace
