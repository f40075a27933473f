#include "import/mImport.h"

#include <QCoreApplication>

#include <array>
#include <functional>
#include <memory>
#include <utility>

#include "base/u91Trace.h"
#include "datafile/FieldNames.h"
#include "datafile/FieldReaders.h"
#include "datafile/PrepDatatables.h"
#include "datafile/ZoneKeys.h"
#include "import/BramFile.h"
#include "platform/FirstError.h"
#include "platform/dialogs/CommonDialog.h"
#include "platform/dialogs/MsgBox.h"
#include "platform/system/CostsFolder.h"
#include "platform/system/Pointer.h"
#include "platform/system/ProgramFolder.h"

namespace mImport {

using PrepDatatables::tblFMZList;
using PrepDatatables::tblNVCPerAcre;
using PrepDatatables::tblSuppressionPerAcreCost;

namespace {

// What a person reads, in the language of the screen.
struct Texts {
    Q_DECLARE_TR_FUNCTIONS(mImport)
};

const QString kUpAcres = QStringLiteral("UpAcres");

Result importResult = kFailed;
Imported imported;
QString zoneName;  // of the zone that is being copied
// Stays open after an import that found no zones, until the next one or the program's end.
std::unique_ptr<BramFile> bram;

struct ReleasedAtEnd {
    ReleasedAtEnd() {
        qAddPostRoutine([] { bram.reset(); });
    }
};

bool OpenBRAMTables(const QString& path) {
    u91Trace::Start(QStringLiteral("mImport.OpenBRAMTables ") + path);
    static const ReleasedAtEnd once;
    bram.reset();
    try {
        bram = std::make_unique<BramFile>(path);
        return true;
    } catch (const platform::RuntimeError& error) {
        platform::MsgOptions options;
        options.informative = error.Description();
        platform::MsgBox(Texts::tr("The file does not appear to be a valid BRAM file.") +
                             platform::kNewLine + Texts::tr("It cannot be opened."),
                         options);
        u91Trace::Warning(QStringLiteral("BRAM_OpenTables: Unsuccessful"));
        return false;
    }
}

void BRAM_Close() {
    u91Trace::Procedure(QStringLiteral("BRAM_Close"));
    std::exchange(bram, nullptr)->Close();
}

// A row being added; where an error comes in between, nothing of it is left in the record set.
class NewRow {
public:
    explicit NewRow(dao::Recordset& rows) : rows_(rows) { rows_.AddNew(); }
    ~NewRow() {
        platform::FirstError known;
        known.Try([this] { rows_.CancelUpdate(); });
    }
    NewRow(const NewRow&) = delete;
    NewRow& operator=(const NewRow&) = delete;
    void Set(const QString& field, const QVariant& value) { rows_.SetField(field, value); }
    // Of a table with a counter.
    [[nodiscard]] std::int32_t Key() const { return rows_.Long(FieldNames::kKey); }
    void Store() { rows_.Update(); }

private:
    dao::Recordset& rows_;
};

void BRAM_CopyAAC(const QString& code, std::int32_t zoneKey) {
    u91Trace::Procedure(QStringLiteral("mImport.BRAM_CopyAAC"));
    int count = 0;
    const auto add = [zoneKey](int sequence, const dao::Recordset* cost) {
        NewRow row(*tblSuppressionPerAcreCost);
        row.Set(FieldNames::kFMZKey, zoneKey);
        row.Set(FieldNames::kSequence, sequence);
        if (cost != nullptr) {
            row.Set(FieldNames::kTopSize, cost->Field(kUpAcres));
            row.Set(FieldNames::kCost, cost->Field(FieldNames::kCost));
        }
        row.Store();
    };
    const auto costs = bram->CostsOf(code);
    while (!costs->EndOfFile() && count < ZoneKeys::kCostClasses) {
        add(++count, costs.get());
        costs->MoveNext();
    }
    for (int sequence = count + 1; sequence <= ZoneKeys::kCostClasses; ++sequence) {
        add(sequence, nullptr);
    }
}

// The values are read when the row has been begun, one row after the other: an error in one of them
// leaves the rows before it.
void AddValueRow(std::int32_t key, int resource,
                 const std::function<BramFile::Levels()>& valuesOf) {
    static const std::array<QString, ZoneKeys::kFilLevels> kLevels{
        QStringLiteral("FIL1"), QStringLiteral("FIL2"), QStringLiteral("FIL3"),
        QStringLiteral("FIL4"), QStringLiteral("FIL5"), QStringLiteral("FIL6")};
    NewRow row(*tblNVCPerAcre);
    row.Set(FieldNames::kFMZRLKey, key);
    row.Set(FieldNames::kResourceNumber, resource);
    const BramFile::Levels values = valuesOf();
    for (std::size_t level = 0; level < kLevels.size(); ++level) {
        row.Set(kLevels[level], values[level]);
    }
    row.Store();
}

void BRAM_BlankNVCRecords(std::int32_t zoneKey, std::int32_t location) {
    u91Trace::Procedure(QStringLiteral("BRAM_BlankNVCRecords"));
    const std::int32_t key = ZoneKeys::FMZRLKey(zoneKey, location);
    for (int resource = 1; resource <= ZoneKeys::kResources; ++resource) {
        AddValueRow(key, resource, [] { return BramFile::Levels{}; });
    }
}

// Both warnings name the table of values although they concern the set-ups: support knows the
// messages by these texts.
void BRAM_CopyNVC(const QString& code, std::int32_t location, std::int32_t zoneKey) {
    u91Trace::Procedure(QStringLiteral("mImport.BRAM_CopyNVC"));
    if (!bram->HasSetups()) {
        u91Trace::Warning(QStringLiteral("tblBRAM_NVCTable.RecordCount = 0"));
        BRAM_BlankNVCRecords(zoneKey, location);
        imported.blanks.push_back({.zone = zoneName, .location = location});
        return;
    }
    const std::optional<QVariant> tableID = bram->TableIDOf(code, location);
    if (!tableID) {
        u91Trace::Warning(QStringLiteral("tblBRAM_NVCTable.NoMatch for ") + code +
                          QStringLiteral(" ") + QString::number(location));
        BRAM_BlankNVCRecords(zoneKey, location);
        imported.blanks.push_back({.zone = zoneName, .location = location});
        return;
    }
    const std::int32_t key = ZoneKeys::FMZRLKey(zoneKey, location);
    for (int resource = 1; resource <= ZoneKeys::kResources; ++resource) {
        AddValueRow(key, resource,
                    [&tableID, resource] { return bram->ValuesOf(*tableID, resource); });
    }
}

// The engine's own message says neither which of the zones it is nor what does not fit.
void SetName(NewRow& row, const QString& code, const QString& name) {
    try {
        row.Set(FieldNames::kName, name);
    } catch (const platform::RuntimeError& error) {
        throw platform::RuntimeError(
            error.Number(),
            Texts::tr("The name of the zone %1 cannot be stored: \"%2\". ").arg(code, name) +
                error.Description());
    }
}

// Gives the key.
std::int32_t AddZone(const QString& code, const QString& name, std::int32_t locations) {
    NewRow row(*tblFMZList);
    SetName(row, code, name);
    row.Set(FieldNames::kRLCount, locations);
    const std::int32_t key = row.Key();
    row.Store();
    return key;
}

void CopyZone(dao::Recordset& zones) {
    const QString code = FieldReaders::TextField(zones, QStringLiteral("FMZCode"));
    const std::int32_t locations = FieldReaders::LongField(zones, FieldNames::kRLCount);
    zoneName =
        code + QStringLiteral("-") + FieldReaders::TextField(zones, QStringLiteral("Describe"));
    const std::int32_t zoneKey = AddZone(code, zoneName, locations);
    u91Trace::Procedure(QStringLiteral(" Copy FMZ ") + code + QStringLiteral(" with ") +
                        QString::number(locations) + QStringLiteral(" RLs to ") +
                        QString::number(zoneKey));
    BRAM_CopyAAC(code, zoneKey);
    for (std::int32_t location = 1; location <= locations; ++location) {
        BRAM_CopyNVC(code, location, zoneKey);
        ++imported.locations;
    }
    ++imported.zones;
}

// No half zone is found after a kill or a power cut. An error is another matter: it leaves the rows
// written so far, those of the unfinished zone included.
void CopyZoneAsOne(dao::Recordset& zones) {
    dao::Transaction whole = PrepDatatables::Begin();
    try {
        CopyZone(zones);
    } catch (...) {
        platform::FirstError known;
        known.Try([&whole] { whole.Commit(); });
        throw;
    }
    whole.Commit();
}

// Each zone that is begun counts.
void CopyZones(ImportProgress* progress, int& zone) {
    dao::Recordset& zones = bram->Zones();
    const int count = zones.RecordCount();
    for (zones.MoveFirst(); !zones.EndOfFile(); zones.MoveNext()) {
        ++zone;
        if (progress != nullptr) {
            progress->ZoneStarted(zone, count);
        }
        CopyZoneAsOne(zones);
    }
}

// The list on the screen is filled anew only after an import that succeeded, and nothing in it can
// be deleted: a user who does not know would have every zone twice.
QString WhatStays(int zones) {
    if (zones < 2) {
        return {};
    }
    return platform::kNewLine +
           Texts::tr(
               "The zones before this one (%1) have been copied; they show when the "
               "worksheet is opened again. Importing the file once more copies them a "
               "second time.")
               .arg(zones - 1);
}

Result CopyOpenFile(ImportProgress* progress) {
    if (bram->Zones().RecordCount() == 0) {
        platform::MsgBox(Texts::tr("No FMZs found in the file"));
        return kNoZones;
    }
    const platform::PointerScope hourglass(platform::Pointer::kHourglass);
    int zones = 0;
    try {
        CopyZones(progress, zones);
        BRAM_Close();
    } catch (const platform::RuntimeError& error) {
        bram.reset();
        throw platform::RuntimeError(error.Number(), error.Description() + WhatStays(zones));
    } catch (...) {
        bram.reset();
        throw;
    }
    return kCopied;
}

}  // namespace

Result ImportResult() {
    return importResult;
}

const Imported& LastImport() {
    return imported;
}

Result BRAM_CopyFMZs(QWidget* frame, ImportProgress* progress) {
    u91Trace::Procedure(QStringLiteral("mImport.BRAM_CopyFMZs"));
    return CopyFMZsFrom(OpenFileDialog(frame), progress);
}

Result CopyFMZsFrom(const QString& path, ImportProgress* progress) {
    importResult = kFailed;
    imported = {};
    if (path.isEmpty()) {
        importResult = kCancelled;
    } else if (!OpenBRAMTables(path)) {
        importResult = kNotABramFile;
    } else {
        importResult = CopyOpenFile(progress);
    }
    return importResult;
}

QString OpenFileDialog(QWidget* frame) {
    u91Trace::Procedure(QStringLiteral("mImport.OpenFileDialog"));
    try {
        platform::OpenFileRequest request;
        request.title = Texts::tr("Select BRAM file");
        request.initialFolder = GetBRAMPath();
        request.fileName = QStringLiteral("BRAM0000.mdb");
        request.filter = Texts::tr("BRAM files (*.mdb)|*.mdb|All Files (*.*)|*.*");
        request.mustExist = false;
        return platform::CommonDialog::ShowOpen(request, frame);
    } catch (const platform::RuntimeError&) {
        return {};
    }
}

QString GetBRAMPath() {
    u91Trace::Procedure(QStringLiteral("GetBRAMPath"));
    try {
        return platform::ListedCostsFolder();
    } catch (const platform::RuntimeError&) {
        return platform::ProgramFolder();
    }
}

}  // namespace mImport
