#include "datafile/PrepDatatables.h"

#include <array>
#include <utility>

#include "base/u91Trace.h"
#include "datafile/FieldNames.h"
#include "datafile/PrepDatafile.h"
#include "platform/FirstError.h"

namespace PrepDatatables {

std::unique_ptr<dao::Database> dbDatafile;
Table tblProperties;
Table tblManagementGoals;
Table tblFMZList;
Table tblSuppressionPerAcreCost;
Table tblSRMasterList;
Table tblNVCResources;
Table tblNVCPerAcre;

namespace {

struct NamedTable {
    Table* table;
    const char* name;
};

// In the order of opening and closing.
const std::array<NamedTable, 6> kTables{{
    {&tblManagementGoals, "ManagementGoals"},
    {&tblFMZList, "FMZList"},
    {&tblSuppressionPerAcreCost, "SuppressionPerAcreCost"},
    {&tblSRMasterList, "SRMasterList"},
    {&tblNVCResources, "NVCResources"},
    {&tblNVCPerAcre, "NVCPerAcre"},
}};

int openings = 0;

}  // namespace

dao::Recordset* Table::operator->() const {
    if (!records_) {
        throw platform::RuntimeError(platform::kObjectNotSet,
                                     QStringLiteral("No data file is open."));
    }
    return records_.get();
}

dao::Recordset& Table::operator*() const {
    return *operator->();
}

void Table::Open(dao::Database& database, const char* name) {
    records_ = database.OpenTable(QString::fromLatin1(name));
}

void Table::Close() {
    if (const auto records = std::move(records_)) {
        records->Close();
    }
}

dao::Transaction Begin() {
    if (!dbDatafile) {
        throw platform::RuntimeError(platform::kObjectNotSet,
                                     QStringLiteral("No data file is open."));
    }
    return dbDatafile->Begin();
}

QStringList TableNames() {
    QStringList names;
    for (const NamedTable& named : kTables) {
        names << QString::fromLatin1(named.name);
    }
    return names;
}

bool OpenRecordsets() {
    u91Trace::Procedure(QStringLiteral("OpenRecordsets"));
    if (!dbDatafile) {
        throw platform::RuntimeError(platform::kObjectNotSet,
                                     QStringLiteral("No data file is open."));
    }
    try {
        for (const auto& [table, name] : kTables) {
            table->Open(*dbDatafile, name);
        }
        for (const auto& [table, name] : kTables) {
            (*table)->SetIndex(FieldNames::kPrimaryKey);
        }
    } catch (const platform::RuntimeError& error) {
        PrepDatafile::RefuseDatafile(error.Description());
        return false;
    }
    return true;
}

void CloseDatafile() {
    platform::FirstError steps;
    steps.Try([] { u91Trace::Procedure(QStringLiteral("PrepDatafile.CloseDatafile")); });
    steps.Try(CloseAll);
    steps.Rethrow();
}

void CloseAll() {
    ++openings;
    platform::FirstError close;
    close.Try([] { tblProperties.Close(); });
    for (const NamedTable& named : kTables) {
        close.Try([&named] { named.table->Close(); });
    }
    close.Try([] {
        if (const auto database = std::move(dbDatafile)) {
            database->Close();
        }
    });
    close.Rethrow();
}

int Openings() {
    return openings;
}

}  // namespace PrepDatatables
