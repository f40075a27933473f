#include "datafile/PrepDatafile.h"

#include <QCoreApplication>

#include <algorithm>
#include <optional>
#include <utility>

#include "base/u13Folders.h"
#include "base/u91Trace.h"
#include "datafile/DatafileHost.h"
#include "datafile/FieldNames.h"
#include "datafile/PrepDatatables.h"
#include "datafile/PrepProperties.h"
#include "datafile/frmFCDName.h"
#include "datafile/u14libProperties.h"
#include "platform/EventTrap.h"
#include "platform/FirstError.h"
#include "platform/dialogs/CommonDialog.h"
#include "platform/dialogs/MsgBox.h"
#include "platform/system/Files.h"
#include "platform/system/NativePath.h"
#include "platform/system/ProgramFolder.h"

using datafile::DatafileHost;
using PrepDatatables::dbDatafile;
using PrepDatatables::tblProperties;

namespace PrepDatafile {

namespace {

// What a person reads, in the language of the screen.
struct Texts {
    Q_DECLARE_TR_FUNCTIONS(PrepDatafile)
};

const QString kDataFormatID = QStringLiteral("DataFormatID");
const QString kCurrentFormat = QStringLiteral("4.01.01");

DatafileHost* theHost = nullptr;
bool fileIsOpen = false;
QString currentFileName;
QString currentPath;
QString newUnitName;

// What has been reported about the open file.
struct Reported {
    std::uint64_t pending = 0;  // operations that are only in the log
    bool moved = false;
    bool putBack = false;
};
Reported reported;

enum class Format { kCurrent, kSameTables, kWithoutGoals, kUnknown };

Format FormatOf(const QString& formatID) {
    if (formatID == kCurrentFormat) {
        return Format::kCurrent;
    }
    if (formatID == QStringLiteral("4.00.00") || formatID == QStringLiteral("3.92.00")) {
        return Format::kSameTables;
    }
    return formatID == QStringLiteral("3.00.00") ? Format::kWithoutGoals : Format::kUnknown;
}

void StoreFormat() {
    tblProperties->Seek("=", {kDataFormatID});
    tblProperties->Edit();
    tblProperties->SetField(FieldNames::kValue, kCurrentFormat);
    tblProperties->Update();
}

// An older file is changed when it is opened, so what OpenRecordsets will need is looked for first:
// a file that is going to be refused must not be changed before.
void RequireTables(Format format) {
    for (const QString& table : PrepDatatables::TableNames()) {
        const bool mayBeMissing =
            format == Format::kWithoutGoals && table == QStringLiteral("ManagementGoals");
        if (mayBeMissing && !dbDatafile->HasTable(table)) {
            continue;
        }
        const auto records = dbDatafile->OpenTable(table);
        records->SetIndex(FieldNames::kPrimaryKey);
        records->Close();
    }
}

void WarnOfKeptLog() {
    const QString log = dbDatafile->KeptLog();
    if (log.isEmpty()) {
        return;
    }
    const QString text =
        Texts::tr(
            "Changes of an interrupted run lie beside the file, but they belong to "
            "another state of it and are not applied. They are kept in \"%1\".")
            .arg(log);
    u91Trace::Error(QStringLiteral("PrepDatafile.OpenDatatables: ") + text);
    platform::MsgBox(text);
}

void WarnOfRecovery() {
    if (const int operations = dbDatafile->RecoveredOperations(); operations > 0) {
        u91Trace::Warning(
            QStringLiteral("PrepDatafile.OpenDatatables: %1 changes of an interrupted run were "
                           "recovered")
                .arg(operations));
    }
}

// Damage that was found in a file, as the error that refuses it.
class DamagedFile : public platform::RuntimeError {
public:
    explicit DamagedFile(const QString& finding)
        : platform::RuntimeError(platform::kDamagedFile, finding) {}
};

// Writing into a damaged file would spread the damage, so the whole of it is looked at before.
void RequireSound() {
    const QStringList damage = dbDatafile->Damage();
    if (!damage.isEmpty()) {
        throw DamagedFile(damage.first());
    }
}

// The file may be in order where the machine is not: support wants to know of that.
void LogIfNotTheFilesFault(const platform::RuntimeError& error) {
    constexpr std::array kReasons{
        static_cast<int>(platform::kOutOfMemory), static_cast<int>(platform::kDeviceError),
        static_cast<int>(platform::kPermissionDenied), static_cast<int>(platform::kFileSystemFull),
        static_cast<int>(platform::kReadOnlyFile)};
    if (std::find(kReasons.begin(), kReasons.end(), error.Number()) == kReasons.end()) {
        return;
    }
    u91Trace::Error(QStringLiteral("PrepDatafile.OpenDatatables: Error %1, ").arg(error.Number()) +
                    error.Description());
}

// Accepts, relabels or converts the open file; false when its format is unknown.
bool AcceptFormat() {
    const Format format = FormatOf(u14libProperties::Read(*tblProperties, kDataFormatID));
    if (format != Format::kUnknown) {
        RequireSound();
    }
    switch (format) {
        case Format::kUnknown:
            return false;
        case Format::kCurrent:
            return true;
        case Format::kSameTables:
            RequireTables(format);
            StoreFormat();
            return true;
        case Format::kWithoutGoals:
            RequireTables(format);
            Convert3to4();
            return true;
    }
    return false;
}

bool TemplateExists() {
    try {
        return !platform::Dir(
                    platform::JoinPath(platform::ProgramFolder(), QStringLiteral("FCD.new")))
                    .isEmpty();
    } catch (const platform::RuntimeError&) {
        return false;
    }
}

// What prevented it, or nothing.
std::optional<platform::RuntimeError> CopyTemplate(const QString& path) {
    try {
        dao::Database::RequireFree(path);
        platform::FileCopy(platform::FindFile(platform::ProgramFolder(), QStringLiteral("FCD.new")),
                           path);
        dao::Database::DiscardLog(path);
        return std::nullopt;
    } catch (const platform::RuntimeError& error) {
        return error;
    }
}

// The worksheet that shows belongs to the file that is about to be closed. What goes wrong with
// that one is reported, and the file that the user has chosen comes next all the same.
void CloseFormerFile() {
    if (!fileIsOpen) {
        return;
    }
    if (theHost != nullptr) {
        platform::EventTrap::Run("a3PrepForms.UnloadCurrentWorksheet",
                                 [] { theHost->ReleaseWorksheet(); });
    }
    platform::EventTrap::Run("PrepDatafile.CloseDatafile", CloseDatafile);
}

// It is tried after everything that the user does, and reported again only when more waits than
// before.
void BringIn() {
    try {
        dbDatafile->MakeDurable();
        reported.pending = 0;
    } catch (const platform::RuntimeError& error) {
        const std::uint64_t pending = dbDatafile->PendingOperations();
        if (pending == reported.pending) {
            return;
        }
        reported.pending = pending;
        const bool isInLog =
            error.Number() == platform::kFileSystemFull || error.Number() == platform::kDeviceError;
        if (!isInLog) {
            throw;
        }
        throw platform::RuntimeError(
            error.Number(),
            error.Description() + platform::kNewLine +
                Texts::tr("What was stored is kept in a log beside the file; the program goes "
                          "on trying to bring it in."));
    }
}

QString PutBackNews() {
    return Texts::tr(
               "The file \"%1\" had been deleted by another program while it was "
               "open. It has been written anew, with all that is in it.")
        .arg(currentFileName);
}

QString MovedNews() {
    return Texts::tr(
               "The file \"%1\" has been moved or renamed by another program while it "
               "was open. All that you enter is stored in it where it is now. Leave "
               "the program and open it there.")
        .arg(currentFileName);
}

void Show(const QString& news) {
    u91Trace::Warning(QStringLiteral("PrepDatafile.ShowNews: ") + news);
    platform::MsgOptions options;
    options.icon = platform::MsgIcon::kExclamation;
    platform::MsgBox(news, options);
}

// In the costs folder. The user has agreed to replace a file of that name, whatever the case of its
// letters.
QString PathFor(const QString& fileName) {
    const QString path = platform::JoinPath(u13Folders::CostsPath(), fileName);
    const QStringList found = platform::Dir(path);
    return found.isEmpty() || found.contains(fileName)
               ? path
               : platform::JoinPath(u13Folders::CostsPath(), found.first());
}

QWidget* Frame() {
    return theHost != nullptr ? theHost->Frame() : nullptr;
}

}  // namespace

void SetHost(DatafileHost* host) {
    theHost = host;
}

bool IsDatafileOpen() {
    return fileIsOpen;
}

const QString& CurrentFileName() {
    return currentFileName;
}

const QString& CurrentPath() {
    return currentPath;
}

Result QueryNewDatafile() {
    u91Trace::Procedure(QStringLiteral("PrepDatafile.QueryNewDatafile"));
    const QString path = NewFileDialog();
    if (path.isEmpty()) {
        return kCancelled;
    }
    CloseFormerFile();
    if (!TemplateExists()) {
        platform::MsgBox(Texts::tr("Unable to create new TARN Prep file.") + platform::kNewLine +
                         Texts::tr("Source file FCD.new is missing."));
        return kFailed;
    }
    if (const auto failure = CopyTemplate(path)) {
        platform::MsgOptions options;
        options.informative = failure->Description();
        platform::MsgBox(Texts::tr("Unable to create new TARN Prep file."), options);
        return kFailed;
    }
    if (!OpenDatatables(path)) {
        return kFailed;
    }
    try {
        PrepProperties::SetProperty(QStringLiteral("UnitName"), newUnitName);
    } catch (...) {
        GiveUp();
        throw;
    }
    return kOpened;
}

QString NewFileDialog() {
    u91Trace::Procedure(QStringLiteral("PrepDatafile.NewFileDialog"));
    const frmFCDName::Outcome outcome = frmFCDName::ShowModal(Frame());
    if (outcome.fileStatus != frmFCDName::kChosen) {
        return {};
    }
    currentFileName = outcome.fileName;
    newUnitName = outcome.unitDescription;
    return PathFor(currentFileName);
}

Result QueryOpenDatafile() {
    u91Trace::Procedure(QStringLiteral("PrepDatafile.QueryOpenDatafile"));
    platform::OpenFileRequest request;
    request.title = Texts::tr("Open TARN Prep file");
    request.initialFolder = u13Folders::CostsPath();
    request.filter = Texts::tr("TARN Prep files (*.fcd)|*.fcd|All Files (*.*)|*.*");
    request.mustExist = true;
    const QString path = platform::CommonDialog::ShowOpen(request, Frame());
    if (path.isEmpty()) {
        return kCancelled;
    }
    CloseFormerFile();
    if (OpenDatatables(path)) {
        return kOpened;
    }
    if (theHost != nullptr) {
        theHost->FCD_Restart();
    }
    return kFailed;
}

bool OpenDatatables(const QString& fileName) {
    u91Trace::Procedure(QStringLiteral("PrepDatafile.OpenDatatables ") + fileName);
    try {
        dbDatafile = dao::Database::Open(fileName, dao::OpenMode::kExclusive);
        WarnOfRecovery();
        tblProperties.Open(*dbDatafile, "Properties");
        tblProperties->SetIndex(FieldNames::kPrimaryKey);
        if (!AcceptFormat()) {
            PrepDatatables::CloseAll();
            platform::MsgBox(
                Texts::tr("This file uses an incompatible format and cannot be "
                          "opened using TARN Prep 03."));
            return false;
        }
    } catch (const DamagedFile& damage) {
        RefuseDatafile(Texts::tr("The file is damaged: %1").arg(damage.Description()) +
                       platform::kNewLine +
                       Texts::tr("The command  jetdoctor FILE --repair NEWFILE  makes a "
                                 "sound copy of all that can be read."));
        return false;
    } catch (const platform::RuntimeError& error) {
        RefuseDatafile(error.Description());
        LogIfNotTheFilesFault(error);
        return false;
    } catch (...) {
        GiveUp();
        throw;
    }
    currentPath = fileName;
    currentFileName = platform::ShownPath(FileTitleFromPath(fileName));
    reported = {};
    fileIsOpen = true;
    WarnOfKeptLog();
    return true;
}

void Convert3to4() {
    u91Trace::Procedure(QStringLiteral("PrepDatafile.Convert3to4"));
    const QString goals = QStringLiteral("ManagementGoals");
    dao::Transaction whole = PrepDatatables::Begin();
    // A conversion that an older version of this program left half-way has added the table already.
    if (!dbDatafile->HasTable(goals)) {
        dao::TableDefinition table;
        table.name = goals;
        table.fields = {{FieldNames::kKey, dao::FieldType::kLong, 0, true},
                        {FieldNames::kManagementArea, dao::FieldType::kText, 100},
                        {FieldNames::kExplanation, dao::FieldType::kMemo}};
        table.indexes = {{FieldNames::kPrimaryKey, {FieldNames::kKey}, true, true}};
        dbDatafile->AppendTable(table);
    }
    StoreFormat();
    whole.Commit();
}

void CloseDatafile() {
    fileIsOpen = false;
    PrepDatatables::CloseDatafile();
}

void GiveUp() {
    fileIsOpen = false;
    platform::FirstError known;  // of a file that has failed already, it is no news
    known.Try(PrepDatatables::CloseAll);
}

QString FileTitleFromPath(const QString& path) {
    u91Trace::Procedure(QStringLiteral("PrepDatafile.FileTitleFromPath"));
    // Both separators count: files and their paths travel between systems.
    const qsizetype last =
        std::max(path.lastIndexOf(QLatin1Char('\\')), path.lastIndexOf(QLatin1Char('/')));
    return path.mid(last + 1);
}

void RefuseDatafile(const QString& reason) {
    GiveUp();
    platform::MsgOptions options;
    options.informative = reason;
    platform::MsgBox(
        Texts::tr("The file does not appear to be a TARN Prep file.  It cannot be opened."),
        options);
    u91Trace::Warning(QStringLiteral("PrepDatafile.OpenDatafile: Unsuccessful - unable to open"));
}

void MakeDurable() {
    // A window or a timer may ask for it while an action waits for the user.
    if (fileIsOpen && dbDatafile && !dbDatafile->InTransaction()) {
        BringIn();
    }
}

bool HasNews() {
    return fileIsOpen && dbDatafile &&
           ((dbDatafile->WasPutBack() && !reported.putBack) ||
            (dbDatafile->WasMoved() && !reported.moved));
}

void ShowNews() {
    if (!HasNews()) {
        return;
    }
    // Marked as shown before the box waits: what is done meanwhile asks for the news again.
    if (dbDatafile->WasPutBack() && !std::exchange(reported.putBack, true)) {
        Show(PutBackNews());
    } else {
        reported.moved = true;
        Show(MovedNews());
    }
}

void SecureLog() noexcept {
    if (fileIsOpen && dbDatafile) {
        dbDatafile->SecureLog();
    }
}

}  // namespace PrepDatafile
