// Each action of a user, cut off at each of the calls by which it reaches the disk: the file that
// is left, with its log, holds all of the action or nothing of it, whether the program was killed
// there or the disk was full and the program went on.
#ifdef TARN_HAS_FAULTS

#include <gtest/gtest.h>

#include <cerrno>
#include <functional>
#include <map>
#include <memory>
#include <sstream>
#include <string>

#include "datafile/PrepDatafile.h"
#include "datafile/PrepDatatables.h"
#include "faults/faults.h"
#include "import/mImport.h"
#include "jet/check.h"
#include "jet/database.h"
#include "jet/recordset.h"
#include "platform/EventTrap.h"
#include "season/schema.h"
#include "support/Answers.h"
#include "support/BuiltProgramFolder.h"
#include "worksheets/cost/c35AACTable.h"
#include "worksheets/goals/GoalList.h"
#include "worksheets/nvc/NVCResourceNames.h"
#include "worksheets/nvc/c34NVCTable.h"
#include "worksheets/resources/ResourceList.h"
#include "worksheets/zones/ZoneList.h"

using worksheets::GoalList;
using worksheets::NVCResourceNames;
using worksheets::Resource;
using worksheets::ResourceList;
using worksheets::ZoneList;

namespace {

using tarn_faults::Mode;

// All that a file holds, a line for each record.
std::string Dump(const QString& path) {
    const auto file = jet::Database::Open(path.toStdU16String());
    std::ostringstream all;
    for (const std::string& name : file->TableNames()) {
        const auto rows = file->OpenTable(name);
        if (rows->RecordCount() > 0) {
            rows->SetIndex("PrimaryKey");
            rows->MoveFirst();
        }
        for (; !rows->IsEof(); rows->MoveNext()) {
            all << name;
            for (const jet::ColumnSchema& field : rows->Fields()) {
                const jet::Value value = rows->Get(field.name);
                const QString text = value.IsNull() ? QStringLiteral("-")
                                                    : QString::fromStdU16String(value.AsText());
                all << '|' << text.toStdString();
            }
            all << '\n';
        }
    }
    return all.str();
}

class WholeActions : public testing::TestWithParam<Mode> {
protected:
    ~WholeActions() override {
        TarnFaults()->mode = Mode::kOff;
        PrepDatafile::GiveUp();
    }

    // `ready` comes before what is watched, with the file open; `act` is watched. `isWhole` says
    // whether a state besides the first and the last is one in which the action may be left.
    struct Action {
        std::function<void()> make = [] {};
        std::function<void()> ready = [] {};
        std::function<void()> act;
        std::function<bool(const std::string& dump)> isWhole = [](const std::string&) {
            return false;
        };
    };

    void CutAtEachCall(const Action& action) {
        Begin(action);
        SwitchOn(Mode::kCount, 0);
        action.act();
        PrepDatafile::MakeDurable();
        const int calls = TarnFaults()->seen;
        SwitchOff();
        PrepDatafile::CloseDatafile();
        const std::string after = Dump(path_);
        ASSERT_NE(before_, after);
        ASSERT_GT(calls, 0);
        int changed = 0;
        for (int nth = 1; nth <= calls; ++nth) {
            SCOPED_TRACE("call " + std::to_string(nth) + " of " + std::to_string(calls));
            const auto isWhole = [&](const std::string& dump) {
                return dump == before_ || dump == after || action.isWhole(dump);
            };
            const bool done = Cut(action, nth);
            const std::string killed = Dump(killed_);
            EXPECT_TRUE(isWhole(killed)) << "killed:\n" << killed;
            const std::string left = Dump(path_);
            EXPECT_TRUE(isWhole(left)) << "full disk:\n" << left;
            EXPECT_TRUE(!done || left == after);
            EXPECT_TRUE(jet::CheckFile(killed_.toStdString()).IsSound());
            EXPECT_TRUE(jet::CheckFile(path_.toStdString()).IsSound());
            changed += killed == after ? 1 : 0;
            if (HasFailure()) {
                return;
            }
        }
        RecordProperty("calls", calls);
        RecordProperty("stored_when_killed", changed);
    }

    void Begin(const Action& action) {
        for (const QString& path : {path_, path_ + QStringLiteral("-log")}) {
            QFile::remove(path);
        }
        support::Copy(folder_.Path(QStringLiteral("FCD.new")), path_);
        action.make();
        if (!opensItself_) {
            ASSERT_TRUE(PrepDatafile::OpenDatatables(path_) && PrepDatatables::OpenRecordsets());
        }
        action.ready();
        PrepDatafile::MakeDurable();
        CopyTo(killed_);
        before_ = Dump(killed_);
    }

    // True when the action says that it has succeeded.
    bool Cut(const Action& action, int nth) {
        Begin(action);
        const support::Answers answers;
        SwitchOn(GetParam(), nth);
        const bool done = !platform::EventTrap::Attempt("action", [&] {
            action.act();
            PrepDatafile::MakeDurable();
        }) && TarnFaults()->happened == 0;
        CopyTo(killed_);
        SwitchOff();
        platform::EventTrap::Attempt("close", PrepDatafile::CloseDatafile);
        return done;
    }

    void CopyTo(const QString& place) const {
        for (const QString& end : {QString(), QStringLiteral("-log")}) {
            QFile::remove(place + end);
            if (QFile::exists(path_ + end)) {
                support::Copy(path_ + end, place + end);
            }
        }
    }

    static void SwitchOff() { TarnFaults()->mode = Mode::kOff; }
    static void SwitchOn(Mode mode, int nth) {
        SwitchOff();
        tarn_faults::Switchboard& board = *TarnFaults();
        qstrncpy(board.pattern, "Unit.fcd", sizeof board.pattern);
        board.calls = mode == Mode::kShort ? tarn_faults::kWrite | tarn_faults::kResize
                                           : tarn_faults::kAllChanges;
        board.error = ENOSPC;
        board.nth = nth;
        board.seen = 0;
        board.happened = 0;
        board.mode = mode;
    }

    // Zones "A" and "B", resources "Engine", "Dozer" and "Crew".
    static void AddRecords() {
        for (const char* name : {"A", "B"}) {
            ZoneRecords::Create(QString::fromLatin1(name), 1);
        }
        ResourceList list;
        list.Load();
        for (const char* name : {"Engine", "Dozer", "Crew"}) {
            Resource resource;
            resource.longName = QString::fromLatin1(name);
            list.Insert(QStringLiteral("Add"), resource, list.RowCount() + 1);
        }
    }
    static std::int32_t FirstZone() { return ZoneRecords::All().front().key; }

    support::ProgramFolder folder_;
    QString path_ = folder_.CostsPath(QStringLiteral("Unit.fcd"));
    QString killed_ = folder_.CostsPath(QStringLiteral("killed.fcd"));
    std::string before_;
    bool opensItself_ = false;
};

INSTANTIATE_TEST_SUITE_P(Kinds, WholeActions, testing::Values(Mode::kForGood, Mode::kShort),
                         [](const auto& kind) {
                             return std::string(kind.param == Mode::kShort ? "HalfAWrite"
                                                                           : "Nothing");
                         });

TEST_P(WholeActions, AddingAZone) {
    CutAtEachCall({.ready = AddRecords, .act = [] {
                       ZoneList zones;
                       zones.Load(QStringLiteral("Load"));
                       zones.Add(QStringLiteral("Add"));
                   }});
}

TEST_P(WholeActions, ChangingNamesAndNumbersOfLocations) {
    CutAtEachCall({.ready = AddRecords, .act = [] {
                       ZoneList zones;
                       zones.Load(QStringLiteral("Load"));
                       zones.Offer(1, ZoneList::kLocations, QStringLiteral("3"));
                       zones.Offer(2, ZoneList::kLocations, QStringLiteral("5"));
                       zones.Offer(2, ZoneList::kName, QStringLiteral("Ridge"));
                       zones.Save();
                   }});
}

TEST_P(WholeActions, TakingAZoneBackAndBringingItBack) {
    ZoneList zones;
    std::shared_ptr<ZoneList::Change> added;
    zones.SetListener([&](const QString&, const auto& change) { added = change; });
    const auto add = [&] {
        AddRecords();
        zones.Load(QStringLiteral("Load"));
        zones.Add(QStringLiteral("Add"));
    };
    CutAtEachCall({.ready = add, .act = [&] { zones.TakeBack(*added); }});
    CutAtEachCall({.ready =
                       [&] {
                           add();
                           zones.TakeBack(*added);
                       },
                   .act = [&] { zones.Repeat(*added); }});
}

TEST_P(WholeActions, AddingAResourceAboveOthers) {
    CutAtEachCall({.ready = AddRecords, .act = [] {
                       ResourceList list;
                       list.Load();
                       Resource resource;
                       resource.longName = QStringLiteral("Tanker");
                       list.Insert(QStringLiteral("Add"), resource, 1);
                   }});
}

TEST_P(WholeActions, MovingAResource) {
    CutAtEachCall({.ready = AddRecords, .act = [] {
                       ResourceList list;
                       list.Load();
                       list.MoveRow(3, 1);
                       list.Save();
                   }});
}

TEST_P(WholeActions, DeletingAResourceAndTakingThatBack) {
    ResourceList list;
    std::shared_ptr<ResourceList::Change> deleted;
    list.SetListener([&](const QString&, const auto& change) { deleted = change; });
    const auto load = [&] {
        AddRecords();
        list.Load();
    };
    CutAtEachCall({.ready = load, .act = [&] { list.Delete(QStringLiteral("Delete"), 1); }});
    CutAtEachCall({.ready =
                       [&] {
                           load();
                           list.Delete(QStringLiteral("Delete"), 1);
                       },
                   .act = [&] { list.TakeBack(*deleted); }});
}

TEST_P(WholeActions, PastingRowsBehindTheResources) {
    CutAtEachCall({.ready = AddRecords, .act = [] {
                       ResourceList list;
                       list.Load();
                       list.BeginAction(QStringLiteral("Paste"));
                       list.AppendRows(3);
                       for (int row = 4; row <= 6; ++row) {
                           list.Offer(row, ResourceList::kName, QStringLiteral("New"));
                       }
                       list.EndAction();
                   }});
}

TEST_P(WholeActions, SavingATableOfValues) {
    CutAtEachCall({.ready = AddRecords, .act = [] {
                       c34NVCTable table;
                       table.Initialize(FirstZone(), 1);
                       for (const int resource : {1, 7, 14}) {
                           table.NVCCellValue(resource, 2, 7777);
                       }
                       table.SaveChanges();
                   }});
}

TEST_P(WholeActions, SavingTheNamesOfResources) {
    CutAtEachCall({.act = [] {
        NVCResourceNames names;
        names.Load();
        names.SetName(1, QStringLiteral("Sawtimber"));
        names.SetName(14, QStringLiteral("Bridges"));
        names.Save();
    }});
}

TEST_P(WholeActions, SavingTheCostsOfAZone) {
    CutAtEachCall({.ready = AddRecords, .act = [] {
                       c35AACTable table;
                       table.Initialize(FirstZone());
                       for (const int row : {1, 5, 9}) {
                           table.Cost(row, 7777);
                       }
                       table.SaveChanges();
                   }});
}

TEST_P(WholeActions, AddingAndDeletingAGoal) {
    const auto add = [] {
        GoalList goals;
        goals.Load();
        goals.Add();
    };
    CutAtEachCall({.act = add});
    CutAtEachCall({.ready = add, .act = [] {
                       GoalList goals;
                       goals.Load();
                       goals.Delete(0);
                   }});
}

// A file of the format that had no goals.
void MakeOlder(const QString& path) {
    QFile::remove(path);
    const auto file = jet::Database::Create(path.toStdU16String(), jet::Version::kJet4);
    for (const jet::TableSchema& table : season::Tables()) {
        if (table.name != "ManagementGoals") {
            file->CreateTable(table);
        }
    }
    const auto rows = file->OpenTable("Properties");
    rows->AddNew();
    rows->Set("Property", u"DataFormatID");
    rows->Set("Value", u"3.00.00");
    rows->Update();
    rows->Close();
    file->Close();
}

TEST_P(WholeActions, ConvertingAnOlderFile) {
    opensItself_ = true;
    CutAtEachCall({.make = [this] { MakeOlder(path_); },
                   .act =
                       [this] {
                           if (!PrepDatafile::OpenDatatables(path_)) {
                               throw platform::RuntimeError(platform::kDamagedFile, "refused");
                           }
                       }});
}

// The rows of the tables that an import writes, as the zones say that they must be.
bool HasWholeZonesOnly(const std::string& dump) {
    std::istringstream lines(dump);
    std::map<std::string, int> rows;
    int locations = 0;
    for (std::string line; std::getline(lines, line);) {
        const std::string table = line.substr(0, line.find('|'));
        ++rows[table];
        if (table == "FMZList") {
            locations += std::stoi(line.substr(line.rfind('|') + 1));
        }
    }
    return rows["SuppressionPerAcreCost"] == 9 * rows["FMZList"] &&
           rows["NVCPerAcre"] == 14 * locations;
}

TEST_P(WholeActions, ImportingZones) {
    const QString source = folder_.CostsPath(QStringLiteral("source.mdb"));
    support::Copy(support::BuiltFolder() + QStringLiteral("/Costs/BRAM0000.mdb"), source);
    CutAtEachCall({.act = [&] { mImport::CopyFMZsFrom(source); }, .isWhole = HasWholeZonesOnly});
}

}  // namespace

#endif
