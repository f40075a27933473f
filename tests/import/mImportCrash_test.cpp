// The program's process killed in the middle of an import, again and again: the data file is sound
// each time, what was there before is there still, and each zone that is there has all its rows.
#include <gtest/gtest.h>

#include <QProcess>

#include <memory>

#include "bram_files.h"
#include "datafile/PrepDatafile.h"
#include "datafile/PrepDatatables.h"
#include "jet/check.h"
#include "jet/database.h"
#include "jet/recordset.h"
#include "support/BuiltProgramFolder.h"
#include "support/paths.h"

namespace {

int Kills() {
    bool set = false;
    const int kills = qEnvironmentVariableIntValue("TARN_KILLS", &set);
    return set ? kills : 10;
}

// The rows of the tables that an import writes.
struct Rows {
    int zones = 0;
    int locations = 0;
    int values = 0;
    int costs = 0;
    std::uint64_t recovered = 0;
};

Rows Count(const QString& path) {
    const auto database = jet::Database::Open(path.toStdString());
    const auto rows = [&](const char* table) { return database->OpenTable(table)->RecordCount(); };
    int locations = 0;
    for (const auto zones = database->OpenTable("FMZList"); !zones->IsEof(); zones->MoveNext()) {
        locations += zones->Get("RLCount").AsLong();
    }
    return {.zones = rows("FMZList"),
            .locations = locations,
            .values = rows("NVCPerAcre"),
            .costs = rows("SuppressionPerAcreCost"),
            .recovered = database->OpeningRecovery().operations};
}

// A process that imports without end.
std::unique_ptr<QProcess> StartImporting(const QString& dataFile, const QString& source) {
    auto process = std::make_unique<QProcess>();
    process->start(
        QString::fromStdU16String((support::BuildFolder() / "bin/import_for_ever").u16string()),
        {dataFile, source});
    return process;
}

TEST(ImportCrash, KilledAtAnyInstant_FileIsSoundAndHasWholeZonesOnly) {
    const support::ProgramFolder folder;
    const QString dataFile = folder.CostsPath(QStringLiteral("GPFWA26.FCD"));
    const QString source = folder.CostsPath(QStringLiteral("basic.mdb"));
    bram_files::Make(source.toStdString());
    int midway = 0;
    for (int kill = 0; kill < Kills(); ++kill) {
        // A file of its own each time keeps the keys of the zones within bounds.
        QFile::remove(dataFile);
        support::Copy(folder.Path(QStringLiteral("FCD.new")), dataFile);
        const auto process = StartImporting(dataFile, source);
        ASSERT_TRUE(process->waitForStarted());
        QByteArray said;
        while (!said.contains("begin") && process->waitForReadyRead()) {
            said += process->readAllStandardOutput();
        }
        // The log grows with every row, so its size varies the instant, not a clock.
        const qint64 far = qint64{2000} * (kill + 1);
        while (QFileInfo(dataFile + QStringLiteral("-log")).size() < far &&
               !said.contains("told") && process->state() == QProcess::Running) {
            process->waitForReadyRead(1);
            said += process->readAllStandardOutput();
        }
        process->kill();
        ASSERT_TRUE(process->waitForFinished());
        said += process->readAllStandardOutput();

        const Rows rows = Count(dataFile);
        midway += rows.recovered > 0 ? 1 : 0;
        const jet::CheckReport report = jet::CheckFile(dataFile.toStdString());
        EXPECT_TRUE(report.IsSound()) << report.Text();
        EXPECT_EQ(rows.costs, 9 * rows.zones);
        EXPECT_EQ(rows.values, 14 * rows.locations);
        if (said.contains("told")) {
            EXPECT_GT(rows.zones, 0);
            EXPECT_GT(rows.locations, 0);
        }
        EXPECT_FALSE(QFile::exists(dataFile + QStringLiteral("-log")));
        // The next start of the program finds a file that it can use.
        ASSERT_TRUE(PrepDatafile::OpenDatatables(dataFile) && PrepDatatables::OpenRecordsets());
        PrepDatafile::CloseDatafile();
    }
    EXPECT_GT(midway, 0);
}

}  // namespace
