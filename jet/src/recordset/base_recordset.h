// What both kinds of record set share: the current record, reading its fields, and the open edit.
#pragma once

#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "jet/recordset.h"
#include "recordset/open_file.h"
#include "table/table.h"
#include "table/table_cursor.h"

namespace jet {

class BaseRecordset : public Recordset {
public:
    void Close() override;
    [[nodiscard]] const std::vector<ColumnSchema>& Fields() const override;
    [[nodiscard]] FieldId Field(std::string_view name) const override;
    [[nodiscard]] bool IsBof() const override;
    [[nodiscard]] bool IsEof() const override;
    [[nodiscard]] std::uint32_t RecordId() const override;

    void MoveFirst() override;
    void MoveLast() override;
    void MoveNext() override;
    void MovePrevious() override;

    [[nodiscard]] Value Get(FieldId field) const override;
    bool ReadLong(FieldId field, std::int32_t& into) const override;
    bool ReadSingle(FieldId field, float& into) const override;
    bool ReadDouble(FieldId field, double& into) const override;
    bool ReadText(FieldId field, std::u16string& into) const override;
    bool ReadText(FieldId field, std::string& into) const override;
    [[nodiscard]] std::unique_ptr<ValueReader> OpenReader(FieldId field,
                                                          std::uint64_t from) const override;

    void AddNew() override;
    void Edit() override;
    void Set(FieldId field, const Value& value) override;
    void Set(FieldId field, Value&& value) override;
    void Append(FieldId field, std::u16string_view text) override;
    void Append(FieldId field, std::span<const std::byte> bytes) override;
    void Update() override;
    void CancelUpdate() override;
    void Delete() override;
    [[nodiscard]] bool IsEditing() const override {
        RequireOpen();
        return OpenEdit() != EditKind::kNone;
    }

protected:
    // `columns` are the positions of the fields in the table; empty for all.
    BaseRecordset(std::shared_ptr<OpenFile> file, Table& table, bool system,
                  const std::vector<std::size_t>& columns);

    enum class Place {
        kNowhere,  // there was no record to go to
        kBefore,   // before the first
        kAmong,    // where the cursor is
        kBehind,   // behind the last
    };

    void RequireOpen() const {
        if (closed_) ThrowClosed();
        file_->RequireOpen();
        if (table_->IsDropped()) ThrowDropped();
    }
    void DropEdit() {
        edit_ = EditKind::kNone;
        values_.drafts.clear();
    }
    // Goes to the first record of an order, which is the one from now on.
    void UseOrder(std::unique_ptr<TableCursor> cursor);
    void Arrive(bool found, Place otherwise);
    [[nodiscard]] OpenFile& File() const { return *file_; }
    [[nodiscard]] Table& Source() const { return *table_; }
    [[nodiscard]] bool IsOnRecord() const { return place_ == Place::kAmong && cursor_->Valid(); }
    // After a search that found nothing the former record can be read but not be changed.
    void SetSearchFailed(bool failed) { searchFailed_ = failed; }
    [[nodiscard]] const RowView& CurrentView() const {
        RequireOpen();
        if (viewKnown_ && viewChange_ == table_->Pages().ChangeCount()) return view_;
        return FindCurrentView();
    }

private:
    enum class EditKind { kNone, kAdd, kEdit };

    // A field's column: its position in the table, and where numbers of a fixed size lie in each
    // row, so that reading one need not look at the definition.
    struct FieldColumn {
        std::uint16_t column = 0;
        std::uint16_t number = 0;
        std::uint16_t offset = 0;
        ColumnType type = ColumnType::kLong;
        bool plain = false;  // a number in the fixed area, whole
    };

    [[nodiscard]] static std::vector<FieldColumn> FieldColumnsOf(
        const Definition& definition, const std::vector<std::size_t>& columns);
    [[nodiscard]] const FieldColumn& ColumnOf(FieldId field) const {
        const auto position = static_cast<std::size_t>(field.position);
        if (position >= columns_.size()) ThrowNoField();
        return columns_[position];
    }
    [[noreturn]] void ThrowNoField() const;
    [[noreturn]] void ThrowDropped() const;
    [[noreturn]] static void ThrowClosed();
    // True when the bytes of the current record are a number of this very type.
    [[nodiscard]] bool IsPlain(const FieldColumn& field, ColumnType type) const {
        return field.plain && field.type == type && edit_ == EditKind::kNone;
    }
    template <typename Number>
    bool ReadPlain(const FieldColumn& field, Number& into) const;
    [[nodiscard]] const RowView& FindCurrentView() const;
    // An edit ends with the transaction that is rolled back.
    [[nodiscard]] EditKind OpenEdit() const {
        return editRollbacks_ == file_->Rollbacks() ? edit_ : EditKind::kNone;
    }
    // True when the value is that of the edit, not of the stored record.
    [[nodiscard]] bool IsInEdit(std::size_t column) const;
    void RequireCurrent() const;
    void RequireWritable() const;
    void RequireEdit() const;
    template <typename Held, typename Piece>
    void AppendTo(FieldId field, ColumnType type, Piece piece);
    template <typename Held, typename Piece>
    void AppendToColumn(std::size_t place, Piece piece);
    void StartEdit(EditKind kind);
    void AddRow();
    void UpdateCurrent();
    void FillDefaults();
    void FillDefault(std::size_t column);

    std::shared_ptr<OpenFile> file_;
    Table* table_;
    bool readOnly_;
    std::vector<FieldColumn> columns_;
    std::vector<ColumnSchema> fields_;
    Place place_ = Place::kNowhere;
    std::unique_ptr<TableCursor> cursor_;
    bool searchFailed_ = false;
    EditKind edit_ = EditKind::kNone;
    std::uint64_t editRollbacks_ = 0;  // those before it began
    RowValues values_;
    std::vector<bool> written_;  // fields that the open edit was given by its caller
    bool closed_ = false;
    // The current record's bytes, as long as nothing changes.
    mutable StoredRow stored_;
    mutable RowView view_;
    mutable bool viewKnown_ = false;
    mutable std::uint64_t viewChange_ = 0;
};

}  // namespace jet
