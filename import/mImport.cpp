#include "import/mImport.h"

#include <QCoreApplication>

#include <array>
#include <memory>

#include "datafile/FieldNames.h"
#include "datafile/FieldReaders.h"
#include "datafile/PrepDatatables.h"
#include "datafile/ZoneKeys.h"
#include "import/BramFile.h"
#include "platform/dialogs/CommonDialog.h"
#include "platform/dialogs/MsgBox.h"
#include "platform/system/Host.h"
#include "shell/u91Trace.h"

using PrepDatatables::tblFMZList;
using PrepDatatables::tblNVCPerAcre;
using PrepDatatables::tblSuppressionPerAcreCost;

namespace mImport {

namespace {

const QString kUpAcres = QStringLiteral("UpAcres");

std::int16_t importResult = 0;
Imported imported;
QString zoneName;  // of the zone that is being copied
// Stays open after an import that found no zones, until the next one or the program's end.
std::unique_ptr<BramFile> bram;

void ReleaseAtEnd() {
    static const bool once = [] {
        qAddPostRoutine([] { bram.reset(); });
        return true;
    }();
    (void)once;
}

// The hourglass during the copy, and the ordinary pointer after it, however it ends.
class HourglassScope {
public:
    HourglassScope() { platform::SetMousePointer(platform::Pointer::kHourglass); }
    ~HourglassScope() { platform::SetMousePointer(platform::Pointer::kDefault); }
    HourglassScope(const HourglassScope&) = delete;
    HourglassScope& operator=(const HourglassScope&) = delete;
};

bool OpenBRAMTables(const QString& path) {
    u91Trace::Start(QStringLiteral("mImport.OpenBRAMTables ") + path);
    ReleaseAtEnd();
    bram.reset();
    try {
        bram = std::make_unique<BramFile>(path);
        return true;
    } catch (const platform::RuntimeError& error) {
        platform::MsgOptions options;
        options.informative = error.Description();
        platform::MsgBox(QStringLiteral("The file does not appear to be a valid BRAM file.") +
                             platform::kNewLine + QStringLiteral("It cannot be opened."),
                         options);
        u91Trace::Warning(QStringLiteral("BRAM_OpenTables: Unsuccessful"));
        return false;
    }
}

void BRAM_Close() {
    u91Trace::Procedure(QStringLiteral("BRAM_Close"));
    bram->Close();
    bram.reset();
}

void BeginCostRow(std::int32_t zoneKey, int sequence) {
    tblSuppressionPerAcreCost->AddNew();
    tblSuppressionPerAcreCost->SetField(FieldNames::kFMZKey, zoneKey);
    tblSuppressionPerAcreCost->SetField(FieldNames::kSequence, sequence);
}

void BRAM_CopyAAC(const QString& code, std::int32_t zoneKey) {
    int count = 0;
    const auto costs = bram->CostsOf(code);
    while (!costs->EndOfFile() && count < ZoneKeys::kCostClasses) {
        ++count;
        BeginCostRow(zoneKey, count);
        tblSuppressionPerAcreCost->SetField(FieldNames::kTopSize, costs->Field(kUpAcres));
        tblSuppressionPerAcreCost->SetField(FieldNames::kCost, costs->Field(FieldNames::kCost));
        tblSuppressionPerAcreCost->Update();
        costs->MoveNext();
    }
    costs->Close();
    for (int sequence = count + 1; sequence <= ZoneKeys::kCostClasses; ++sequence) {
        BeginCostRow(zoneKey, sequence);
        tblSuppressionPerAcreCost->Update();
    }
}

void AddValueRow(std::int32_t key, int resource,
                 const std::array<float, ZoneKeys::kFilLevels>& values) {
    static const std::array<QString, ZoneKeys::kFilLevels> kLevels{
        QStringLiteral("FIL1"), QStringLiteral("FIL2"), QStringLiteral("FIL3"),
        QStringLiteral("FIL4"), QStringLiteral("FIL5"), QStringLiteral("FIL6")};
    dao::Recordset& rows = *tblNVCPerAcre;
    rows.AddNew();
    rows.SetField(FieldNames::kFMZRLKey, key);
    rows.SetField(FieldNames::kResourceNumber, resource);
    for (std::size_t level = 0; level < kLevels.size(); ++level) {
        rows.SetField(kLevels[level], values[level]);
    }
    rows.Update();
}

void BRAM_BlankNVCRecords(std::int32_t zoneKey, std::int32_t location) {
    u91Trace::Procedure(QStringLiteral("BRAM_BlankNVCRecords"));
    const std::int32_t key = ZoneKeys::FMZRLKey(zoneKey, location);
    for (int resource = 1; resource <= ZoneKeys::kResources; ++resource) {
        AddValueRow(key, resource, {});
    }
}

// Both warnings name the table of values although they concern the set-ups: support knows the
// messages by these texts.
void BRAM_CopyNVC(const QString& code, std::int32_t location, std::int32_t zoneKey) {
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
    const BramFile::Values& values = bram->ValuesOf(*tableID);
    const std::int32_t key = ZoneKeys::FMZRLKey(zoneKey, location);
    for (int resource = 1; resource <= ZoneKeys::kResources; ++resource) {
        AddValueRow(key, resource, values[std::size_t(resource - 1)]);
    }
}

void CopyZone(dao::Recordset& zones) {
    const QString code = FieldReaders::TextField(zones, QStringLiteral("FMZCode"));
    const std::int32_t locations = FieldReaders::LongField(zones, FieldNames::kRLCount);
    zoneName =
        code + QStringLiteral("-") + FieldReaders::TextField(zones, QStringLiteral("Describe"));
    tblFMZList->AddNew();
    tblFMZList->SetField(FieldNames::kName, zoneName);
    tblFMZList->SetField(FieldNames::kRLCount, locations);
    tblFMZList->Update();
    tblFMZList->MoveLast();
    const std::int32_t zoneKey = tblFMZList->Long(FieldNames::kKey);
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

// Each zone that is begun counts.
void CopyZones(ImportProgress* progress, int& zone) {
    dao::Recordset& zones = bram->Zones();
    const int count = zones.RecordCount();
    for (zones.MoveFirst(); !zones.EndOfFile(); zones.MoveNext()) {
        ++zone;
        if (progress != nullptr) {
            progress->ZoneStarted(zone, count);
        }
        CopyZone(zones);
    }
}

// The list on the screen is filled anew only after an import that succeeded, and nothing in it can
// be deleted: a user who does not know would have every zone twice.
QString WhatStays(int zones) {
    if (zones < 2) {
        return {};
    }
    return platform::kNewLine +
           QStringLiteral(
               "The zones before this one (%1) have been copied; they show when the "
               "worksheet is opened again. Importing the file once more copies them a "
               "second time.")
               .arg(zones - 1);
}

std::int16_t CopyOpenFile(ImportProgress* progress) {
    if (bram->Zones().RecordCount() == 0) {
        platform::MsgBox(QStringLiteral("No FMZs found in the file"));
        return kNoZones;
    }
    const HourglassScope hourglass;
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

std::int16_t ImportResult() {
    return importResult;
}

const Imported& LastImport() {
    return imported;
}

std::int16_t BRAM_CopyFMZs(QWidget* frame, ImportProgress* progress) {
    u91Trace::Procedure(QStringLiteral("mImport.BRAM_CopyFMZs"));
    return CopyFMZsFrom(OpenFileDialog(frame), progress);
}

std::int16_t CopyFMZsFrom(const QString& path, ImportProgress* progress) {
    importResult = 0;  // what a failed import leaves
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
        request.title = QStringLiteral("Select BRAM file");
        request.initialFolder = GetBRAMPath();
        request.fileName = QStringLiteral("BRAM0000.mdb");
        request.filter = QStringLiteral("BRAM files (*.mdb)|*.mdb|All Files (*.*)|*.*");
        request.mustExist = false;
        return platform::CommonDialog::ShowOpen(request, frame);
    } catch (const platform::RuntimeError&) {
        return {};
    }
}

QString GetBRAMPath() {
    u91Trace::Procedure(QStringLiteral("GetBRAMPath"));
    const QString programFolder = platform::ProgramFolder();
    const QString costs = platform::FindFile(programFolder, QStringLiteral("costs"));
    try {
        // Only whether listing fails counts: a folder that is not there lists as empty.
        (void)platform::Dir(platform::JoinPath(costs, QString()));
        return costs;
    } catch (const platform::RuntimeError&) {
        return programFolder;
    }
}

}  // namespace mImport
