#include <gtest/gtest.h>

#include <algorithm>
#include <map>

#include <QFile>
#include <QStringList>

#include "datafile/UnitFinder.h"
#include "support/BuiltProgramFolder.h"
#include "support/Corpus.h"
#include "support/paths.h"

using datafile::UnitFinder;

namespace {

using support::ProgramFolder;

QStringList IDs(const std::vector<UnitFinder::Unit>& units) {
    QStringList ids;
    for (const UnitFinder::Unit& unit : units) {
        ids << unit.id;
    }
    return ids;
}

QStringList Names(const std::vector<UnitFinder::Unit>& units) {
    QStringList names;
    for (const UnitFinder::Unit& unit : units) {
        names << unit.name;
    }
    return names;
}

class UnitFinderTest : public testing::Test {
protected:
    UnitFinderTest() { finder_.Open(folder_.Path(QStringLiteral("fcdname.dat"))); }

    ProgramFolder folder_;
    UnitFinder finder_;
};

TEST_F(UnitFinderTest, FindUnit_OneState_GivesNameAndState) {
    const UnitFinder::Answer answer = finder_.FindUnit(QStringLiteral("GPF"));
    EXPECT_EQ(answer.code, UnitFinder::kFound);
    EXPECT_EQ(answer.unit.name, QStringLiteral("Gifford Pinchot National Forest"));
    EXPECT_EQ(answer.unit.state, QStringLiteral("WA"));
}

TEST_F(UnitFinderTest, FindUnit_SeveralStates_SaysSoAndGivesNothing) {
    const UnitFinder::Answer answer = finder_.FindUnit(QStringLiteral("SNF"));
    EXPECT_EQ(answer.code, UnitFinder::kInSeveralStates);
    EXPECT_TRUE(answer.unit.name.isEmpty());
}

TEST_F(UnitFinderTest, FindUnit_Unknown_IsNotFound) {
    EXPECT_EQ(finder_.FindUnit(QStringLiteral("ZZZ")).code, UnitFinder::kNotFound);
    EXPECT_EQ(finder_.FindUnit(QString()).code, UnitFinder::kNotFound);
}

TEST_F(UnitFinderTest, FindUnit_EveryUnitOfTheList_HasTheCodeThatItsStatesGive) {
    QFile source(support::SourceFolder() / "data/units.tsv");
    ASSERT_TRUE(source.open(QIODevice::ReadOnly));
    source.readLine();
    std::map<QString, QStringList> states;
    while (!source.atEnd()) {
        const QStringList fields = QString::fromUtf8(source.readLine()).split(u'\t');
        states[fields.at(0)] << fields.at(1);
    }
    ASSERT_EQ(states.size(), 957U);
    for (const auto& [id, known] : states) {
        const UnitFinder::Answer answer = finder_.FindUnit(id);
        EXPECT_EQ(answer.code,
                  known.size() == 1 ? UnitFinder::kFound : UnitFinder::kInSeveralStates)
            << id.toStdString();
        for (const QString& state : known) {
            EXPECT_EQ(finder_.FindUnitInState(id, state).code, UnitFinder::kFound);
        }
    }
}

TEST_F(UnitFinderTest, FindUnitInState_WrongState_IsNotFound) {
    EXPECT_EQ(finder_.FindUnitInState(QStringLiteral("GPF"), QStringLiteral("OR")).code,
              UnitFinder::kNotFound);
}

TEST_F(UnitFinderTest, ListByID_TypedStart_BeginsThreeEntriesBefore) {
    const auto [units, match] = finder_.ListByID(QStringLiteral("GP"));
    EXPECT_EQ(match, 3);
    ASSERT_EQ(units.size(), 20U);
    EXPECT_LT(units[2].id, QStringLiteral("GP"));
    EXPECT_GE(units[3].id, QStringLiteral("GP"));
    const QStringList ids = IDs(units);
    EXPECT_TRUE(std::is_sorted(ids.begin(), ids.end()));
}

TEST_F(UnitFinderTest, ListByID_BeforeTheFirst_BeginsWithTheFirst) {
    const auto [units, match] = finder_.ListByID(QStringLiteral("0"));
    EXPECT_EQ(match, 0);
    ASSERT_EQ(units.size(), 20U);
    EXPECT_EQ(units.front().id, QStringLiteral("AAL"));
}

TEST_F(UnitFinderTest, ListByName_IgnoresCase) {
    EXPECT_EQ(Names(finder_.ListByName(QStringLiteral("gifford")).units),
              Names(finder_.ListByName(QStringLiteral("GIFFORD")).units));
    EXPECT_EQ(finder_.ListByName(QStringLiteral("gifford")).units.at(3).id, QStringLiteral("GPF"));
}

TEST_F(UnitFinderTest, ListByName_BeyondTheLast_ListsTheLastEntries) {
    const auto [units, match] = finder_.ListByName(QStringLiteral("zzzz"));
    EXPECT_EQ(match, -1);
    ASSERT_EQ(units.size(), 6U) << "the last, two before it, and three more";
    EXPECT_EQ(units.back().name, QStringLiteral("Zuni Agency"));
}

TEST(UnitFinder, Open_MissingFile_Throws) {
    UnitFinder finder;
    EXPECT_THROW(finder.Open(QStringLiteral("/no such folder/fcdname.dat")),
                 platform::RuntimeError);
    finder.Close();
}

TEST(UnitFinder, SmallTableOfOtherOrigin_AllSearches_Answer) {
    if (!support::HasCorpus()) {
        GTEST_SKIP() << tarn_test::kNoCorpus;
    }
    ProgramFolder folder;
    QFile::remove(folder.Path(QStringLiteral("fcdname.dat")));
    support::Copy(support::MadeFile(QStringLiteral("fcdname.dat")),
                  folder.Path(QStringLiteral("fcdname.dat")));
    UnitFinder finder;
    finder.Open(folder.Path(QStringLiteral("fcdname.dat")));
    EXPECT_EQ(finder.FindUnit(QStringLiteral("SHP")).code, UnitFinder::kInSeveralStates);
    EXPECT_NE(finder.FindUnit(QStringLiteral("MCD")).code, UnitFinder::kNotFound);
    EXPECT_FALSE(finder.ListByName(QStringLiteral("a")).units.empty());
    EXPECT_EQ(finder.ListByName(QStringLiteral("zzzz")).units.size(), 6U);
}

TEST(UnitFinder, EmptyTable_ListsNothing) {
    const ProgramFolder folder;
    const QString path = folder.Path(QStringLiteral("fcdname.dat"));
    {
        const auto database = dao::Database::Open(path, dao::OpenMode::kExclusive);
        const auto units = database->OpenTable(QStringLiteral("Units"));
        for (; !units->EndOfFile(); units->MoveNext()) {
            units->Delete();
        }
        database->Close();
    }
    UnitFinder finder;
    finder.Open(path);
    EXPECT_TRUE(finder.ListByID(QStringLiteral("GPF")).units.empty());
    EXPECT_EQ(finder.FindUnit(QStringLiteral("GPF")).code, UnitFinder::kNotFound);
}

}  // namespace
