// Databases at the same time, each on a thread of its own. Under the thread sanitizer this says
// that nothing in the engine is shared between them.
#include <gtest/gtest.h>

#include <atomic>
#include <filesystem>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "jet/check.h"
#include "jet/database.h"
#include "jet/jet.h"
#include "jet/query.h"
#include "jet/recordset.h"
#include "jet/transaction.h"
#include "sample_table.h"
#include "support/system.h"
#include "support/temp_folder.h"

namespace jet {
namespace {

void AddPeople(Database& database, int count) {
    const auto people = database.OpenTable("People");
    for (int i = 0; i < count; ++i) {
        people->AddNew();
        people->Set("Name", u"Name " + Value(i).AsText());
        people->Set("Town", u"\u00C9tampes");
        people->Set("Age", i % 90);
        people->Set("Story", std::u16string(static_cast<std::size_t>(i % 40) * 100, u's'));
        people->Update();
    }
}

// Everything that a program does with a file.
void Work(const std::filesystem::path& path, Version version) {
    {
        const auto database = Database::Create(path, version);
        database->CreateTable(PeopleSchema());
        AddPeople(*database, 200);
        Transaction transaction = database->Begin();
        AddPeople(*database, 0);
        transaction.Commit();
        database->MakeDurable();
        const auto people = database->OpenTable("People");
        people->SetIndex("TownAge");
        EXPECT_TRUE(people->Seek(Comparison::kEqual, {u"\u00E9tampes", 7}));
        people->Edit();
        people->Set("Paid", Currency{12345});
        people->Update();
        people->Delete();
        database->Close();
    }
    const auto database = Database::Open(path);
    const auto found =
        database->OpenQuery("SELECT * FROM People WHERE Age < ? ORDER BY Name", {50});
    EXPECT_GT(found->RecordCount(), 100);
    EXPECT_TRUE(CheckDatabase(*database).IsSound());
}

// Calls it on so many threads, each with its number, and counts those that an error ended.
int FailuresOn(int count, const std::function<void(int)>& work) {
    std::vector<std::thread> threads;
    std::atomic<int> failures = 0;
    for (int thread = 0; thread < count; ++thread) {
        threads.emplace_back([&, thread] {
            try {
                work(thread);
            } catch (const Error&) {
                ++failures;
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    return failures;
}

// Everything that a reader does, in a file of so many people.
void Read(const std::filesystem::path& path, int count) {
    const auto database = Database::Open(path, {.exclusive = false, .readOnly = true});
    const auto people = database->OpenTable("People");
    int seen = 0;
    std::string story;
    const FieldId field = people->Field("Story");
    for (; !people->IsEof(); people->MoveNext()) {
        EXPECT_TRUE(people->ReadText(field, story));
        ++seen;
    }
    EXPECT_EQ(seen, count);
    people->SetIndex("TownAge");
    EXPECT_TRUE(people->Seek(Comparison::kEqual, {u"\u00E9tampes", 7}));
    EXPECT_GT(database->OpenQuery("SELECT * FROM People WHERE Age < 50")->RecordCount(), 0);
    EXPECT_TRUE(CheckDatabase(*database).IsSound());
    EXPECT_TRUE(CheckFile(path).IsSound());
}

// What a program in C does with a file; false after an error.
bool WorkInC(const std::string& path) {
    const jet_column column = {"Zone", JET_LONG, 0, 0, 1, 0, 0, 0};
    const char* const columns[] = {"Zone"};
    const jet_index index = {"Key", columns, nullptr, 1, 1, 1};
    jet_database* database = nullptr;
    jet_recordset* rows = nullptr;
    jet_error error = {};
    bool well = jet_create(path.c_str(), 4, nullptr, &database, &error) == JET_OK &&
                jet_create_table(database, "Zones", &column, 1, &index, 1, &error) == JET_OK &&
                jet_open_table(database, "Zones", &rows, &error) == JET_OK;
    for (int i = 0; i < 300 && well; ++i) {
        // Every second one is refused, so that errors are made on all threads, too.
        const int expected = i % 2 == 0 ? JET_OK : JET_DUPLICATE_KEY;
        well = jet_add_new(rows, &error) == JET_OK &&
               jet_set_long(rows, 0, i / 2, &error) == JET_OK &&
               jet_update(rows, &error) == expected;
    }
    jet_recordset_close(rows);
    return jet_close(database, &error) == JET_OK && well;
}

TEST(Threads, TwoDatabases_ShareNothing) {
    const tarn_test::TempFolder folder;
    EXPECT_EQ(FailuresOn(2,
                         [&](int thread) {
                             const std::filesystem::path path =
                                 folder / ("file" + std::to_string(thread) + ".mdb");
                             for (int round = 0; round < 5; ++round) {
                                 Work(path, round % 2 == 0 ? Version::kJet4 : Version::kJet3);
                                 std::filesystem::remove(path);
                             }
                         }),
              0);
}

TEST(Threads, ReadersOfOneFile_ShareNothing) {
    const tarn_test::TempFolder folder;
    const std::filesystem::path path = folder / "a file.mdb";
    const auto database = Database::Create(path, Version::kJet4);
    database->CreateTable(PeopleSchema());
    AddPeople(*database, 200);
    database->MakeDurable();
    database->OpenTable("People")->Delete();
    // What a run that was killed here would leave: a file and its log.
    const std::filesystem::path left = folder / "left.mdb";
    std::vector<std::filesystem::path> files = {path};
    if (support::kOthersReachHeldFiles) {
        std::filesystem::copy_file(path, left);
        std::filesystem::copy_file(folder / "a file.mdb-log", folder / "left.mdb-log");
        files.push_back(left);
    }
    database->Close();
    for (const auto& file : files) {
        SCOPED_TRACE(file.string());
        EXPECT_EQ(FailuresOn(4, [&](int) { Read(file, 199); }), 0);
    }
    EXPECT_EQ(std::filesystem::exists(folder / "left.mdb-log"), files.size() == 2);
}

TEST(Threads, TheInterfaceForC_SharesNothing) {
    const tarn_test::TempFolder folder;
    std::atomic<int> well = 0;
    EXPECT_EQ(FailuresOn(2,
                         [&](int thread) {
                             const auto path = folder / ("file" + std::to_string(thread) + ".mdb");
                             if (WorkInC(path.string())) ++well;
                         }),
              0);
    EXPECT_EQ(well, 2);
}

}  // namespace
}  // namespace jet
