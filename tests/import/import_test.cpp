#include <gtest/gtest.h>

#include <QApplication>
#include <QFile>
#include <QLabel>

#include <algorithm>
#include <functional>
#include <memory>

#include "bram_files.h"
#include "datafile/FieldReaders.h"
#include "datafile/PrepDatafile.h"
#include "datafile/PrepDatatables.h"
#include "import/ImportProgressBox.h"
#include "import/mImport.h"
#include "platform/system/Host.h"
#include "support/Answers.h"
#include "support/BuiltProgramFolder.h"
#include "support/Corpus.h"

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
    std::int16_t Import(const QString& name) { return mImport::CopyFMZsFrom(Made(name)); }

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
    static bool SizeIsNull(int key, int sequence) {
        EXPECT_TRUE(SeekCost(key, sequence));
        return tblSuppressionPerAcreCost->IsNull(QStringLiteral("TopSize")) &&
               tblSuppressionPerAcreCost->IsNull(QStringLiteral("Cost"));
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
    explicit Source(const QString& path)
        : database_(dao::Database::Open(path, dao::OpenMode::kShared)) {}

    void EachZone(const std::function<void(const QString&, const QString&, int)>& visit) const {
        const auto zones = database_->OpenTable(QStringLiteral("FMZ"));
        for (zones->MoveFirst(); !zones->EndOfFile(); zones->MoveNext()) {
            visit(zones->Text(QStringLiteral("FMZCode")), zones->Text(QStringLiteral("Describe")),
                  zones->Long(QStringLiteral("RLCount")));
        }
    }
    // Upper sizes of a zone in ascending order, nulls first as the query has them.
    [[nodiscard]] std::vector<float> Sizes(const QString& code) const {
        std::vector<float> sizes;
        const auto rows = database_->OpenTable(QStringLiteral("AAC"));
        for (; !rows->EndOfFile(); rows->MoveNext()) {
            if (rows->Text(QStringLiteral("FMZCode")).compare(code, Qt::CaseInsensitive) == 0) {
                sizes.push_back(rows->IsNull(QStringLiteral("UpAcres"))
                                    ? -1.0F
                                    : rows->Single(QStringLiteral("UpAcres")));
            }
        }
        std::sort(sizes.begin(), sizes.end());
        return sizes;
    }

private:
    std::unique_ptr<dao::Database> database_;
};

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
        const std::vector<float> sizes = source.Sizes(code);
        for (int sequence = 1; sequence <= 9; ++sequence) {
            const float size = Size(found.key, sequence);
            if (sequence > int(sizes.size())) {
                EXPECT_TRUE(SizeIsNull(found.key, sequence));
            } else {
                EXPECT_EQ(size, std::max(sizes[std::size_t(sequence - 1)], 0.0F));
            }
        }
        EXPECT_FALSE(SeekCost(found.key, 10));
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
        for (int resource = 1; resource <= 14; ++resource) {
            for (int level = 1; level <= 6; ++level) {
                EXPECT_EQ(Value(location, resource, level), bram_files::CellOf(resource, level));
            }
        }
    }
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
    EXPECT_EQ(lines.at(1), QStringLiteral("    Copy FMZ %1 with %2 RLs to 1")
                               .arg(code)
                               .arg(tblFMZList->Long(QStringLiteral("RLCount"))));
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
}

TEST_F(ImportTest, NoSetupsAtAll_WarnsOnceForEachLocation) {
    ASSERT_EQ(Import(QStringLiteral("no-setup.mdb")), mImport::kCopied);
    int locations = 0;
    for (tblFMZList->MoveFirst(); !tblFMZList->EndOfFile(); tblFMZList->MoveNext()) {
        locations += tblFMZList->Long(QStringLiteral("RLCount"));
    }
    EXPECT_EQ(WarningCount(QStringLiteral("tblBRAM_NVCTable.RecordCount = 0")), locations);
    tblFMZList->MoveFirst();
    const int key = tblFMZList->Long(QStringLiteral("Key"));
    EXPECT_EQ(Value(key * 100 + 1, 14, 6), 0.0F);
}

TEST_F(ImportTest, NotABramFile_IsToldAndWritesNothing) {
    const QString text = folder_.CostsPath(QStringLiteral("text.mdb"));
    support::WriteBytes(text, "no database");
    const QStringList refused{
        Made(QStringLiteral("no-table.mdb")), Made(QStringLiteral("no-index.mdb")), text,
        folder_.CostsPath(QStringLiteral("not there.mdb")), PrepDatafile::CurrentPath()};
    for (const QString& path : refused) {
        SCOPED_TRACE(path.toStdString());
        const support::Answers answers;
        EXPECT_EQ(mImport::CopyFMZsFrom(path), mImport::kNotABramFile);
        EXPECT_EQ(mImport::ImportResult(), 3);
        EXPECT_EQ(answers.Texts(), QStringList(kNotBram));
    }
    EXPECT_EQ(WarningCount(QStringLiteral("BRAM_OpenTables: Unsuccessful")), int(refused.size()));
    EXPECT_EQ(tblFMZList->RecordCount(), 0);
}

TEST_F(ImportTest, NoZones_IsToldAndTheFileCanBeOpenedAgain) {
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
    try {
        mImport::CopyFMZsFrom(path);
        FAIL() << "no error";
    } catch (const platform::RuntimeError& error) {
        EXPECT_EQ(error.Number(), 3075);
    }
    EXPECT_EQ(platform::MousePointer(), platform::Pointer::kDefault);
    EXPECT_GT(tblFMZList->RecordCount(), 0);
    EXPECT_EQ(tblSuppressionPerAcreCost->RecordCount(), 9 * (tblFMZList->RecordCount() - 1))
        << "the zone with the apostrophe has its own record and nothing else";
    EXPECT_NO_THROW(dao::Database::Open(path, dao::OpenMode::kExclusive)) << "closed again";
    PrepDatafile::CloseDatafile();
    EXPECT_EQ(support::Complaints(PrepDatafile::CurrentPath()), QString());
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

TEST_F(ImportTest, ProgressBox_LongImport_ShowsAndHoldsInputOff) {
    QWidget frame;
    frame.setObjectName(QStringLiteral("frame"));
    frame.show();
    QString shown;
    {
        ImportProgressBox progress(&frame);
        progress.SetDelay(0);
        progress.ZoneStarted(12, 300);
        const QWidget* box = QApplication::activeModalWidget();
        ASSERT_NE(box, nullptr);
        shown = box->findChild<QLabel*>(QStringLiteral("lblProgress"))->text();
        EXPECT_FALSE(const_cast<QWidget*>(box)->close()) << "an import is not broken off";
        EXPECT_TRUE(box->isVisible());
    }
    EXPECT_EQ(shown, QStringLiteral("Copying zone 12 of 300"));
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
}

TEST_F(ImportTest, ProgressBox_ShortImport_ShowsNothing) {
    ImportProgressBox progress(nullptr);
    progress.ZoneStarted(1, 2);
    progress.ZoneStarted(2, 2);
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
}

TEST_F(ImportTest, GetBRAMPath_WithoutRegardToCase_IsTheCostsFolder) {
    EXPECT_EQ(mImport::GetBRAMPath(), folder_.Path(QStringLiteral("Costs")));
}

}  // namespace
