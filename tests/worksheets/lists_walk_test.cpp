// A user who types, pastes, clears, adds, deletes, moves and takes back in any order on the lists
// of zones, resources and goals: after each step every cell shows what is going to be stored or is
// marked, what is saved is what shows, and all of it taken back is the first state of screen and
// file.
#include <QClipboard>
#include <QGuiApplication>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>

#include <array>
#include <functional>
#include <random>

#include "WalkSeed.h"
#include "datafile/FieldReaders.h"
#include "platform/text/Numbers.h"
#include "worksheet_fixture.h"
#include "worksheets/goals/frm2RMAs.h"
#include "worksheets/resources/frm3SRMaster.h"
#include "worksheets/zones/ZoneRecords.h"
#include "worksheets/zones/frm4FMZs.h"

using worksheets::Resource;
using worksheets::ResourceList;

using namespace PrepDatatables;

namespace {

// TARN_STEPS asks for more of them.
int Steps() {
    constexpr int kSteps = 400;
    bool set = false;
    const int steps = qEnvironmentVariableIntValue("TARN_STEPS", &set);
    return set ? steps : kSteps;
}

class ListsWalk : public WorksheetTest {
protected:
    int Below(int limit) { return static_cast<int>(random_() % static_cast<unsigned>(limit)); }
    QString Text() {
        static constexpr std::array kTexts{"7",   "0",  "2.5",   "1,450", "x",    "-3",
                                           "abc", "12", "a b c", "9e9",   "1e30", "4"};
        return QString::fromLatin1(kTexts[static_cast<std::size_t>(Below(kTexts.size()))]);
    }
    static QString Dump(const dao::Recordset& records, const QStringList& fields) {
        QStringList texts;
        for (const QString& field : fields) {
            texts += records.IsNull(field) ? QStringLiteral("-") : records.Text(field);
        }
        return texts.join(u'|');
    }
    // Everything in the tables of the three worksheets, a line for each record.
    static QStringList File() {
        const std::vector<std::pair<Table*, QStringList>> tables{
            {&tblFMZList, {"Key", "Name", "RLCount"}},
            {&tblNVCPerAcre, {"FMZRLKey", "ResourceNumber", "FIL1"}},
            {&tblSuppressionPerAcreCost, {"FMZKey", "Sequence", "Cost"}},
            {&tblSRMasterList,
             {"Key", "Sequence", "LongName", "ShortName", "Units", "UnitType", "Cost"}},
            {&tblManagementGoals, {"Key", "ManagementArea", "Explanation"}}};
        QStringList lines;
        for (const auto& [table, fields] : tables) {
            if ((*table)->RecordCount() == 0) {
                continue;
            }
            for ((*table)->MoveFirst(); !(*table)->EndOfFile(); (*table)->MoveNext()) {
                lines += Dump(**table, fields);
            }
        }
        return lines;
    }
    static QStringList Screen(const vsFlexGrid& grid) {
        QStringList lines;
        for (int row = 1; row < grid.Rows(); ++row) {
            QStringList texts;
            for (int col = 0; col < grid.Cols(); ++col) {
                texts += grid.TextMatrix(row, col);
            }
            lines += texts.join(u'|');
        }
        return lines;
    }
    static void ExpectStoredOrMarked(vsFlexGrid& grid, int step) {
        for (int row = 1; row < grid.Rows(); ++row) {
            for (int col = 0; col < grid.Cols(); ++col) {
                ASSERT_TRUE(grid.TextMatrix(row, col) == grid.Table()->Stored(row, col) ||
                            !grid.CellNote(row, col).isEmpty())
                    << "step " << step << ", row " << row << ", column " << col;
            }
        }
    }
    void TypeIntoAnyCell(vsFlexGrid& grid) {
        if (grid.Rows() < 2) {
            return;
        }
        ClickCell(grid, Below(grid.Rows() - 1) + 1, Below(grid.Cols() > 2 ? 5 : 2));
        Type(Text());
        static constexpr std::array kEnds{Qt::Key_Return, Qt::Key_Tab,    Qt::Key_Down,
                                          Qt::Key_Up,     Qt::Key_Escape, Qt::Key_F2};
        Press(kEnds[static_cast<std::size_t>(Below(kEnds.size()))]);
    }
    void SelectAnyBlock(vsFlexGrid& grid) {
        if (grid.Rows() < 2) {
            return;
        }
        ClickCell(grid, Below(grid.Rows() - 1) + 1, Below(2));
        Press(Qt::Key_Escape);
        for (int key = Below(4); key > 0; --key) {
            Press(Below(2) == 0 ? Qt::Key_Down : Qt::Key_Right, Qt::ShiftModifier);
        }
    }
    // Boxes that inform are closed, questions are answered with No.
    void StepInGrid(vsFlexGrid& grid) {
        support::Answers answers;
        switch (Below(7)) {
            case 0:
                SelectAnyBlock(grid);
                Press(Qt::Key_C, Qt::ControlModifier);
                return;
            case 1:
                SelectAnyBlock(grid);
                Press(Qt::Key_V, Qt::ControlModifier);
                return;
            case 2:
                SelectAnyBlock(grid);
                Press(Qt::Key_Delete);
                return;
            default:
                TypeIntoAnyCell(grid);
        }
    }
    void UndoAll(const std::function<QStringList()>& screen) {
        for (int step = 0; step < 3 * Steps(); ++step) {
            Press(Qt::Key_Z, Qt::ControlModifier);
        }
        EXPECT_EQ(screen(), screenAtStart_);
        form_->Save();
        EXPECT_EQ(File(), fileAtStart_);
    }
    void Walk(const std::function<void()>& step, const std::function<void()>& reload,
              const std::function<QStringList()>& screen) {
        screenAtStart_ = screen();
        fileAtStart_ = File();
        for (int number = 0; number < Steps() && !HasFatalFailure(); ++number) {
            switch (Below(12)) {
                case 0:
                    Press(Qt::Key_Z, Qt::ControlModifier);
                    break;
                case 1:
                    Press(Qt::Key_Y, Qt::ControlModifier);
                    break;
                case 2:
                    Save();
                    break;
                case 3:
                    if (Below(4) == 0) {
                        Save();
                        Unload();
                        reload();
                    }
                    break;
                default:
                    step();
            }
        }
        UndoAll(screen);
        Press(Qt::Key_Y, Qt::ControlModifier);
        UndoAll(screen);
    }
    // A number of locations that does not fit is the one thing that a save refuses here.
    void Save() {
        try {
            form_->Save();
            if (compare_) {
                compare_();
            }
        } catch (const platform::RuntimeError& error) {
            EXPECT_EQ(error.Number(), platform::kDuplicateKey) << error.Description().toStdString();
        }
    }

    static bool ReadsAs(const QString& shown, const QString& stored) {
        return shown == stored || (platform::IsPlainNumber(stored) &&
                                   platform::TypedSingle(shown) == platform::TypedSingle(stored));
    }
    // What a person reads in a row and what its record holds, once all is saved.
    static void ExpectInFile(vsFlexGrid& grid, Table& table, const QStringList& fields) {
        for (int row = 1; row < grid.Rows(); ++row) {
            table->Seek("=", {grid.RowData(row)});
            ASSERT_FALSE(table->NoMatch()) << "row " << row;
            for (int col = 0; col < fields.size(); ++col) {
                const QString& field = fields[col];
                const QString stored = table->IsNull(field) ? QString() : table->Text(field);
                ASSERT_TRUE(ReadsAs(grid.TextMatrix(row, col), stored) ||
                            grid.CellNote(row, col).endsWith(u' ' + stored))
                    << row << ", " << field.toStdString() << ": "
                    << grid.TextMatrix(row, col).toStdString() << ", " << stored.toStdString();
            }
        }
    }

    std::mt19937 random_{WalkSeed()};
    std::function<void()> compare_;
    QStringList screenAtStart_;
    QStringList fileAtStart_;
};

TEST_F(ListsWalk, Zones_TakenBackAreTheFirstState) {
    for (int zone = 1; zone <= 3; ++zone) {
        ZoneRecords::Create(QStringLiteral("Zone %1").arg(zone), zone);
    }
    Load<frm4FMZs>();
    compare_ = [this] { ExpectInFile(Grid("grdFMZs"), tblFMZList, {"Name", "RLCount"}); };
    int step = 0;
    Walk(
        [&] {
            vsFlexGrid& grid = Grid("grdFMZs");
            if (Below(12) == 0 && grid.Rows() < 8) {
                ClickButton("cmdAdd");
            } else {
                StepInGrid(grid);
            }
            ExpectStoredOrMarked(grid, ++step);
        },
        [this] { Load<frm4FMZs>(); }, [this] { return Screen(Grid("grdFMZs")); });
}

TEST_F(ListsWalk, Resources_TakenBackAreTheFirstState) {
    ResourceList list;
    for (int row = 1; row <= 4; ++row) {
        Resource resource;
        resource.longName = QStringLiteral("R%1").arg(row);
        resource.unitType = QStringLiteral("item");
        resource.cost = 2.5F;
        list.Insert(QString(), resource, row);
    }
    Load<frm3SRMaster>();
    compare_ = [this] {
        ExpectInFile(Grid("grdMasterList"), tblSRMasterList,
                     {"Sequence", "LongName", "ShortName", "Units", "Cost"});
    };
    int step = 0;
    Walk(
        [&] {
            vsFlexGrid& grid = Grid("grdMasterList");
            if (Below(10) == 0 && grid.Rows() > 2) {
                support::Answers answers({QMessageBox::Yes});
                ClickButton("cmdDelete");
            } else if (Below(10) == 0) {
                Find<QLineEdit>("txtSource").setFocus();
                Type(Text());
            } else if (grid.Rows() < 20) {
                StepInGrid(grid);
            } else {
                support::Answers answers;
                TypeIntoAnyCell(grid);
            }
            ExpectStoredOrMarked(grid, ++step);
        },
        [this] { Load<frm3SRMaster>(); },
        [this] { return Screen(Grid("grdMasterList")) << Find<QLineEdit>("txtSource").text(); });
}

TEST_F(ListsWalk, Goals_TakenBackAreTheFirstState) {
    Load<frm2RMAs>();
    ClickButton("cmdAdd");
    Type(QStringLiteral("North"));
    Leave();
    PrepDatafile::CloseDatafile();
    OpenFile(PrepDatafile::CurrentPath());
    Load<frm2RMAs>();
    const auto screen = [this] {
        QStringList lines;
        const auto& list = Find<QListWidget>("lstRMAs");
        for (int row = 0; row < list.count(); ++row) {
            lines += list.item(row)->text();
        }
        return lines;
    };
    Walk(
        [&] {
            auto& list = Find<QListWidget>("lstRMAs");
            const int choice = Below(6);
            if (choice == 0 && list.count() < 8) {
                ClickButton("cmdAdd");
            } else if (choice == 1) {
                support::Answers answers({QMessageBox::Yes});
                ClickButton("cmdDelete");
            } else if (choice == 2 && list.count() > 0) {
                ClickAt(*list.viewport(),
                        list.visualItemRect(list.item(Below(list.count()))).center());
            } else if (choice == 3 && list.count() > 0) {
                Find<QLineEdit>("txtHeading").setFocus();
                Type(Text());
            } else if (list.count() > 0) {
                Find<QPlainTextEdit>("txtBody").setFocus();
                Type(Text());
                Press(Below(3) == 0 ? Qt::Key_Return : Qt::Key_Backspace);
            }
        },
        [this] { Load<frm2RMAs>(); }, screen);
}

}  // namespace
