// Finds administrative units in the table of unit names, "fcdname.dat" beside the program: the
// search of the naming dialog without its window.
#pragma once

#include <QString>

#include <memory>
#include <vector>

#include "platform/dao/Database.h"
#include "platform/dao/Recordset.h"

namespace datafile {

class UnitFinder {
public:
    enum class Code { kNotFound = 21, kFound = 22, kInSeveralStates = 23 };
    using enum Code;

    struct Unit {
        QString name;
        QString id;
        QString state;
    };

    struct Answer {
        Code code = kNotFound;
        Unit unit;  // filled for kFound only
    };

    struct Listing {
        std::vector<Unit> units;
        int match = -1;  // the first one that is equal or greater; -1 when all are smaller
    };

    static constexpr int kListRows = 20;

    UnitFinder() = default;
    ~UnitFinder();
    UnitFinder(const UnitFinder&) = delete;
    UnitFinder& operator=(const UnitFinder&) = delete;

    // Opens the file and its two tables; what was opened before an error stays open until Close.
    void Open(const QString& path);
    // Closes whatever of the record sets and the database is open.
    void Close();

    [[nodiscard]] Answer FindUnit(const QString& id);
    [[nodiscard]] Answer FindUnitInState(const QString& id, const QString& state);
    // At most kListRows units in the order of their ids or names. The list starts three entries
    // before the first one that is equal or greater, so that its neighbors are seen too.
    [[nodiscard]] Listing ListByID(const QString& text);
    [[nodiscard]] Listing ListByName(const QString& text);

private:
    [[nodiscard]] Unit Current() const;
    [[nodiscard]] Listing List(const QString& index, const QString& text);
    // How many of the steps were possible.
    int StepBack(int steps);

    std::unique_ptr<dao::Database> database_;
    std::unique_ptr<dao::Recordset> properties_;
    std::unique_ptr<dao::Recordset> units_;
};

}  // namespace datafile
