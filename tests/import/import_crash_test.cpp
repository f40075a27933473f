// The program's process killed in the middle of an import, again and again: the data file is sound
// each time, what was there before is there still, and no row of it is half done.
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QProcess>
#include <QProcessEnvironment>

#include <cstdio>
#include <memory>

#include "datafile/PrepDatafile.h"
#include "datafile/PrepDatatables.h"
#include "import/mImport.h"
#include "jet/check.h"
#include "jet/database.h"
#include "jet/recordset.h"
#include "support/Answers.h"
#include "support/BuiltProgramFolder.h"
#include "support/Corpus.h"

namespace {

constexpr char kDataFile[] = "TARN_CRASH_DATA";
constexpr char kSource[] = "TARN_CRASH_SOURCE";

int Kills() {
    bool set = false;
    const int kills = qEnvironmentVariableIntValue("TARN_KILLS", &set);
    return set ? kills : 10;
}

// The rows of the tables that an import writes.
struct Rows {
    int zones = 0;
    int values = 0;
    int costs = 0;
    std::uint64_t recovered = 0;
};

Rows Count(const QString& path) {
    const auto database = jet::Database::Open(path.toStdString());
    const auto rows = [&](const char* table) { return database->OpenTable(table)->RecordCount(); };
    return {.zones = rows("FMZList"),
            .values = rows("NVCPerAcre"),
            .costs = rows("SuppressionPerAcreCost"),
            .recovered = database->OpeningRecovery().operations};
}

// Started as a process of its own by the test below. Tells each import once it is durable.
TEST(ImportCrash, DISABLED_ImportsUntilKilled) {
    const support::ProgramFolder folder;
    const QString source = qEnvironmentVariable(kSource);
    ASSERT_TRUE(PrepDatafile::OpenDatatables(qEnvironmentVariable(kDataFile)));
    ASSERT_TRUE(PrepDatatables::OpenRecordsets());
    for (;;) {
        std::puts("begin");
        std::fflush(stdout);
        mImport::CopyFMZsFrom(source);
        PrepDatafile::MakeDurable();
        std::puts("told");
        std::fflush(stdout);
    }
}

// A process that imports without end.
std::unique_ptr<QProcess> StartImporting(const QString& dataFile, const QString& source) {
    auto process = std::make_unique<QProcess>();
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QString::fromLatin1(kDataFile), dataFile);
    environment.insert(QString::fromLatin1(kSource), source);
    process->setProcessEnvironment(environment);
    process->start(QCoreApplication::applicationFilePath(),
                   {QStringLiteral("--gtest_also_run_disabled_tests"),
                    QStringLiteral("--gtest_filter=ImportCrash.DISABLED_ImportsUntilKilled")});
    return process;
}

TEST(ImportCrash, KilledAtAnyInstant_FileIsSoundAndNothingToldIsMissing) {
    if (!support::HasCorpus()) {
        GTEST_SKIP() << "the corpus is not here";
    }
    const support::ProgramFolder folder;
    const QString dataFile = folder.CostsPath(QStringLiteral("GPFWA26.FCD"));
    const QString source = folder.CostsPath(QStringLiteral("bram-basic.mdb"));
    support::Copy(support::MadeFile(QStringLiteral("bram-basic.mdb")), source);
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
        if (said.contains("told")) {
            EXPECT_GT(rows.zones, 0);
            EXPECT_GT(rows.values, 0);
            EXPECT_GT(rows.costs, 0);
        }
        EXPECT_FALSE(QFile::exists(dataFile + QStringLiteral("-log")));
        // The next start of the program finds a file that it can use.
        ASSERT_TRUE(PrepDatafile::OpenDatatables(dataFile) && PrepDatatables::OpenRecordsets());
        PrepDatafile::CloseDatafile();
    }
    EXPECT_GT(midway, 0);
}

}  // namespace
