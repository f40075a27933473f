// Imports the same zones again and again and tells each time that they are durable, so that a test
// can kill the process and look at what it left. Usage: import_for_ever DATA-FILE SOURCE
#include <QApplication>
#include <QFileInfo>

#include <cstdio>

#include "datafile/PrepDatafile.h"
#include "datafile/PrepDatatables.h"
#include "import/mImport.h"
#include "platform/system/ProgramFolder.h"

namespace {

void Say(const char* what) {
    std::puts(what);
    std::fflush(stdout);
}

[[noreturn]] void ImportForEver(const QString& source) {
    for (;;) {
        Say("begin");
        mImport::CopyFMZsFrom(source);
        PrepDatafile::MakeDurable();
        Say("told");
    }
}

}  // namespace

int main(int argc, char* argv[]) {
    const QApplication application(argc, argv);
    const QStringList arguments = QApplication::arguments();
    if (arguments.size() != 3) {
        std::fputs("usage: import_for_ever DATA-FILE SOURCE\n", stderr);
        return 2;
    }
    platform::SetProgramFolder(QFileInfo(arguments[1]).path() + QStringLiteral("/.."));
    if (!PrepDatafile::OpenDatatables(arguments[1]) || !PrepDatatables::OpenRecordsets()) {
        return 1;
    }
    ImportForEver(arguments[2]);
}
