#include "datafile/PrepDatatables.h"

#include <array>
#include <exception>
#include <utility>

#include "datafile/PrepDatafile.h"
#include "shell/u91Trace.h"

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

// Runs every step even when one fails; the first error is thrown at the end.
class EveryStep {
public:
    template <typename Step>
    void Run(Step step) {
        try {
            step();
        } catch (...) {
            if (!first_) {
                first_ = std::current_exception();
            }
        }
    }
    void Rethrow() const {
        if (first_) {
            std::rethrow_exception(first_);
        }
    }

private:
    std::exception_ptr first_;
};

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
            (*table)->SetIndex(QStringLiteral("PrimaryKey"));
        }
        return true;
    } catch (const platform::RuntimeError&) {
        PrepDatafile::RefuseDatafile();
        return false;
    }
}

void CloseDatafile() {
    EveryStep steps;
    steps.Run([] { u91Trace::Procedure(QStringLiteral("PrepDatafile.CloseDatafile")); });
    steps.Run(CloseAll);
    steps.Rethrow();
}

void CloseAll() {
    EveryStep close;
    close.Run([] { tblProperties.Close(); });
    for (const NamedTable& named : kTables) {
        close.Run([&named] { named.table->Close(); });
    }
    close.Run([] {
        if (const auto database = std::move(dbDatafile)) {
            database->Close();
        }
    });
    close.Rethrow();
}

}  // namespace PrepDatatables
