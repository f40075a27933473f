// A table of names and numbers in memory that a grid can show, with a log of its actions.
#pragma once

#include <QStringList>
#include <functional>
#include <utility>
#include <vector>

#include "platform/RuntimeError.h"
#include "platform/controls/GridTable.h"
#include "platform/text/Numbers.h"

// Column 0 is a name, the others hold singles, of which the leading number of a typed text counts.
class MemoryTable : public platform::GridTable {
public:
    struct Row {
        QString name;
        std::vector<QString> typed;
        std::vector<float> values;
    };

    MemoryTable(int count, int columns) : columns_(columns) {
        for (int row = 1; row <= count; ++row) {
            Append(QStringLiteral("Row%1").arg(row));
        }
    }

    [[nodiscard]] int RowCount() const override { return static_cast<int>(rows.size()); }
    [[nodiscard]] QString Text(int row, int col) const override {
        return col == 0 ? At(row).name : At(row).typed[std::size_t(col)];
    }
    [[nodiscard]] QString Stored(int row, int col) const override {
        return col == 0 ? At(row).name : platform::Str(At(row).values[std::size_t(col)]);
    }
    [[nodiscard]] QString RowName(int row) const override { return At(row).name; }
    [[nodiscard]] Takes CellTakes(int row, int col) const override {
        if (refuses && refuses(row, col)) {
            return Takes::kNothing;
        }
        return col == 0 ? Takes::kText : Takes::kNumber;
    }
    [[nodiscard]] int MaxLength(int col) const override { return col == 0 ? 12 : longest; }
    [[nodiscard]] bool TabStops(int col) const override { return col != 0; }
    Answer Offer(int row, int col, const QString& typed) override {
        log += QStringLiteral("Offer %1 %2 ").arg(row).arg(col) + typed;
        if (col == 0) {
            At(row).name = typed;
            return {};
        }
        return OfferNumber(row, std::size_t(col), typed);
    }
    [[nodiscard]] int RoomForRows() const override { return room; }
    void AppendRows(int count) override {
        for (int i = 0; i < count; ++i) {
            Append({});
            if (appended) {
                appended(RowCount());
            }
        }
    }
    void BeginAction(const QString& name) override { log += QStringLiteral("Begin ") + name; }
    void EndAction() override { log += QStringLiteral("End"); }

    [[nodiscard]] const Row& At(int row) const { return rows[std::size_t(row - 1)]; }
    [[nodiscard]] Row& At(int row) { return rows[std::size_t(row - 1)]; }
    void Set(int row, int col, float value) {
        At(row).values[std::size_t(col)] = value;
        At(row).typed[std::size_t(col)] = platform::Str(value);
    }
    [[nodiscard]] float Value(int row, int col) const { return At(row).values[std::size_t(col)]; }

    std::vector<Row> rows;
    std::function<bool(int row, int col)> refuses;  // no editing there
    std::function<void(int row)> appended;
    int longest = 10;
    int room = 0;
    bool showsStored = false;  // at the end of an edit the stored number shows
    QStringList log;

private:
    Answer OfferNumber(int row, std::size_t col, const QString& typed) {
        try {
            const float value = platform::ToSingle(platform::Val(typed));
            At(row).values[col] = value;
        } catch (const platform::RuntimeError&) {
            return {Answer::Kind::kRefused, QStringLiteral("The number is too large.")};
        }
        const QString stored = platform::Str(At(row).values[col]);
        At(row).typed[col] = showsStored ? stored : typed;
        if (showsStored && stored != typed) {
            return {Answer::Kind::kChanged, stored};
        }
        return {};
    }
    void Append(const QString& name) {
        Row row{name, std::vector<QString>(std::size_t(columns_), QStringLiteral("0")),
                std::vector<float>(std::size_t(columns_))};
        rows.push_back(std::move(row));
    }

    int columns_;
};
