// How long does it take to import the zones of an assessment file, and how does it grow?
//
//   import_bench [ZONES ...]      default: 30 300 3000
//
// SQLite writes rows of the same number and size, each by itself, as the import does; it reads
// nothing. The import reads the assessment file, and keeps the program's trace log besides.
#include <sqlite3.h>

#include <QApplication>
#include <QDir>
#include <QFile>

#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <stdexcept>
#include <vector>

#include "bench/BramMaker.h"
#include "bench/Folder.h"
#include "datafile/PrepDatafile.h"
#include "datafile/PrepDatatables.h"
#include "import/mImport.h"
#include "platform/system/ProgramFolder.h"

namespace {

constexpr int kCostClasses = 9;
constexpr int kRowsOfZone = 1 + kCostClasses + bench::kLocations * bench::kResources;

double Seconds(const std::function<void()>& work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

void Require(bool done, const char* what) {
    if (!done) throw std::runtime_error(what);
}

// A program folder of its own, with the template for new data files.
class ProgramFolder {
public:
    ProgramFolder() {
        Require(QDir(Path()).mkdir(QStringLiteral("Costs")) &&
                    QFile::copy(QStringLiteral(TARN_BUILD "/TARNPrep/FCD.new"), DataFile()),
                "The program folder has not been built.");
        QFile::setPermissions(DataFile(), QFile::ReadOwner | QFile::WriteOwner);
        platform::SetProgramFolder(Path());
    }
    ~ProgramFolder() { platform::SetProgramFolder(QString()); }
    ProgramFolder(const ProgramFolder&) = delete;
    ProgramFolder& operator=(const ProgramFolder&) = delete;
    [[nodiscard]] QString Path(const char* name) const {
        return Path() + QStringLiteral("/Costs/") + QString::fromLatin1(name);
    }
    [[nodiscard]] QString DataFile() const { return Path("BENCH.FCD"); }

private:
    [[nodiscard]] QString Path() const { return QString::fromStdString(folder_.Path().string()); }

    bench::Folder folder_;
};

double Import(jet::Version version, std::size_t zones) {
    const ProgramFolder folder;
    const QString source = folder.Path("source.mdb");
    bench::MakeBramFile(source.toStdString(), version, zones);
    Require(PrepDatafile::OpenDatatables(folder.DataFile()) && PrepDatatables::OpenRecordsets(),
            "The data file cannot be opened.");
    const double seconds = Seconds(
        [&] { Require(mImport::CopyFMZsFrom(source) == mImport::kCopied, "The import failed."); });
    Require(PrepDatatables::tblFMZList->RecordCount() == int(zones), "Zones are missing.");
    PrepDatafile::CloseDatafile();
    return seconds;
}

class Sqlite {
public:
    explicit Sqlite(const QString& file) {
        Require(sqlite3_open(file.toUtf8().constData(), &database_) == SQLITE_OK, "open");
        Run("PRAGMA journal_mode=WAL; PRAGMA synchronous=OFF; PRAGMA cache_size=-24576;"
            "CREATE TABLE FMZList (Key INTEGER PRIMARY KEY, Name TEXT, RLCount INTEGER);"
            "CREATE TABLE Costs (FMZKey INTEGER, Sequence INTEGER, TopSize REAL, Cost REAL,"
            " PRIMARY KEY (FMZKey, Sequence));"
            "CREATE TABLE Rows (Location INTEGER, Resource INTEGER, A REAL, B REAL, C REAL, D REAL,"
            " E REAL, F REAL, PRIMARY KEY (Location, Resource))");
    }
    ~Sqlite() { sqlite3_close(database_); }
    Sqlite(const Sqlite&) = delete;
    Sqlite& operator=(const Sqlite&) = delete;

    void Run(const char* sql) {
        Require(sqlite3_exec(database_, sql, nullptr, nullptr, nullptr) == SQLITE_OK, sql);
    }
    // A row by a statement with two whole numbers as its parameters.
    class Insert {
    public:
        Insert(const Sqlite& in, const char* sql) {
            Require(sqlite3_prepare_v2(in.database_, sql, -1, &statement_, nullptr) == SQLITE_OK,
                    sql);
        }
        ~Insert() { sqlite3_finalize(statement_); }
        Insert(const Insert&) = delete;
        Insert& operator=(const Insert&) = delete;
        void operator()(int first, int second) {
            sqlite3_bind_int(statement_, 1, first);
            sqlite3_bind_int(statement_, 2, second);
            Require(sqlite3_step(statement_) == SQLITE_DONE, "insert");
            sqlite3_reset(statement_);
        }

    private:
        sqlite3_stmt* statement_ = nullptr;
    };

private:
    sqlite3* database_ = nullptr;
};

double WriteSqlite(std::size_t zones) {
    const bench::Folder folder;
    Sqlite database(QString::fromStdString((folder.Path() / "peer.db").string()));
    Sqlite::Insert zone(database, "INSERT INTO FMZList VALUES (?, 'Z00000-A zone of it', ?)");
    Sqlite::Insert cost(database, "INSERT INTO Costs VALUES (?, ?, 10.0, 250.5)");
    Sqlite::Insert row(database, "INSERT INTO Rows VALUES (?, ?, 1.5, 2.5, 3.5, 4.5, 5.5, 6.5)");
    return Seconds([&] {
        for (int key = 1; key <= int(zones); ++key) {
            zone(key, bench::kLocations);
            for (int i = 1; i <= kCostClasses; ++i) cost(key, i);
            for (int location = 1; location <= bench::kLocations; ++location) {
                for (int i = 1; i <= bench::kResources; ++i) row(100 * key + location, i);
            }
        }
    });
}

struct Former {
    double seconds = 0;
    std::size_t zones = 0;
};

void Print(const char* what, std::size_t zones, double seconds, double sqlite, Former& former) {
    std::printf("%-12s %7zu %10.3f %12.0f %14.0f %9.2f", what, zones, seconds,
                static_cast<double>(zones) / seconds,
                static_cast<double>(zones) * kRowsOfZone / seconds, sqlite / seconds);
    if (former.zones > 0) {
        std::printf("   zones^%.2f",
                    std::log(seconds / former.seconds) /
                        std::log(static_cast<double>(zones) / static_cast<double>(former.zones)));
    }
    std::printf("\n");
    former = {seconds, zones};
}

}  // namespace

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    std::vector<std::size_t> sizes;
    for (int i = 1; i < argc; ++i) sizes.push_back(std::strtoull(argv[i], nullptr, 10));
    if (sizes.empty()) sizes = {30, 300, 3000};
    std::printf("%-12s %7s %10s %12s %14s %9s   %s\n", "source", "zones", "seconds", "zones per s",
                "rows per s", "/sqlite", "growth of the time");
    Former jet4;
    Former jet3;
    Former peer;
    for (const std::size_t zones : sizes) {
        const double sqlite = WriteSqlite(zones);
        Print("jet4", zones, Import(jet::Version::kJet4, zones), sqlite, jet4);
        Print("jet3", zones, Import(jet::Version::kJet3, zones), sqlite, jet3);
        Print("sqlite", zones, sqlite, sqlite, peer);
    }
    return 0;
}
