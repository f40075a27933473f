// An assessment file, open for reading: its zones, their costs per acre by fire size, and the
// tables of net value change of their locations.
//
// Fields are read by name, whatever their order, width or numeric type; rows are found through the
// named indexes, so the names of the key fields do not matter.
#pragma once

#include <QHash>
#include <QString>
#include <QVariant>

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <utility>

#include "datafile/ZoneKeys.h"
#include "platform/dao/Database.h"
#include "platform/dao/Recordset.h"

namespace mImport {

class BramFile {
public:
    // One value for each FIL level, counted from 0 here.
    using Levels = std::array<float, ZoneKeys::kFilLevels>;

    // Opens the file and its four tables with their indexes; throws when anything is missing.
    explicit BramFile(const QString& path);
    // Closes the four record sets, then the database.
    void Close();

    // The zones, walked by the caller in the order of their codes.
    [[nodiscard]] dao::Recordset& Zones() { return *zones_; }
    // The rows of one zone in the order of their upper sizes. The code stands in the query as it
    // is, so that an apostrophe in it is a syntax error (3075).
    [[nodiscard]] std::unique_ptr<dao::Recordset> CostsOf(const QString& code);

    [[nodiscard]] bool HasSetups() const;
    // The id of the table that applies to a location; nothing when there is no set-up for it.
    [[nodiscard]] std::optional<QVariant> TableIDOf(const QString& code, std::int32_t location);
    // The values of a resource in a table; 0 where a row or value is missing. Many locations share
    // a table, so each is read from the file once.
    [[nodiscard]] const Levels& ValuesOf(const QVariant& tableID, int resource);

private:
    std::unique_ptr<dao::Database> database_;
    std::unique_ptr<dao::Recordset> zones_;
    std::unique_ptr<dao::Recordset> costs_;
    std::unique_ptr<dao::Recordset> setups_;
    std::unique_ptr<dao::Recordset> values_;
    QHash<std::pair<QString, int>, Levels> read_;
};

}  // namespace mImport
