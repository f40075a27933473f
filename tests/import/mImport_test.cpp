#include <gtest/gtest.h>

#include <QApplication>
#include <QFile>
#include <QFileDialog>
#include <QLineEdit>

#include <algorithm>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <tuple>
#include <utility>
#include <vector>

#include "bram_files.h"
#include "datafile/FieldReaders.h"
#include "datafile/PrepDatafile.h"
#include "datafile/PrepDatatables.h"
#include "import/mImport.h"
#include "platform/system/Pointer.h"
#include "platform/system/ProgramFolder.h"
#include "support/Answers.h"
#include "support/BuiltProgramFolder.h"
#include "support/Corpus.h"
#include "support/system.h"
#include "tools/AssessmentSchema.h"

using mImport::ImportProgress;
using PrepDatatables::tblFMZList;
using PrepDatatables::tblNVCPerAcre;
using PrepDatatables::tblSuppressionPerAcreCost;

namespace {

const QString kNotBram =
    QStringLiteral("The file does not appear to be a valid BRAM file.\r\nIt cannot be opened.");

// A zone as the data file shows it after an import.
struct Zone {
    int key = 0;
    int locations = 0;
};

class ImportTest : public testing::Test {
protected:
    ImportTest() { OpenNewFile(); }
    ~ImportTest() override {
        if (PrepDatafile::IsDatafileOpen()) {
            PrepDatafile::CloseDatafile();
        }
    }

    // An empty data file, in place of the one that is open.
    void OpenNewFile() {
        if (PrepDatafile::IsDatafileOpen()) {
            PrepDatafile::CloseDatafile();
        }
        const QString path = folder_.CostsPath(QStringLiteral("GPFWA26.FCD"));
        QFile::remove(path);
        support::Copy(folder_.Path(QStringLiteral("FCD.new")), path);
        EXPECT_TRUE(PrepDatafile::OpenDatatables(path) && PrepDatatables::OpenRecordsets());
        folder_.ForgetTrace();
    }
    QString Made(const QString& name) {
        const QString path = folder_.CostsPath(name);
        if (!QFile::exists(path)) {
            bram_files::Make(path.toStdString());
        }
        return path;
    }
    mImport::Result Import(const QString& name) { return mImport::CopyFMZsFrom(Made(name)); }

    static Zone ZoneNamed(const QString& name) {
        for (tblFMZList->MoveFirst(); !tblFMZList->EndOfFile(); tblFMZList->MoveNext()) {
            if (tblFMZList->Text(QStringLiteral("Name")) == name) {
                return {tblFMZList->Long(QStringLiteral("Key")),
                        tblFMZList->Long(QStringLiteral("RLCount"))};
            }
        }
        ADD_FAILURE() << "no zone " << name.toStdString();
        return {};
    }
    static bool SeekCost(int key, int sequence) {
        tblSuppressionPerAcreCost->Seek("=", {key, sequence});
        return !tblSuppressionPerAcreCost->NoMatch();
    }
    static float Size(int key, int sequence) {
        EXPECT_TRUE(SeekCost(key, sequence));
        return FieldReaders::SingleField(*tblSuppressionPerAcreCost, QStringLiteral("TopSize"));
    }
    static float Value(int key, int resource, int level) {
        tblNVCPerAcre->Seek("=", {key, resource});
        EXPECT_FALSE(tblNVCPerAcre->NoMatch()) << key << ' ' << resource;
        const QString field = QStringLiteral("FIL%1").arg(level);
        EXPECT_FALSE(tblNVCPerAcre->IsNull(field));
        return tblNVCPerAcre->Single(field);
    }
    static void ExpectLikeSource(const QString& path);
    static int ValueRows() { return tblNVCPerAcre->RecordCount(); }
    int WarningCount(const QString& start) const {
        const QStringList lines = folder_.Trace();
        return int(std::count_if(lines.begin(), lines.end(), [&start](const QString& line) {
            return line.startsWith(QStringLiteral("  Warning! ") + start);
        }));
    }

    support::ProgramFolder folder_;
};

// Reads the source by itself, row after row and without its named indexes, and compares.
class Source {
public:
    // A class of fire sizes; nothing where the field is empty.
    struct Cost {
        std::optional<float> size;
        std::optional<float> cost;
        bool operator==(const Cost&) const = default;
    };

    explicit Source(const QString& path)
        : database_(dao::Database::Open(path, dao::OpenMode::kReading)) {
        EachRow("NVCTable", [this](const dao::Recordset& row) {
            values_[{row.Text("TableID"), LongOf(row, {"Resource", "ResNumber", "ResID"}),
                     LongOf(row, {"FIL", "FILevel", "FilLevel"})}] = row.Single("WPANRVCBF");
        });
        EachRow("NVCSetup", [this](const dao::Recordset& row) {
            tables_[{row.Text("FMZCode"), LongOf(row, {"RL", "RLNumber", "RepLoc"})}] =
                row.Text("TableID");
        });
    }

    void EachZone(const std::function<void(const QString&, const QString&, int)>& visit) const {
        EachRow("FMZ", [&visit](const dao::Recordset& row) {
            visit(row.Text("FMZCode"), row.Text("Describe"), row.Long("RLCount"));
        });
    }
    // Of a zone, in ascending order of the sizes, those without one first as the query has them.
    [[nodiscard]] std::vector<Cost> Costs(const QString& code) const {
        std::vector<Cost> costs;
        EachRow("AAC", [&](const dao::Recordset& row) {
            if (row.Text("FMZCode").compare(code, Qt::CaseInsensitive) == 0) {
                costs.push_back(CostOf(row, "UpAcres"));
            }
        });
        std::stable_sort(costs.begin(), costs.end(), [](const Cost& left, const Cost& right) {
            return left.size.value_or(-1) < right.size.value_or(-1);
        });
        return costs;
    }
    // 0 without a set-up, or without a value in its table.
    [[nodiscard]] float Value(const QString& code, int location, int resource, int level) const {
        const auto table = tables_.find({code, location});
        if (table == tables_.end()) {
            return 0;
        }
        const auto value = values_.find({table->second, resource, level});
        return value == values_.end() ? 0 : value->second;
    }
    static Cost CostOf(const dao::Recordset& row, const QString& size) {
        const auto read = [&row](const QString& field) {
            return row.IsNull(field) ? std::nullopt : std::optional(row.Single(field));
        };
        return {.size = read(size), .cost = read(QStringLiteral("Cost"))};
    }

private:
    // The fields of a key have other names in some files.
    static int LongOf(const dao::Recordset& row, const QStringList& names) {
        for (const QString& name : names) {
            try {
                return row.Long(name);
            } catch (const platform::RuntimeError&) {
                continue;
            }
        }
        ADD_FAILURE() << "no field " << names.join(u',').toStdString();
        return 0;
    }
    void EachRow(const char* table, const std::function<void(const dao::Recordset&)>& visit) const {
        const auto rows = database_->OpenTable(QString::fromLatin1(table));
        for (; !rows->EndOfFile(); rows->MoveNext()) {
            visit(*rows);
        }
    }

    std::unique_ptr<dao::Database> database_;
    std::map<std::tuple<QString, int, int>, float> values_;
    std::map<std::pair<QString, int>, QString> tables_;
};

void ExpectCostsLike(const Source& source, const QString& code, int key) {
    std::vector<Source::Cost> costs = source.Costs(code);
    costs.resize(9);
    for (int sequence = 1; sequence <= 9; ++sequence) {
        tblSuppressionPerAcreCost->Seek("=", {key, sequence});
        ASSERT_FALSE(tblSuppressionPerAcreCost->NoMatch()) << key << ' ' << sequence;
        EXPECT_EQ(Source::CostOf(*tblSuppressionPerAcreCost, QStringLiteral("TopSize")),
                  costs[std::size_t(sequence - 1)])
            << code.toStdString() << ' ' << sequence;
    }
}

// Imports a file and compares zone by zone.
void ImportTest::ExpectLikeSource(const QString& path) {
    SCOPED_TRACE(path.toStdString());
    const int zonesBefore = tblFMZList->RecordCount();
    const int valuesBefore = ValueRows();
    ASSERT_EQ(mImport::CopyFMZsFrom(path), mImport::kCopied);
    int zones = 0;
    int locationRows = 0;
    const Source source(path);
    source.EachZone([&](const QString& code, const QString& describe, int locations) {
        ++zones;
        locationRows += 14 * std::max(locations, 0);
        const Zone found = ZoneNamed(code + u'-' + describe);
        EXPECT_EQ(found.locations, locations);
        ExpectCostsLike(source, code, found.key);
        EXPECT_FALSE(SeekCost(found.key, 10));
        for (int location = 1; location <= locations; ++location) {
            for (int cell = 0; cell < 14 * 6; ++cell) {
                const int resource = 1 + cell / 6;
                const int level = 1 + cell % 6;
                EXPECT_EQ(Value(found.key * 100 + location, resource, level),
                          source.Value(code, location, resource, level));
            }
        }
    });
    EXPECT_EQ(tblFMZList->RecordCount() - zonesBefore, zones);
    EXPECT_EQ(ValueRows() - valuesBefore, locationRows);
    EXPECT_EQ(tblSuppressionPerAcreCost->RecordCount(), 9 * tblFMZList->RecordCount());
}

TEST_F(ImportTest, EveryKindOfFile_GivesTheZonesCostsAndRowsOfItsSource) {
    for (const char* name : {"basic.mdb", "other-types.mdb", "gaps.mdb", "no-setup.mdb"}) {
        OpenNewFile();
        ExpectLikeSource(Made(QString::fromLatin1(name)));
    }
    PrepDatafile::CloseDatafile();
    EXPECT_EQ(support::Complaints(PrepDatafile::CurrentPath()), QString());
}

TEST_F(ImportTest, FilesOfOtherOrigin_GiveTheZonesCostsAndRowsOfTheirSource) {
    if (!support::HasCorpus()) {
        GTEST_SKIP() << tarn_test::kNoCorpus;
    }
    for (const char* name : {"bram-basic.mdb", "bram-doubles.mdb", "bram-integers.mdb",
                             "bram-gaps.mdb", "bram-nosetup.mdb"}) {
        const QString copy = folder_.CostsPath(QString::fromLatin1(name));
        support::Copy(support::MadeFile(QString::fromLatin1(name)), copy);
        OpenNewFile();
        ExpectLikeSource(copy);
    }
    PrepDatafile::CloseDatafile();
    EXPECT_EQ(support::Complaints(PrepDatafile::CurrentPath()), QString());
}

TEST_F(ImportTest, Values_OfALocation_ArriveCellByCell) {
    for (const char* name : {"basic.mdb", "other-types.mdb"}) {
        OpenNewFile();
        ASSERT_EQ(Import(QString::fromLatin1(name)), mImport::kCopied);
        const int location = ZoneNamed(QStringLiteral("A1-Zone A1")).key * 100 + 3;
        const int other = ZoneNamed(QStringLiteral("C3-Zone C3")).key * 100 + 1;
        for (int resource = 1; resource <= 14; ++resource) {
            for (int level = 1; level <= 6; ++level) {
                EXPECT_EQ(Value(location, resource, level),
                          bram_files::CellOf("T2", resource, level));
                EXPECT_EQ(Value(other, resource, level), bram_files::CellOf("T1", resource, level));
            }
        }
    }
}

TEST_F(ImportTest, KeysOfRows_AreMadeFromTheNextKeyOfTheFile) {
    for (int key = 1; key <= 4; ++key) {
        tblFMZList->AddNew();
        tblFMZList->SetField(QStringLiteral("Name"), QStringLiteral("by hand"));
        tblFMZList->Update();
    }
    bram_files::Contents contents;
    bram_files::AddTable(contents, "T1");
    bram_files::AddZone(contents, "B2", 2, 1, "T1");
    contents.zones.front()["Describe"] = "Valley";
    const QString path = folder_.CostsPath(QStringLiteral("valley.mdb"));
    bram_files::Write(path.toStdString(), contents);
    ASSERT_EQ(mImport::CopyFMZsFrom(path), mImport::kCopied);
    const Zone zone = ZoneNamed(QStringLiteral("B2-Valley"));
    EXPECT_EQ(zone.key, 5);
    EXPECT_EQ(zone.locations, 2);
    EXPECT_TRUE(SeekCost(5, 1) && SeekCost(5, 9));
    EXPECT_EQ(tblSuppressionPerAcreCost->RecordCount(), 9);
    EXPECT_EQ(ValueRows(), 28);
    EXPECT_EQ(Value(501, 1, 1), bram_files::CellOf("T1", 1, 1));
    EXPECT_EQ(Value(502, 14, 6), bram_files::CellOf("T1", 14, 6));
    EXPECT_TRUE(folder_.Trace().contains(QStringLiteral("    Copy FMZ B2 with 2 RLs to 5")));
}

TEST_F(ImportTest, TableThatIsMissing_GivesZerosAndNoWarning) {
    bram_files::Contents contents;
    bram_files::AddTable(contents, "T1");
    bram_files::AddZone(contents, "A1", 1, 1, "T1");
    bram_files::AddZone(contents, "B2", 1, 1, "T9");
    const QString path = folder_.CostsPath(QStringLiteral("missing.mdb"));
    bram_files::Write(path.toStdString(), contents);
    ASSERT_EQ(mImport::CopyFMZsFrom(path), mImport::kCopied);
    for (int resource = 1; resource <= 14; ++resource) {
        for (int level = 1; level <= 6; ++level) {
            EXPECT_EQ(Value(101, resource, level), bram_files::CellOf("T1", resource, level));
            EXPECT_EQ(Value(201, resource, level), 0.0F);
        }
    }
    EXPECT_EQ(WarningCount(QString()), 0);
}

TEST_F(ImportTest, SameFileTwice_GivesEveryZoneTwice) {
    ASSERT_EQ(Import(QStringLiteral("basic.mdb")), mImport::kCopied);
    EXPECT_EQ(tblFMZList->RecordCount(), 5);
    const int rows = ValueRows();
    ASSERT_EQ(Import(QStringLiteral("basic.mdb")), mImport::kCopied);
    EXPECT_EQ(tblFMZList->RecordCount(), 10);
    EXPECT_EQ(ValueRows(), 2 * rows);
}

TEST_F(ImportTest, ZonesInOrderOfTheirCodes_WithContiguousKeys) {
    ASSERT_EQ(Import(QStringLiteral("basic.mdb")), mImport::kCopied);
    QStringList names;
    int key = 0;
    for (tblFMZList->MoveFirst(); !tblFMZList->EndOfFile(); tblFMZList->MoveNext()) {
        names << tblFMZList->Text(QStringLiteral("Name"));
        EXPECT_EQ(tblFMZList->Long(QStringLiteral("Key")), ++key);
    }
    QStringList sorted = names;
    std::sort(sorted.begin(), sorted.end());
    EXPECT_EQ(names, sorted);
}

TEST_F(ImportTest, Trace_OfAWholeImport_ReadsToTheLetter) {
    ASSERT_EQ(Import(QStringLiteral("basic.mdb")), mImport::kCopied);
    const QStringList lines = folder_.Trace();
    ASSERT_GE(lines.size(), 7);
    EXPECT_EQ(lines.first(),
              QStringLiteral(" Start mImport.OpenBRAMTables ") + Made(QStringLiteral("basic.mdb")));
    const QString code = [&] {
        tblFMZList->MoveFirst();
        return tblFMZList->Text(QStringLiteral("Name")).section(u'-', 0, 0);
    }();
    QStringList zone{QStringLiteral("    Copy FMZ %1 with %2 RLs to 1")
                         .arg(code)
                         .arg(tblFMZList->Long(QStringLiteral("RLCount"))),
                     QStringLiteral("   mImport.BRAM_CopyAAC")};
    for (int location = 1; location <= tblFMZList->Long(QStringLiteral("RLCount")); ++location) {
        zone << QStringLiteral("   mImport.BRAM_CopyNVC");
    }
    EXPECT_EQ(lines.mid(1, zone.size()), zone);
    EXPECT_EQ(lines.last(), QStringLiteral("   BRAM_Close"));
    EXPECT_EQ(platform::MousePointer(), platform::Pointer::kDefault);
}

TEST_F(ImportTest, MissingSetups_GiveZerosAndAWarningEach) {
    ASSERT_EQ(Import(QStringLiteral("gaps.mdb")), mImport::kCopied);
    EXPECT_GT(WarningCount(QStringLiteral("tblBRAM_NVCTable.NoMatch for ")), 0);
    int blanks = 0;
    for (const QString& line : folder_.Trace()) {
        blanks += line == QStringLiteral("   BRAM_BlankNVCRecords") ? 1 : 0;
    }
    EXPECT_EQ(blanks, WarningCount(QStringLiteral("tblBRAM_NVCTable.NoMatch for ")));
    EXPECT_EQ(int(mImport::LastImport().blanks.size()), blanks);
}

TEST_F(ImportTest, NoSetupsAtAll_WarnsOnceForEachLocation) {
    ASSERT_EQ(Import(QStringLiteral("no-setup.mdb")), mImport::kCopied);
    int locations = 0;
    for (tblFMZList->MoveFirst(); !tblFMZList->EndOfFile(); tblFMZList->MoveNext()) {
        locations += tblFMZList->Long(QStringLiteral("RLCount"));
    }
    EXPECT_EQ(WarningCount(QStringLiteral("tblBRAM_NVCTable.RecordCount = 0")), locations);
    const auto& blanks = mImport::LastImport().blanks;
    ASSERT_EQ(int(blanks.size()), locations);
    EXPECT_EQ(blanks.front().zone, QStringLiteral("A1-Zone A1"));
    EXPECT_EQ(blanks.front().location, 1);
    tblFMZList->MoveFirst();
    const int key = tblFMZList->Long(QStringLiteral("Key"));
    EXPECT_EQ(Value(key * 100 + 1, 14, 6), 0.0F);
}

TEST_F(ImportTest, NotABramFile_IsReportedAndWritesNothing) {
    const QString text = folder_.CostsPath(QStringLiteral("text.mdb"));
    support::WriteBytes(text, "no database");
    const QStringList refused{
        Made(QStringLiteral("no-table.mdb")), Made(QStringLiteral("no-index.mdb")), text,
        folder_.CostsPath(QStringLiteral("not there.mdb")), PrepDatafile::CurrentPath()};
    for (const QString& path : refused) {
        SCOPED_TRACE(path.toStdString());
        const support::Answers answers;
        EXPECT_EQ(mImport::CopyFMZsFrom(path), mImport::kNotABramFile);
        EXPECT_EQ(mImport::ImportResult(), mImport::kNotABramFile);
        EXPECT_EQ(answers.Texts(), QStringList(kNotBram));
    }
    EXPECT_EQ(WarningCount(QStringLiteral("BRAM_OpenTables: Unsuccessful")), int(refused.size()));
    EXPECT_EQ(tblFMZList->RecordCount(), 0);
}

TEST_F(ImportTest, OneSetUp_IsUsed) {
    bram_files::Contents contents;
    bram_files::AddTable(contents, "T1");
    bram_files::AddZone(contents, "A1", 1, 2, "T1");
    const QString path = folder_.CostsPath(QStringLiteral("one.mdb"));
    bram_files::Write(path.toStdString(), contents);
    ASSERT_EQ(mImport::CopyFMZsFrom(path), mImport::kCopied);
    EXPECT_EQ(Value(101, 14, 6), bram_files::CellOf("T1", 14, 6));
    EXPECT_TRUE(mImport::LastImport().blanks.empty());
}

TEST_F(ImportTest, IndexMissingOnAnyTable_IsRefused) {
    for (const char* table : {"FMZ", "AAC", "NVCSetup", "NVCTable"}) {
        SCOPED_TRACE(table);
        bram_files::Tables tables = tools::AssessmentTables();
        for (jet::TableSchema& one : tables) {
            if (one.name == table) {
                one.indexes.clear();
            }
        }
        const QString path = folder_.CostsPath(QString::fromLatin1(table) + ".mdb");
        bram_files::Write(path.toStdString(), bram_files::Basic(), tables);
        const support::Answers answers;
        EXPECT_EQ(mImport::CopyFMZsFrom(path), mImport::kNotABramFile);
        EXPECT_EQ(answers.Texts(), QStringList(kNotBram));
    }
    EXPECT_EQ(tblFMZList->RecordCount(), 0);
}

TEST_F(ImportTest, NoZones_IsReportedAndTheFileCanBeOpenedAgain) {
    for (int time = 0; time < 2; ++time) {
        const support::Answers answers;
        EXPECT_EQ(Import(QStringLiteral("no-zones.mdb")), mImport::kNoZones);
        EXPECT_EQ(answers.Texts(), QStringList(QStringLiteral("No FMZs found in the file")));
    }
    EXPECT_EQ(Import(QStringLiteral("basic.mdb")), mImport::kCopied);
}

TEST_F(ImportTest, EmptyPath_IsCancelled) {
    EXPECT_EQ(mImport::CopyFMZsFrom(QString()), mImport::kCancelled);
    EXPECT_TRUE(folder_.Trace().isEmpty());
}

TEST_F(ImportTest, ApostropheInACode_FailsTheQueryAndKeepsWhatWasWritten) {
    const QString path = Made(QStringLiteral("apostrophe.mdb"));
    mImport::CopyFMZsFrom(QString());
    try {
        mImport::CopyFMZsFrom(path);
        FAIL() << "no error";
    } catch (const platform::RuntimeError& error) {
        EXPECT_EQ(error.Number(), 3075);
    }
    EXPECT_EQ(mImport::ImportResult(), mImport::kFailed) << "and no longer cancelled";
    EXPECT_EQ(platform::MousePointer(), platform::Pointer::kDefault);
    EXPECT_GT(tblFMZList->RecordCount(), 0);
    EXPECT_EQ(tblSuppressionPerAcreCost->RecordCount(), 9 * (tblFMZList->RecordCount() - 1))
        << "the zone with the apostrophe has its own record and nothing else";
    EXPECT_NO_THROW(dao::Database::Open(path, dao::OpenMode::kExclusive)) << "closed again";
    PrepDatafile::CloseDatafile();
    EXPECT_EQ(support::Complaints(PrepDatafile::CurrentPath()), QString());
}

// Rows are read and written one by one, so those before the one that cannot be read stay.
TEST_F(ImportTest, ValueThatIsNoNumber_LeavesTheRowsBeforeIt) {
    const support::Answers answers;
    try {
        Import(QStringLiteral("bad-value.mdb"));
        FAIL() << "no error";
    } catch (const platform::RuntimeError& error) {
        EXPECT_EQ(error.Number(), platform::kTypeMismatch);
    }
    EXPECT_THROW(tblNVCPerAcre->Update(), platform::RuntimeError) << "no half row waits there";
    EXPECT_EQ(tblFMZList->RecordCount(), 2) << "the zone after it was not begun";
    EXPECT_EQ(tblSuppressionPerAcreCost->RecordCount(), 18);
    EXPECT_EQ(ValueRows(), 2 * 14 + 4);
    EXPECT_EQ(Value(201, 4, 6), bram_files::CellOf("T2", 4, 6));
    EXPECT_FALSE(PrepDatatables::dbDatafile->InTransaction());
    // What was begun and not stored is in nobody's way.
    EXPECT_EQ(Import(QStringLiteral("basic.mdb")), mImport::kCopied);
    PrepDatafile::CloseDatafile();
    EXPECT_EQ(support::Complaints(PrepDatafile::CurrentPath()), QString());
}

TEST_F(ImportTest, NameThatIsTooLong_NamesTheZoneAndTheText) {
    try {
        Import(QStringLiteral("long-name.mdb"));
        FAIL() << "no error";
    } catch (const platform::RuntimeError& error) {
        EXPECT_TRUE(error.Description().contains(QStringLiteral("zone B2 "))) << error.what();
        EXPECT_TRUE(
            error.Description().contains(QStringLiteral("\"B2-%1\"").arg(QString(44, u'x'))))
            << error.what();
        EXPECT_TRUE(error.Description().contains(QStringLiteral("before this one (1)")))
            << error.what();
    }
    EXPECT_EQ(tblFMZList->RecordCount(), 1) << "the zone before it";
    EXPECT_EQ(tblSuppressionPerAcreCost->RecordCount(), 9);
    EXPECT_EQ(Import(QStringLiteral("basic.mdb")), mImport::kCopied);
}

// What a file holds that somebody copies at the moment, its log included, is what a kill would
// leave.
class CopyingProgress : public ImportProgress {
public:
    explicit CopyingProgress(QString path) : path_(std::move(path)) {}
    void ZoneStarted(int zone, int /*zones*/) override {
        const QString copy = path_ + QString::number(zone);
        support::Copy(path_, copy);
        if (QFile::exists(path_ + QStringLiteral("-log"))) {
            support::Copy(path_ + QStringLiteral("-log"), copy + QStringLiteral("-log"));
        }
        copies << copy;
    }
    QStringList copies;

private:
    QString path_;
};

TEST_F(ImportTest, CutOffBetweenZones_HasWholeZonesOnly) {
    if (!support::kOthersReachHeldFiles) {
        GTEST_SKIP() << "a file that is held cannot be copied there";
    }
    CopyingProgress progress(PrepDatafile::CurrentPath());
    ASSERT_EQ(mImport::CopyFMZsFrom(Made(QStringLiteral("basic.mdb")), &progress),
              mImport::kCopied);
    ASSERT_EQ(progress.copies.size(), 5);
    int zones = 0;
    for (const QString& copy : progress.copies) {
        const auto left = dao::Database::Open(copy, dao::OpenMode::kExclusive);
        const auto list = left->OpenTable(QStringLiteral("FMZList"));
        int locations = 0;
        for (; !list->EndOfFile(); list->MoveNext()) {
            locations += list->Long(QStringLiteral("RLCount"));
        }
        EXPECT_EQ(list->RecordCount(), zones++);
        EXPECT_EQ(left->OpenTable(QStringLiteral("SuppressionPerAcreCost"))->RecordCount(),
                  9 * list->RecordCount());
        EXPECT_EQ(left->OpenTable(QStringLiteral("NVCPerAcre"))->RecordCount(), 14 * locations);
    }
}

TEST_F(ImportTest, OpenFileDialog_AsksInTheCostsFolderForTheUsualName) {
    support::Answers answers;
    answers.Then([this](QWidget& dialog) {
        auto* files = qobject_cast<QFileDialog*>(&dialog);
        ASSERT_NE(files, nullptr);
        EXPECT_EQ(files->windowTitle(), QStringLiteral("Select BRAM file"));
        EXPECT_EQ(QDir::toNativeSeparators(files->directory().path()),
                  folder_.Path(QStringLiteral("Costs")));
        EXPECT_EQ(files->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"))->text(),
                  QStringLiteral("BRAM0000.mdb"));
        EXPECT_EQ(files->nameFilters(), QStringList({"BRAM files (*.mdb)", "All Files (*.*)"}));
        EXPECT_EQ(files->selectedNameFilter(), QStringLiteral("BRAM files (*.mdb)"));
        files->close();
    });
    EXPECT_EQ(mImport::BRAM_CopyFMZs(nullptr), mImport::kCancelled);
    EXPECT_EQ(mImport::ImportResult(), mImport::kCancelled);
    EXPECT_EQ(folder_.Trace(), QStringList({"   mImport.BRAM_CopyFMZs", "   mImport.OpenFileDialog",
                                            "   GetBRAMPath"}));
}

TEST_F(ImportTest, NameOfNoFile_IsTakenFromTheDialogAndRefusedLikeAnyOtherFile) {
    support::Answers answers;
    answers.Then([](QWidget& dialog) {
        dialog.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"))
            ->setText(QStringLiteral("not there.mdb"));
        QMetaObject::invokeMethod(&dialog, "accept");
        dialog.close();  // had it not been taken
    });
    EXPECT_EQ(mImport::BRAM_CopyFMZs(nullptr), mImport::kNotABramFile);
    EXPECT_EQ(answers.Texts(), QStringList(kNotBram));
}

TEST_F(ImportTest, ReadOnlyFile_IsImported) {
    const QString path = Made(QStringLiteral("basic.mdb"));
    ASSERT_TRUE(QFile::setPermissions(path, QFile::ReadOwner));
    EXPECT_EQ(mImport::CopyFMZsFrom(path), mImport::kCopied);
}

TEST_F(ImportTest, Source_IsLeftByteForByte) {
    const QString path = Made(QStringLiteral("gaps.mdb"));
    const QByteArray before = support::Bytes(path);
    ASSERT_EQ(mImport::CopyFMZsFrom(path), mImport::kCopied);
    EXPECT_EQ(support::Bytes(path), before);
}

TEST_F(ImportTest, TwelveCosts_TheNineSmallestAreCopied) {
    ASSERT_EQ(Import(QStringLiteral("other-types.mdb")), mImport::kCopied);
    const Zone zone = ZoneNamed(QStringLiteral("F6-Zone F6"));
    for (int sequence = 1; sequence <= 9; ++sequence) {
        EXPECT_EQ(Size(zone.key, sequence), 10.0F * float(sequence));
    }
}

class CountingProgress : public ImportProgress {
public:
    void ZoneStarted(int zone, int zones) override {
        EXPECT_EQ(zone, ++last);
        total = zones;
    }
    int last = 0;
    int total = 0;
};

TEST_F(ImportTest, LargeFile_ImportsWithProgress) {
    CountingProgress progress;
    ASSERT_EQ(mImport::CopyFMZsFrom(Made(QStringLiteral("large.mdb")), &progress),
              mImport::kCopied);
    EXPECT_EQ(progress.last, 300);
    EXPECT_EQ(progress.total, 300);
    EXPECT_EQ(tblFMZList->RecordCount(), 300);
    EXPECT_EQ(ValueRows(), 4200);
}

TEST_F(ImportTest, GetBRAMPath_WithoutRegardToCase_IsTheCostsFolder) {
    if (!support::kNamesDifferByCase) {
        GTEST_SKIP() << "the system itself finds folders without regard to case";
    }
    EXPECT_EQ(mImport::GetBRAMPath(), folder_.Path(QStringLiteral("Costs")));
}

TEST_F(ImportTest, GetBRAMPath_ListingFails_IsTheProgramFolderWithoutAWarning) {
    PrepDatafile::CloseDatafile();
    ASSERT_TRUE(QDir(folder_.Path(QStringLiteral("Costs"))).removeRecursively());
    support::WriteBytes(folder_.Path(QStringLiteral("Costs")), "in its place");
    EXPECT_EQ(mImport::GetBRAMPath(), platform::ProgramFolder());
    EXPECT_FALSE(folder_.Trace().join(u'\n').contains(QStringLiteral("Warning!")));
}

}  // namespace
