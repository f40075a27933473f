// Transactions of the program: all or none, and those that join another one.
#include "platform/dao/Transaction.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include <functional>
#include <optional>
#include <utility>

#include "jet/database.h"
#include "platform/dao/Database.h"
#include "platform/dao/Recordset.h"

namespace {

int NumberOf(const std::function<void()>& body) {
    try {
        body();
    } catch (const platform::RuntimeError& error) {
        return error.Number();
    }
    return 0;
}

class TransactionTest : public ::testing::Test {
protected:
    TransactionTest() {
        const QString path = folder_.filePath(QStringLiteral("zones.mdb"));
        jet::Database::Create(path.toStdString(), jet::Version::kJet4)->Close();
        database_ = dao::Database::Open(path, dao::OpenMode::kExclusive);
        dao::TableDefinition table;
        table.name = QStringLiteral("Zones");
        table.fields = {{QStringLiteral("Key"), dao::FieldType::kLong}};
        table.indexes = {{QStringLiteral("PrimaryKey"), {QStringLiteral("Key")}, true, true}};
        database_->AppendTable(table);
        zones_ = database_->OpenTable(QStringLiteral("Zones"));
    }

    void Add(int key) {
        zones_->AddNew();
        zones_->SetField(QStringLiteral("Key"), key);
        zones_->Update();
    }
    int Count() { return zones_->RecordCount(); }

    QTemporaryDir folder_;
    std::unique_ptr<dao::Database> database_;
    std::unique_ptr<dao::Recordset> zones_;
};

TEST_F(TransactionTest, Commit_StoresAll) {
    dao::Transaction transaction = database_->Begin();
    Add(1);
    Add(2);
    EXPECT_TRUE(database_->InTransaction());
    transaction.Commit();
    EXPECT_FALSE(database_->InTransaction());
    EXPECT_EQ(Count(), 2);
    EXPECT_EQ(NumberOf([&] { transaction.Commit(); }), platform::kNoTransaction);
}

TEST_F(TransactionTest, ErrorThrownPastIt_RollsBack) {
    const auto action = [&] {
        dao::Transaction transaction = database_->Begin();
        Add(1);
        Add(1);
        transaction.Commit();
    };
    EXPECT_EQ(NumberOf(action), platform::kDuplicateKey);
    EXPECT_FALSE(database_->InTransaction());
    EXPECT_EQ(Count(), 0);
}

TEST_F(TransactionTest, Joined_IsStoredWithTheOutermost) {
    dao::Transaction outer = database_->Begin();
    Add(1);
    {
        dao::Transaction inner = database_->Begin();
        Add(2);
        inner.Commit();
    }
    EXPECT_TRUE(database_->InTransaction());
    Add(3);
    outer.Commit();
    EXPECT_EQ(Count(), 3);
}

TEST_F(TransactionTest, Joined_IsRolledBackWithTheOutermost) {
    {
        const dao::Transaction outer = database_->Begin();
        dao::Transaction inner = database_->Begin();
        Add(2);
        inner.Commit();
    }
    EXPECT_FALSE(database_->InTransaction());
    EXPECT_EQ(Count(), 0);
}

TEST_F(TransactionTest, Joined_ThatFails_RollsTheWholeBack) {
    dao::Transaction outer = database_->Begin();
    Add(1);
    {
        const dao::Transaction inner = database_->Begin();
        Add(2);
    }
    // What is written before the outermost ends belongs to it, too.
    Add(3);
    EXPECT_EQ(NumberOf([&] { outer.Commit(); }), platform::kNoTransaction);
    EXPECT_EQ(Count(), 0);
    // The next one starts afresh.
    dao::Transaction next = database_->Begin();
    Add(4);
    next.Commit();
    EXPECT_EQ(Count(), 1);
}

TEST_F(TransactionTest, Moved_EndsOnce) {
    std::optional<dao::Transaction> kept;
    {
        dao::Transaction transaction = database_->Begin();
        kept.emplace(std::move(transaction));
    }
    Add(1);
    kept->Commit();
    EXPECT_EQ(Count(), 1);
}

TEST_F(TransactionTest, Close_RollsBack) {
    dao::Transaction transaction = database_->Begin();
    Add(1);
    EXPECT_EQ(NumberOf([&] { database_->MakeDurable(); }), 3246);
    zones_->Close();
    database_->Close();
    EXPECT_FALSE(database_->InTransaction());
    EXPECT_EQ(NumberOf([&] { transaction.Commit(); }), platform::kObjectClosed);
}

}  // namespace
