// Long values that are written in pieces: they are what they would be if they were written in one,
// take little memory, and leave nothing behind when they are not stored.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "jet/check.h"
#include "jet/convert.h"
#include "jet/database.h"
#include "jet/recordset.h"
#include "sample_table.h"
#include "support/command.h"
#include "support/fault_file_system.h"
#include "support/fault_runs.h"
#include "support/sanitizers.h"
#include "support/temp_folder.h"

namespace jet {
namespace {

using tarn_test::Fault;
using tarn_test::FaultFileSystem;
using tarn_test::Progress;

constexpr char kFile[] = "a file.mdb";
constexpr char kLog[] = "a file.mdb-log";
// Longer than what is kept in memory.
constexpr std::size_t kLong = std::size_t{5} << 16;

// So that a long value is much.
OpenOptions LittleMemory() {
    OpenOptions options;
    options.cacheBytes = std::size_t{64} << 10;
    options.changedBytes = std::size_t{1} << 20;
    return options;
}

Binary LongBytes(std::size_t size = kLong) {
    Binary bytes(size);
    for (std::size_t i = 0; i < size; ++i) bytes[i] = static_cast<std::byte>(i * 7 + i / 4072);
    return bytes;
}

template <typename Whole>
void AppendInPieces(Recordset& rows, const char* field, const Whole& whole, std::size_t piece) {
    using Unit = typename Whole::value_type;
    const FieldId id = rows.Field(field);
    for (std::size_t at = 0; at < whole.size(); at += piece) {
        const std::size_t size = std::min(piece, whole.size() - at);
        if constexpr (sizeof(Unit) == 2) {
            rows.Append(id, std::u16string_view(whole).substr(at, size));
        } else {
            rows.Append(id, std::span(whole).subspan(at, size));
        }
    }
}

class PiecesTest : public testing::TestWithParam<Version> {
protected:
    PiecesTest() {
        const auto database = Database::Create(kFile, GetParam(), files_);
        database->CreateTable(PeopleSchema());
        const auto people = database->OpenTable("People");
        for (const char16_t* name : {u"first", u"second"}) {
            people->AddNew();
            people->Set("Name", name);
            people->Set("Picture", LongBytes(9000));
            people->Update();
        }
        database->Close();
    }

    static std::unique_ptr<Database> Open(FaultFileSystem& files) {
        return Database::Open(kFile, LittleMemory(), files);
    }

    static void ExpectSound(FaultFileSystem& files, const std::string& where = {}) {
        const CheckReport report = CheckFile(kFile, files);
        EXPECT_TRUE(report.IsSound()) << where << "\n" << report.Text();
    }

    // The files that a new row makes with its value written in one, and in pieces.
    template <typename Whole>
    void ExpectTheSameFile(const char* field, const Whole& whole) {
        const auto inOne = files_.Copy();
        {
            const auto database = Open(*inOne);
            const auto people = database->OpenTable("People");
            people->AddNew();
            people->Set(field, whole);
            people->Update();
            database->Close();
        }
        for (const std::size_t piece : {std::size_t{1000}, std::size_t{65537}, whole.size()}) {
            const auto inPieces = files_.Copy();
            const auto database = Open(*inPieces);
            const auto people = database->OpenTable("People");
            people->AddNew();
            AppendInPieces(*people, field, whole, piece);
            people->Update();
            database->Close();
            EXPECT_TRUE(inPieces->Contents(kFile) == inOne->Contents(kFile)) << piece;
            EXPECT_EQ(inPieces->Names(), inOne->Names());
        }
    }

    FaultFileSystem files_;
};

INSTANTIATE_TEST_SUITE_P(Versions, PiecesTest, testing::Values(Version::kJet3, Version::kJet4),
                         [](const auto& tested) { return VersionName(tested.param); });

std::u16string LongText(char16_t first, char16_t second) {
    std::u16string text(kLong, first);
    for (std::size_t i = 0; i < text.size(); i += 3) text[i] = second;
    return text;
}

TEST_P(PiecesTest, OleValues_AreStoredAsIfTheyCameInOne) {
    for (const std::size_t size : {std::size_t{70}, std::size_t{5000}, std::size_t{256} << 10,
                                   (std::size_t{256} << 10) + 1, kLong}) {
        ExpectTheSameFile("Picture", LongBytes(size));
    }
}

TEST_P(PiecesTest, Memos_AreStoredAsIfTheyCameInOne) {
    ExpectTheSameFile("Story", LongText(u'a', u'\u20AC'));
    ExpectTheSameFile("Story", LongText(u'\u03B1', u'\u0100'));
    // Texts that begin with the mark of compressed ones.
    ExpectTheSameFile("Story", u"\uFEFF" + LongText(u'a', u'\u20AC'));
    ExpectTheSameFile("Story", u"\uFEFF" + LongText(u'a', u'b'));
    ExpectTheSameFile("Story", u"\uFEFF\uFEFF" + LongText(u'a', u'\u0100'));
    ExpectTheSameFile("Story", std::u16string(kLong, u'\uFEFF'));
    ExpectTheSameFile("Story", std::u16string(kLong, u'\uFEFF') + u'\u0100');
}

TEST_P(PiecesTest, OfAnOpenEdit_AreReadBack) {
    const auto database = Open(files_);
    const auto people = database->OpenTable("People");
    const FieldId picture = people->Field("Picture");
    const FieldId story = people->Field("Story");
    const Binary bytes = LongBytes();
    const std::u16string text = LongText(u'a', u'\u20AC');
    people->Edit();
    AppendInPieces(*people, "Picture", bytes, 50000);
    AppendInPieces(*people, "Story", text, 50000);
    EXPECT_TRUE(people->Get(picture) == Value(bytes));
    EXPECT_TRUE(people->Get(story) == Value(text));
    std::u16string units;
    EXPECT_TRUE(people->ReadText(story, units));
    EXPECT_TRUE(units == text);
    std::string utf8;
    EXPECT_TRUE(people->ReadText(story, utf8));
    EXPECT_TRUE(utf8 == ToUtf8(text));

    const auto reader = people->OpenReader(picture, 1000);
    const auto units_reader = people->OpenReader(story, kLong - 7);
    people->Append(picture, std::span(bytes).first(10));
    people->Append(story, u"more");
    EXPECT_EQ(reader->Size(), kLong);
    Binary part(5000);
    EXPECT_EQ(reader->Read(std::span(part)), part.size());
    EXPECT_TRUE(std::equal(part.begin(), part.end(), bytes.begin() + 1000));
    units.assign(100, u'\0');
    EXPECT_EQ(ErrorOf([&] { reader->Read(std::span(units)); }), ErrorKind::kTypeMismatch);
    EXPECT_EQ(units_reader->Read(std::span(units)), 7U);
    EXPECT_EQ(units.substr(0, 7), text.substr(kLong - 7));
    EXPECT_EQ(units_reader->Read(std::span(units)), 0U);

    // What is set takes the place of the pieces.
    people->Set(story, u"short");
    people->Append(story, u"er");
    EXPECT_EQ(people->Get(story), Value(u"shorter"));
    people->Set(picture, Value());
    EXPECT_EQ(people->OpenReader(picture), nullptr);
    people->Update();
    EXPECT_EQ(people->Get(story), Value(u"shorter"));
    EXPECT_TRUE(people->Get(picture).IsNull());
    database->Close();
    ExpectSound(files_);
}

TEST_P(PiecesTest, BeforeUpdate_AreNowhereInTheFileOrItsLog) {
    const auto database = Open(files_);
    const auto people = database->OpenTable("People");
    const auto file = files_.Contents(kFile);
    const auto log = files_.Contents(kLog);
    const auto names = files_.Names();
    people->AddNew();
    AppendInPieces(*people, "Picture", LongBytes(), 100000);
    EXPECT_EQ(files_.Contents(kFile), file);
    EXPECT_EQ(files_.Contents(kLog), log);
    EXPECT_EQ(files_.Names(), names);
    people->CancelUpdate();
    EXPECT_EQ(ErrorOf([&] { people->Update(); }), ErrorKind::kNoEditBegun);
    database->Close();
    EXPECT_TRUE(files_.Contents(kFile) == file);
}

TEST_P(PiecesTest, OfSeveralRecordSets_DoNotMix) {
    const auto database = Open(files_);
    const auto first = database->OpenTable("People");
    const auto second = database->OpenTable("People");
    const Binary bytes = LongBytes();
    first->AddNew();
    second->Edit();
    for (std::size_t at = 0; at < kLong; at += 1 << 16) {
        first->Append(first->Field("Picture"), std::span(bytes).subspan(at, 1 << 16));
        second->Append(second->Field("Picture"),
                       std::span(bytes).subspan(kLong - at - (1 << 16), 1 << 16));
        // Others go on meanwhile.
        const auto third = database->OpenTable("People");
        third->MoveNext();
        third->Edit();
        third->Set("Age", static_cast<std::int32_t>(at >> 16));
        third->Update();
    }
    first->Set("Name", u"third");
    first->Update();
    second->Update();
    first->MoveLast();
    EXPECT_TRUE(first->Get("Picture") == Value(bytes));
    const Binary turned = std::get<Binary>(second->Get("Picture").Get());
    EXPECT_TRUE(std::equal(turned.begin(), turned.begin() + (1 << 16), bytes.end() - (1 << 16)));
    EXPECT_EQ(turned.size(), kLong);
    database->Close();
    ExpectSound(files_);
}

TEST_P(PiecesTest, OfARefusedRow_StayInTheEdit) {
    const auto database = Open(files_);
    const auto people = database->OpenTable("People");
    const Binary bytes = LongBytes();
    for (const bool inTransaction : {false, true}) {
        std::unique_ptr<Transaction> transaction;
        if (inTransaction) transaction = std::make_unique<Transaction>(database->Begin());
        const auto log = files_.Contents(kLog);
        people->AddNew();
        people->Set("Name", u"first");
        AppendInPieces(*people, "Picture", bytes, 100000);
        EXPECT_EQ(ErrorOf([&] { people->Update(); }), ErrorKind::kDuplicateKey);
        EXPECT_EQ(files_.Contents(kLog), log);
        people->Set("Name", inTransaction ? u"fourth" : u"third");
        people->Update();
        people->MoveLast();
        EXPECT_TRUE(people->Get("Picture") == Value(bytes));
        if (transaction) transaction->Commit();
    }
    ExpectSound(*files_.Copy());
    database->Close();
    ExpectSound(files_);
}

// Neither what is stored nor what a default fills in is lost with them.
TEST_P(PiecesTest, OfWhichTheFirstFails_LeaveTheFieldAsItWas) {
    const auto database = Open(files_);
    const auto people = database->OpenTable("People");
    const Value stored = people->Get("Picture");
    const FieldId picture = people->Field("Picture");
    people->Edit();
    files_.Arm(Fault::kFail, 1);
    EXPECT_EQ(ErrorOf([&] { people->Append(picture, LongBytes()); }), ErrorKind::kIo);
    files_.Arm(Fault::kNone, 0);
    EXPECT_TRUE(people->Get("Picture") == stored);
    people->Set("Name", u"renamed");
    people->Update();
    EXPECT_TRUE(people->Get("Picture") == stored);
    people->Edit();
    people->Set("Picture", Value());
    files_.Arm(Fault::kFail, 1);
    EXPECT_EQ(ErrorOf([&] { people->Append(picture, LongBytes()); }), ErrorKind::kIo);
    files_.Arm(Fault::kNone, 0);
    EXPECT_TRUE(people->Get("Picture").IsNull());
}

TEST_P(PiecesTest, OfATransaction_AreGoneWhenItIsRolledBack) {
    const auto database = Open(files_);
    const auto people = database->OpenTable("People");
    people->Edit();
    people->Set("Age", 7);
    people->Update();
    const auto log = files_.Contents(kLog);
    {
        const Transaction transaction = database->Begin();
        for (const char16_t* name : {u"third", u"fourth"}) {
            people->AddNew();
            people->Set("Name", name);
            AppendInPieces(*people, "Picture", LongBytes(), 100000);
            people->Update();
        }
        EXPECT_GT(files_.Contents(kLog).size(), log.size() + kLong);
        people->MoveFirst();
        people->Delete();
        people->AddNew();
        AppendInPieces(*people, "Story", LongText(u'a', u'b'), 100000);
    }
    EXPECT_EQ(files_.Contents(kLog), log);
    EXPECT_FALSE(people->IsEditing());
    EXPECT_EQ(people->RecordCount(), 2);
    people->AddNew();
    people->Append(people->Field("Story"), u"after it");
    EXPECT_EQ(people->Get("Story"), Value(u"after it"));
    people->Update();
    database->Close();
    ExpectSound(files_);
}

TEST_P(PiecesTest, AsMuchAsAFieldTakes_IsTheLimit) {
    const auto database = Open(files_);
    const auto people = database->OpenTable("People");
    // Its length is too much already, so nobody looks at it.
    constexpr std::size_t kTooMuch = std::size_t{1} << 30;
    const auto room = std::make_unique_for_overwrite<std::byte[]>(kTooMuch);
    people->AddNew();
    const FieldId picture = people->Field("Picture");
    const std::span<const std::byte> tooMuch(room.get(), kTooMuch);
    EXPECT_EQ(ErrorOf([&] { people->Append(picture, tooMuch); }), ErrorKind::kTextTooLong);
    people->Append(picture, LongBytes());
    EXPECT_EQ(ErrorOf([&] { people->Append(picture, tooMuch.first(kTooMuch - kLong)); }),
              ErrorKind::kTextTooLong);
    EXPECT_EQ(people->OpenReader(picture)->Size(), kLong);
}

using Sizes = std::vector<std::size_t>;

// The sizes of the pictures.
Sizes PicturesIn(Database& database) {
    Sizes found;
    for (const auto people = database.OpenTable("People"); !people->IsEof(); people->MoveNext()) {
        const auto reader = people->OpenReader(people->Field("Picture"));
        found.push_back(reader ? static_cast<std::size_t>(reader->Size()) : 0);
    }
    return found;
}

// Replaces one picture by a long one and adds another one, as one change or as two.
void RunPieces(FaultFileSystem& files, Progress& progress, int patience, const Binary& bytes,
               bool inTransaction) {
    std::unique_ptr<Database> database;
    const auto persist = [&](const std::function<void()>& step) {
        tarn_test::Persist(files, patience, step);
    };
    persist([&] { database = Database::Open(kFile, LittleMemory(), files); });
    const auto people = database->OpenTable("People");
    const auto write = [&] {
        AppendInPieces(*people, "Picture", bytes, 100000);
        people->Update();
    };
    const auto replace = [&] {
        people->MoveFirst();
        people->Edit();
        write();
    };
    const auto add = [&] {
        people->AddNew();
        write();
    };
    progress.underWay = true;
    if (inTransaction) {
        persist([&] {
            Transaction transaction = database->Begin();
            replace();
            add();
            transaction.Commit();
        });
        progress.acknowledged = 2;
    } else {
        persist(replace);
        progress.acknowledged = 1;
        persist(add);
        progress.acknowledged = 2;
    }
    progress.underWay = false;
    persist([&] { database->MakeDurable(); });
    progress.durable = 2;
    persist([&] { database->Close(); });
}

const std::vector<Sizes> kStates = {{9000, 9000}, {kLong, 9000}, {kLong, 9000, kLong}};

// A transaction goes from the first state to the last one.
bool IsExpected(const Sizes& found, const Progress& progress, bool powerCut, bool inTransaction) {
    if (!inTransaction) return tarn_test::IsAcknowledgedState(kStates, found, progress, powerCut);
    const bool none = (powerCut ? progress.durable : progress.acknowledged) == 0;
    return found == kStates[2] || (none && found == kStates[0]);
}

TEST_P(PiecesTest, AnyStep_Fails_NothingIsLeftBehind) {
    const Binary bytes = LongBytes();
    for (const bool inTransaction : {false, true}) {
        tarn_test::FailAtEveryStep(
            files_, {Fault::kFail, Fault::kFailHalfDone, Fault::kFailDone, Fault::kFullDisk},
            [&](FaultFileSystem& files, Progress& progress) {
                RunPieces(files, progress, 1, bytes, inTransaction);
            },
            [&](FaultFileSystem& files, const Progress& progress, const std::string& where) {
                const auto database = Open(files);
                EXPECT_TRUE(IsExpected(PicturesIn(*database), progress, false, inTransaction))
                    << where;
                database->Close();
                EXPECT_EQ(files.Names(), std::vector<std::string>{kFile}) << where;
                ExpectSound(files, where);
            });
    }
}

TEST_P(PiecesTest, AnyStep_IsTheLastOfTheProcessOrTheMachine) {
    const Binary bytes = LongBytes();
    for (const bool inTransaction : {false, true}) {
        for (const Fault fault : {Fault::kStop, Fault::kStopHalfDone, Fault::kStopDone}) {
            for (int step = 1;; ++step) {
                const auto files = files_.Copy();
                files->Arm(fault, step);
                Progress progress;
                try {
                    RunPieces(*files, progress, 0, bytes, inTransaction);
                    break;
                } catch (const Error&) {
                    ASSERT_TRUE(files->HasStopped());
                }
                const bool powerCut = step % 2 == 0;
                if (powerCut) {
                    files->CutPower(static_cast<std::uint32_t>(step));
                } else {
                    files->Restart();
                }
                const auto database = Open(*files);
                EXPECT_TRUE(IsExpected(PicturesIn(*database), progress, powerCut, inTransaction))
                    << "step " << step;
                database->Close();
                EXPECT_EQ(files->Names(), std::vector<std::string>{kFile}) << "step " << step;
                ExpectSound(*files, "step " + std::to_string(step));
            }
        }
    }
}

// A file that was made just before the end of its process is not there for ever.
TEST_P(PiecesTest, ATemporaryFileThatWasLeft_IsRemovedByTheNextOpening) {
    files_.SetContents("a file.mdb-log-tmp", Binary(3));
    Database::Open(kFile, {.exclusive = false, .readOnly = true}, files_)->Close();
    EXPECT_EQ(files_.Names().size(), 2U);
    Open(files_)->Close();
    EXPECT_EQ(files_.Names(), std::vector<std::string>{kFile});
}

// A process of its own says how much memory it took at most.
TEST(PiecesMemory, StaysSmall_WhateverTheValueIs) {
    if (support::kIsSanitized) {
        GTEST_SKIP() << "A sanitizer takes memory of its own.";
    }
    if (!std::filesystem::exists("/proc/self/status")) {
        GTEST_SKIP() << "This system does not say there how much memory a process took.";
    }
    for (const std::string field : {"ole", "memo"}) {
        for (const std::string end : {"each", "commit", "rollback", "cancel", "delete"}) {
            const tarn_test::TempFolder folder;
            const std::filesystem::path file = folder.Path() / "long.mdb";
            const auto result =
                tarn_test::RunCommand(tarn_test::Quoted(tarn_test::BuiltProgram("add_long")) + " " +
                                      tarn_test::Quoted(file) + " 60 " + field + " " + end);
            EXPECT_EQ(result.status, 0) << result.output;
            EXPECT_LT(std::stoul(result.output), 40U) << field << ", " << end << ", in MiB";
            EXPECT_EQ(Database::Open(file)->OpenTable("Rows")->RecordCount(),
                      end == "each" || end == "commit" ? 1 : 0);
            EXPECT_FALSE(std::filesystem::exists(folder.Path() / "long.mdb-log-tmp"));
        }
    }
}

}  // namespace
}  // namespace jet
