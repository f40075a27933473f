// The record set of a query: the rows that it selected, in its order.
#pragma once

#include "jet/query.h"
#include "query/list_cursor.h"
#include "recordset/base_recordset.h"

namespace jet {

class QueryRecordset : public BaseRecordset {
public:
    QueryRecordset(std::shared_ptr<OpenFile> file, Table& table, bool system, const Query& query);

    void SetIndex(std::string_view name) override;
    [[nodiscard]] std::string Index() const override {
        RequireOpen();
        return {};
    }
    [[nodiscard]] std::int32_t RecordCount() const override;
    bool Seek(Comparison comparison, std::span<const Value> key) override;
    [[nodiscard]] bool NoMatch() const override {
        RequireOpen();
        return false;
    }
    void MakeKey(std::span<const Value> key, std::vector<std::byte>& into) const override;
    [[nodiscard]] int CompareToKey(std::span<const std::byte> key) const override;

private:
    [[noreturn]] void ThrowNoIndex() const;

    ListCursor* rows_ = nullptr;  // the cursor
};

}  // namespace jet
