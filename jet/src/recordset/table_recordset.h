// The record set of a whole table, in stored order or in that of an index.
#pragma once

#include "recordset/base_recordset.h"
#include "table/key_cursor.h"

namespace jet {

class TableRecordset : public BaseRecordset {
public:
    TableRecordset(std::shared_ptr<OpenFile> file, Table& table, bool system);

    void SetIndex(std::string_view name) override;
    [[nodiscard]] std::string Index() const override {
        RequireOpen();
        return indexName_;
    }
    [[nodiscard]] std::int32_t RecordCount() const override;
    bool Seek(Comparison comparison, std::span<const Value> key) override;
    [[nodiscard]] bool NoMatch() const override {
        RequireOpen();
        return noMatch_;
    }
    void MakeKey(std::span<const Value> key, std::vector<std::byte>& into) const override;
    [[nodiscard]] int CompareToKey(std::span<const std::byte> key) const override;

private:
    void RequireIndex() const;

    const TableIndex* index_ = nullptr;
    std::string indexName_;
    KeyCursor* entries_ = nullptr;  // the cursor, while there is an index
    Key searchKey_;
    bool noMatch_ = false;
};

}  // namespace jet
