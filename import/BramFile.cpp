#include "import/BramFile.h"

#include "datafile/FieldReaders.h"

namespace mImport {

BramFile::BramFile(const QString& path)
    : database_(dao::Database::Open(path, dao::OpenMode::kShared)),
      zones_(database_->OpenTable(QStringLiteral("FMZ"))),
      costs_(database_->OpenTable(QStringLiteral("AAC"))),
      setups_(database_->OpenTable(QStringLiteral("NVCSetup"))),
      values_(database_->OpenTable(QStringLiteral("NVCTable"))) {
    zones_->SetIndex(QStringLiteral("FMZCode"));
    costs_->SetIndex(QStringLiteral("FMZRow"));
    setups_->SetIndex(QStringLiteral("FMZRL"));
    values_->SetIndex(QStringLiteral("NVCTable"));
}

void BramFile::Close() {
    zones_->Close();
    costs_->Close();
    setups_->Close();
    values_->Close();
    database_->Close();
}

std::unique_ptr<dao::Recordset> BramFile::CostsOf(const QString& code) {
    return database_->OpenDynaset(QStringLiteral("SELECT * FROM AAC WHERE FMZCode = '") + code +
                                  QStringLiteral("' ORDER BY UpAcres"));
}

bool BramFile::HasSetups() const {
    return setups_->RecordCount() > 0;
}

std::optional<QVariant> BramFile::TableIDOf(const QString& code, std::int32_t location) {
    setups_->Seek("=", {code, location});
    if (setups_->NoMatch()) {
        return std::nullopt;
    }
    const QVariant tableID = setups_->Field(QStringLiteral("TableID"));
    return tableID.isValid() ? tableID : QVariant(QString());
}

const BramFile::Levels& BramFile::ValuesOf(const QVariant& tableID, int resource) {
    static const QString kValue = QStringLiteral("WPANRVCBF");
    const std::pair<QString, int> row(tableID.toString(), resource);
    if (const auto known = read_.constFind(row); known != read_.constEnd()) {
        return known.value();
    }
    Levels values{};
    for (int level = 1; level <= ZoneKeys::kFilLevels; ++level) {
        values_->Seek("=", {tableID, resource, level});
        values[std::size_t(level - 1)] = FieldReaders::SingleField(*values_, kValue);
    }
    return *read_.insert(row, values);
}

}  // namespace mImport
