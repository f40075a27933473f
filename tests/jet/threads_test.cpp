// Two databases at the same time, each on a thread of its own. Under the thread sanitizer this says
// that nothing in the engine is shared between them.
#include <gtest/gtest.h>

#include <atomic>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include "jet/check.h"
#include "jet/database.h"
#include "jet/query.h"
#include "jet/recordset.h"
#include "jet/transaction.h"
#include "sample_table.h"
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

TEST(Threads, TwoDatabases_ShareNothing) {
    const tarn_test::TempFolder folder;
    std::vector<std::thread> threads;
    std::atomic<int> failures = 0;
    for (int thread = 0; thread < 2; ++thread) {
        threads.emplace_back([&, thread] {
            const std::filesystem::path path = folder / ("file" + std::to_string(thread) + ".mdb");
            try {
                for (int round = 0; round < 5; ++round) {
                    Work(path, round % 2 == 0 ? Version::kJet4 : Version::kJet3);
                    std::filesystem::remove(path);
                }
            } catch (const Error&) {
                ++failures;
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(failures, 0);
}

}  // namespace
}  // namespace jet
