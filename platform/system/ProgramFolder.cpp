#include "platform/system/ProgramFolder.h"

#include <QCoreApplication>
#include <QDir>

namespace platform {
namespace {

QString programFolder;

}  // namespace

QString ProgramFolder() {
    if (!programFolder.isEmpty()) {
        return programFolder;
    }
    // Asked for with each line of the log.
    static const QString own = [] {
        const QString home = qEnvironmentVariable("TARNPREP_HOME");
        return QDir::toNativeSeparators(home.isEmpty() ? QCoreApplication::applicationDirPath()
                                                       : QDir(home).absolutePath());
    }();
    return own;
}

void SetProgramFolder(const QString& folder) {
    programFolder = folder;
}

}  // namespace platform
