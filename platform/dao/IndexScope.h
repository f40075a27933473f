// Another index of a record set for a while, and then the one that it had.
#pragma once

#include <QString>

#include "platform/FirstError.h"
#include "platform/dao/Recordset.h"

namespace dao {

class IndexScope {
public:
    IndexScope(Recordset& records, const QString& index)
        : records_(records), before_(records.Index()) {
        records_.SetIndex(index);
    }
    ~IndexScope() {
        platform::FirstError known;  // what was done under the index has met the same failure
        known.Try([this] { records_.SetIndex(before_); });
    }
    IndexScope(const IndexScope&) = delete;
    IndexScope& operator=(const IndexScope&) = delete;

private:
    Recordset& records_;
    QString before_;
};

}  // namespace dao
