// Memos and OLE values in pieces, and texts as UTF-8.
#include <gtest/gtest.h>

#include "jet/convert.h"
#include "jet/database.h"
#include "jet/recordset.h"
#include "sample_table.h"

namespace jet {
namespace {

class Streaming : public testing::TestWithParam<Version> {
protected:
    void SetUp() override {
        database_ = Database::Create("a file.mdb", GetParam(), *files_);
        database_->CreateTable(PeopleSchema());
        people_ = database_->OpenTable("People");
    }

    void Add(const std::u16string& story, const Binary& picture) {
        people_->AddNew();
        people_->Set("Story", story);
        people_->Set("Picture", picture);
        people_->Update();
        people_->MoveLast();
    }
    std::u16string Story(std::size_t piece, std::uint64_t from = 0) {
        const auto reader = people_->OpenReader(people_->Field("Story"), from);
        std::u16string story;
        std::u16string part(piece, u'\0');
        while (const std::size_t count = reader->Read(std::span(part))) {
            story.append(part, 0, count);
        }
        return story;
    }

    std::unique_ptr<FileSystem> files_ = MakeMemoryFileSystem();
    std::unique_ptr<Database> database_;
    std::unique_ptr<Recordset> people_;
};

INSTANTIATE_TEST_SUITE_P(Versions, Streaming, testing::Values(Version::kJet3, Version::kJet4),
                         [](const auto& tested) { return VersionName(tested.param); });

std::u16string LongText(std::size_t size) {
    std::u16string text;
    for (std::size_t i = 0; i < size; ++i) {
        text.push_back(i % 7 == 0 ? u'\u20AC' : static_cast<char16_t>(u'a' + i % 26));
    }
    return text;
}

TEST_P(Streaming, Memos_AreReadInPiecesOfAnySize) {
    for (const std::size_t size : {1U, 30U, 900U, 3000U, 20000U}) {
        const std::u16string text = LongText(size);
        Add(text, {});
        EXPECT_EQ(people_->OpenReader(people_->Field("Story"))->Size(), size);
        for (const std::size_t piece : {1U, 1000U, 4096U, 50000U}) EXPECT_EQ(Story(piece), text);
        EXPECT_EQ(Story(777, size / 2), text.substr(size / 2));
        EXPECT_EQ(Story(10, size + 5), u"");
    }
    Add(u"plain letters only", {});
    EXPECT_EQ(Story(4, 6), u"letters only");
}

TEST_P(Streaming, OleValues_AreReadAndWrittenInPieces) {
    Binary whole;
    people_->AddNew();
    for (int piece = 0; piece < 30; ++piece) {
        const Binary part(701, static_cast<std::byte>(piece));
        people_->Append(people_->Field("Picture"), part);
        whole.insert(whole.end(), part.begin(), part.end());
    }
    people_->Append(people_->Field("Story"), u"one ");
    people_->Append(people_->Field("Story"), u"two");
    EXPECT_EQ(Story(2), u"one two");
    people_->Update();
    people_->MoveLast();
    EXPECT_EQ(people_->Get("Picture"), Value(whole));
    EXPECT_EQ(people_->Get("Story"), Value(u"one two"));
    const auto reader = people_->OpenReader(people_->Field("Picture"), 701);
    Binary part(701);
    EXPECT_EQ(reader->Read(std::span(part)), part.size());
    EXPECT_EQ(part, Binary(701, std::byte{1}));

    people_->Edit();
    people_->Append(people_->Field("Story"), u"anew");
    people_->Update();
    EXPECT_EQ(people_->Get("Story"), Value(u"anew"));
}

TEST_P(Streaming, AChange_EndsAReader) {
    Add(LongText(20000), {});
    const auto reader = people_->OpenReader(people_->Field("Story"));
    std::u16string part(100, u'\0');
    EXPECT_EQ(reader->Read(std::span(part)), 100U);
    people_->Edit();
    people_->Set("Age", 3);
    people_->Update();
    EXPECT_EQ(ErrorOf([&] { reader->Read(std::span(part)); }), ErrorKind::kNoCurrentRecord);
    database_->Close();
    EXPECT_EQ(ErrorOf([&] { reader->Read(std::span(part)); }), ErrorKind::kClosed);
}

TEST_P(Streaming, WhatIsNoLongValue_IsNotReadInPieces) {
    Add(u"x", {});
    std::u16string part(9, u'\0');
    Binary bytes(9);
    EXPECT_EQ(ErrorOf([&] { static_cast<void>(people_->OpenReader(people_->Field("Name"))); }),
              ErrorKind::kTypeMismatch);
    const auto story = people_->OpenReader(people_->Field("Story"));
    EXPECT_EQ(ErrorOf([&] { story->Read(std::span(bytes)); }), ErrorKind::kTypeMismatch);
    EXPECT_EQ(ErrorOf([&] { people_->Append(people_->Field("Story"), u"x"); }),
              ErrorKind::kNoEditBegun);
    people_->Edit();
    EXPECT_EQ(ErrorOf([&] { people_->Append(people_->Field("Story"), bytes); }),
              ErrorKind::kTypeMismatch);
    people_->Set("Story", Value());
    EXPECT_EQ(people_->OpenReader(people_->Field("Story")), nullptr);
}

TEST_P(Streaming, Texts_AreReadAsUtf8) {
    for (const std::u16string& text :
         {std::u16string(u"plain"), std::u16string(u"caf\u00E9"), LongText(200), LongText(5000),
          std::u16string(300, u'x') + u"\u20AC", std::u16string()}) {
        Add(text, {});
        people_->Edit();
        people_->Set("Town", text.substr(0, 30));
        people_->Update();
        std::string utf8 = "rest of another one";
        EXPECT_TRUE(people_->ReadText(people_->Field("Story"), utf8));
        EXPECT_EQ(utf8, ToUtf8(text));
        EXPECT_TRUE(people_->ReadText(people_->Field("Town"), utf8));
        EXPECT_EQ(utf8, ToUtf8(text.substr(0, 30)));
        EXPECT_TRUE(people_->ReadText(people_->Field("ID"), utf8));
        EXPECT_EQ(utf8, ToUtf8(people_->Get("ID").AsText()));
    }
    std::string utf8;
    EXPECT_FALSE(people_->ReadText(people_->Field("Name"), utf8));
}

void ExpectEveryCallClosed(Recordset& rows, FieldId field) {
    const auto expectClosed = [&](const auto& call) {
        EXPECT_EQ(ErrorOf(call), ErrorKind::kClosed);
    };
    expectClosed([&] { static_cast<void>(rows.Fields()); });
    expectClosed([&] { static_cast<void>(rows.Field("Story")); });
    expectClosed([&] { rows.SetIndex(""); });
    expectClosed([&] { static_cast<void>(rows.Index()); });
    expectClosed([&] { rows.MoveFirst(); });
    expectClosed([&] { rows.MoveLast(); });
    expectClosed([&] { rows.MoveNext(); });
    expectClosed([&] { rows.MovePrevious(); });
    expectClosed([&] { static_cast<void>(rows.IsBof()); });
    expectClosed([&] { static_cast<void>(rows.IsEof()); });
    expectClosed([&] { static_cast<void>(rows.RecordCount()); });
    expectClosed([&] { static_cast<void>(rows.RecordId()); });
    expectClosed([&] { rows.Seek(Comparison::kEqual, {1}); });
    expectClosed([&] { static_cast<void>(rows.NoMatch()); });
    std::vector<std::byte> key;
    expectClosed([&] { rows.MakeKey(std::vector<Value>{1}, key); });
    expectClosed([&] { static_cast<void>(rows.CompareToKey(key)); });
    expectClosed([&] { rows.AddNew(); });
    expectClosed([&] { rows.Edit(); });
    expectClosed([&] { rows.Append(field, u"y"); });
    expectClosed([&] { rows.Append(field, std::span<const std::byte>(key)); });
    expectClosed([&] { rows.Update(); });
    expectClosed([&] { rows.CancelUpdate(); });
    expectClosed([&] { rows.Delete(); });
    expectClosed([&] { static_cast<void>(rows.IsEditing()); });
    for (const FieldId any : {field, FieldId{1000}}) {
        std::int32_t number = 0;
        float single = 0;
        double fraction = 0;
        std::u16string text;
        std::string utf8;
        expectClosed([&] { static_cast<void>(rows.Get(any)); });
        expectClosed([&] { rows.ReadLong(any, number); });
        expectClosed([&] { rows.ReadSingle(any, single); });
        expectClosed([&] { rows.ReadDouble(any, fraction); });
        expectClosed([&] { rows.ReadText(any, text); });
        expectClosed([&] { rows.ReadText(any, utf8); });
        expectClosed([&] { static_cast<void>(rows.OpenReader(any)); });
        expectClosed([&] { rows.Set(any, u"y"); });
    }
}

TEST_P(Streaming, AfterClose_EveryCallSaysSo) {
    Add(u"x", {});
    const auto query = database_->OpenQuery("SELECT * FROM People");
    for (Recordset* rows : {people_.get(), query.get()}) {
        const FieldId field = rows->Field("Story");
        rows->Close();
        rows->Close();
        ExpectEveryCallClosed(*rows, field);
    }
}

TEST_P(Streaming, AfterTheDatabaseIsClosed_EveryCallSaysSo_InAnEditToo) {
    Add(u"x", {});
    const auto query = database_->OpenQuery("SELECT * FROM People");
    const FieldId field = people_->Field("Story");
    people_->AddNew();
    people_->Set(field, u"y");
    query->Edit();
    query->Set(field, u"y");
    database_->Close();
    ExpectEveryCallClosed(*people_, field);
    ExpectEveryCallClosed(*query, field);
}

TEST_P(Streaming, AReader_IsClosedWithItsDatabase) {
    Add(u"x", Binary(5000, std::byte{1}));
    const FieldId story = people_->Field("Story");
    const auto memo = people_->OpenReader(story);
    const auto picture = people_->OpenReader(people_->Field("Picture"));
    people_->Edit();
    people_->Append(story, u"y");
    const auto inEdit = people_->OpenReader(story);
    database_->Close();
    for (ValueReader* reader : {memo.get(), picture.get(), inEdit.get()}) {
        std::vector<std::byte> bytes(10);
        std::vector<char16_t> units(10);
        EXPECT_EQ(ErrorOf([&] { static_cast<void>(reader->Size()); }), ErrorKind::kClosed);
        EXPECT_EQ(ErrorOf([&] { reader->Read(std::span(bytes)); }), ErrorKind::kClosed);
        EXPECT_EQ(ErrorOf([&] { reader->Read(std::span(units)); }), ErrorKind::kClosed);
    }
}

}  // namespace
}  // namespace jet
