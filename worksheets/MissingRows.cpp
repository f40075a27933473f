#include "worksheets/MissingRows.h"

#include "datafile/PrepDatatables.h"
#include "platform/EventTrap.h"
#include "platform/RuntimeError.h"

namespace MissingRows {

QStringList StoreOthers(int rows, const std::function<bool(int row)>& store) {
    auto transaction = PrepDatatables::Begin();
    QStringList missing;
    for (int row = 1; row <= rows; ++row) {
        if (!store(row)) {
            missing += QString::number(row);
        }
    }
    transaction.Commit();
    return missing;
}

void Shown(const char* handler, const std::function<void()>& save) {
    try {
        save();
    } catch (const platform::RuntimeError& error) {
        if (error.Number() != platform::kNoCurrentRecord) {
            throw;
        }
        platform::EventTrap::ReportCaught(handler, error);
    }
}

}  // namespace MissingRows
