// Makes PDFs for a program that knows no Qt.
#include "reportpdf/library.h"

#include <QDir>
#include <QFontDatabase>
#include <QFontMetrics>
#include <QGuiApplication>
#include <array>
#include <exception>
#include <stdexcept>

#include "reportpdf/report_pages.h"

namespace {

// Qt ends the program when it finds no way to begin. Where its plug-ins are is known only while
// there is an application.
void RequirePlatform(int& count, char** words) {
    const QCoreApplication application(count, words);
    for (const QString& folder : QCoreApplication::libraryPaths()) {
        if (!QDir(folder + QStringLiteral("/platforms"))
                 .entryList({QStringLiteral("*qoffscreen*")}, QDir::Files)
                 .isEmpty()) {
            return;
        }
    }
    throw std::runtime_error("Qt's plug-in for work without a screen is not installed.");
}

// The portable program folder has a font for systems without any.
void BringFontsWhereThereAreNone() {
    if (!QFontMetrics(QGuiApplication::font()).inFont(u'A')) {
        const QDir folder(QCoreApplication::applicationDirPath() + QStringLiteral("/fonts"));
        for (const QString& file : folder.entryList({QStringLiteral("*.ttf")}, QDir::Files)) {
            QFontDatabase::addApplicationFont(folder.filePath(file));
        }
    }
}

}  // namespace

extern "C" bool TarnMakePdf(const review::Document& document, bool isLetter, std::string& result) {
    try {
        // What Qt says of the user's session is none of the program's results.
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
        // No screen is needed, whichever the user's session has.
        std::array<char, 8> name{"fcdtool"};
        std::array<char, 10> option{"-platform"};
        std::array<char, 10> platform{"offscreen"};
        std::array<char*, 4> words{name.data(), option.data(), platform.data(), nullptr};
        int count = 3;
        RequirePlatform(count, words.data());
        const QGuiApplication application(count, words.data());
        BringFontsWhereThereAreNone();
        const QByteArray pdf = reportpdf::PdfOf(
            document, isLetter ? reportpdf::Paper::kLetter : reportpdf::Paper::kA4);
        result.assign(pdf.constData(), static_cast<std::size_t>(pdf.size()));
        return true;
    } catch (const std::exception& error) {
        result = error.what();
    }
    return false;
}
