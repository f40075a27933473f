#include "jet/check.h"
#include "platform/dao/Convert.h"
#include "platform/dao/Database.h"

namespace dao {

QStringList Database::Damage() {
    return Mapped([this] {
        QStringList sentences;
        for (const jet::Finding& finding : jet::CheckDatabase(*database_).findings) {
            if (finding.severity == jet::Severity::kError) {
                sentences << QString::fromStdString(finding.sentence);
            }
        }
        return sentences;
    });
}

}  // namespace dao
