#include <optional>

#include "bench/Peer.h"
#include "jet/database.h"
#include "jet/recordset.h"

namespace bench {

namespace {

using jet::ColumnType;
using jet::Comparison;
using jet::FieldId;
using jet::Value;

jet::ColumnSchema Column(const std::string& name, ColumnType type, int length = 0) {
    jet::ColumnSchema column;
    column.name = name;
    column.type = type;
    column.length = length;
    return column;
}

jet::IndexSchema PrimaryKey(const std::vector<jet::IndexColumn>& columns) {
    jet::IndexSchema index;
    index.name = "PrimaryKey";
    index.columns = columns;
    index.primary = true;
    return index;
}

jet::TableSchema NumbersTable() {
    jet::TableSchema table;
    table.name = "Numbers";
    table.columns = {Column("FMZRLKey", ColumnType::kLong),
                     Column("ResourceNumber", ColumnType::kLong)};
    for (int level = 1; level <= 6; ++level) {
        table.columns.push_back(Column("FIL" + std::to_string(level), ColumnType::kSingle));
    }
    table.indexes = {PrimaryKey({{.name = "FMZRLKey"}, {.name = "ResourceNumber"}})};
    return table;
}

jet::TableSchema TextsTable() {
    jet::TableSchema table;
    table.name = "Texts";
    table.columns = {Column("Key", ColumnType::kLong), Column("Name", ColumnType::kText, 50),
                     Column("Body", ColumnType::kMemo)};
    table.indexes = {PrimaryKey({{.name = "Key"}})};
    return table;
}

class JetPeer : public Peer {
public:
    explicit JetPeer(bool jet3) : jet3_(jet3) {}

    std::string Name() const override { return jet3_ ? "jet3" : "jet4"; }

    void Create(const std::filesystem::path& path) override {
        database_ = jet::Database::Create(path, jet3_ ? jet::Version::kJet3 : jet::Version::kJet4);
        database_->CreateTable(NumbersTable());
        database_->CreateTable(TextsTable());
    }
    void Open(const std::filesystem::path& path) override { database_ = jet::Database::Open(path); }
    void Close() override {
        if (database_) database_->Close();
        database_.reset();
    }

    void Begin() override { transaction_.emplace(database_->Begin()); }
    void Commit() override {
        transaction_->Commit();
        transaction_.reset();
    }

    void Insert(const std::vector<Row>& rows) override {
        const auto records = Numbers();
        for (const Row& row : rows) {
            records->AddNew();
            records->Set(FieldId{0}, row.location);
            records->Set(FieldId{1}, row.resource);
            for (int level = 0; level < 6; ++level) {
                records->Set(FieldId{2 + level}, row.values[level]);
            }
            records->Update();
        }
    }
    void Insert(const std::vector<Note>& notes) override {
        const auto records = Texts();
        for (const Note& note : notes) {
            records->AddNew();
            records->Set(FieldId{0}, note.key);
            records->Set(FieldId{1}, note.name);
            records->Set(FieldId{2}, note.body);
            records->Update();
        }
    }

    double Scan(Shape shape) override {
        return shape == Shape::kNumbers ? ScanNumbers() : ScanTexts<std::string>();
    }
    double ScanWide() override { return ScanTexts<std::u16string>(); }

    double Seek(const std::vector<Row>& rows) override {
        const auto records = Numbers();
        double sum = 0;
        for (const Row& row : rows) {
            float value = 0;
            if (records->Seek(Comparison::kEqual, {Value(row.location), Value(row.resource)})) {
                records->ReadSingle(FieldId{4}, value);
            }
            sum += value;
        }
        return sum;
    }
    double Seek(const std::vector<Note>& notes) override {
        const auto records = Texts();
        std::u16string name;
        double sum = 0;
        for (const Note& note : notes) {
            if (records->Seek(Comparison::kEqual, {Value(note.key)})) {
                records->ReadText(FieldId{1}, name);
            }
            sum += static_cast<double>(name.size());
        }
        return sum;
    }

    void UpdateOneField(const std::vector<Row>& rows, int round) override {
        const auto records = Numbers();
        for (const Row& row : rows) {
            records->Seek(Comparison::kEqual, {Value(row.location), Value(row.resource)});
            records->Edit();
            records->Set(FieldId{3}, NewValue(row, round));
            records->Update();
        }
    }
    void Delete(const std::vector<Row>& rows) override {
        const auto records = Numbers();
        for (const Row& row : rows) {
            records->Seek(Comparison::kEqual, {Value(row.location), Value(row.resource)});
            records->Delete();
        }
    }
    void UpdateOneField(const std::vector<Note>& notes, int round) override {
        UpdateText(notes, FieldId{1}, round, NewName);
    }
    void UpdateMemo(const std::vector<Note>& notes, int round) override {
        UpdateText(notes, FieldId{2}, round, NewBody);
    }
    void Delete(const std::vector<Note>& notes) override {
        const auto records = Texts();
        for (const Note& note : notes) {
            records->Seek(Comparison::kEqual, {Value(note.key)});
            records->Delete();
        }
    }
    void DeleteSelected() override {
        const auto records =
            database_->OpenQuery("SELECT FMZRLKey FROM Numbers WHERE FMZRLKey >= 0");
        for (; !records->IsEof(); records->MoveNext()) records->Delete();
    }
    double FirstRow() override {
        const auto records = Numbers();
        std::int32_t key = 0;
        records->ReadLong(FieldId{0}, key);
        return key;
    }

private:
    std::unique_ptr<jet::Recordset> Numbers() { return Table("Numbers"); }
    std::unique_ptr<jet::Recordset> Texts() { return Table("Texts"); }
    std::unique_ptr<jet::Recordset> Table(const char* name) {
        auto records = database_->OpenTable(name);
        records->SetIndex("PrimaryKey");
        return records;
    }

    void UpdateText(const std::vector<Note>& notes, FieldId field, int round,
                    std::u16string (*newText)(const Note&, int)) {
        const auto records = Texts();
        for (const Note& note : notes) {
            records->Seek(Comparison::kEqual, {Value(note.key)});
            records->Edit();
            records->Set(field, newText(note, round));
            records->Update();
        }
    }

    double ScanNumbers() {
        const auto records = database_->OpenTable("Numbers");
        double sum = 0;
        for (; !records->IsEof(); records->MoveNext()) {
            std::int32_t key = 0;
            float value = 0;
            for (int field = 0; field < 2; ++field) {
                records->ReadLong(FieldId{field}, key);
                sum += key;
            }
            for (int field = 2; field < 8; ++field) {
                records->ReadSingle(FieldId{field}, value);
                sum += value;
            }
        }
        return sum;
    }
    template <typename Text>
    double ScanTexts() {
        const auto records = database_->OpenTable("Texts");
        Text text;
        double sum = 0;
        for (; !records->IsEof(); records->MoveNext()) {
            for (int field = 1; field < 3; ++field) {
                records->ReadText(FieldId{field}, text);
                sum += static_cast<double>(text.size());
            }
        }
        return sum;
    }

    bool jet3_;
    std::unique_ptr<jet::Database> database_;
    std::optional<jet::Transaction> transaction_;
};

}  // namespace

std::unique_ptr<Peer> MakeJetPeer(bool jet3) {
    return std::make_unique<JetPeer>(jet3);
}

}  // namespace bench
