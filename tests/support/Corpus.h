// Files of other origin and the independent judge of files, where this source tree lies beside
// them; without it the engine's own check judges.
#pragma once

#include <gtest/gtest.h>

#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>
#include <QString>
#include <QStringList>

#include <algorithm>

#include "jet/check.h"
#include "support/paths.h"
#include "support/reasons.h"

namespace support {

inline QString SharedFolder() {
    return QString::fromStdU16String((SourceFolder() / "../shared").u16string());
}

inline QString MadeFile(const QString& name) {
    return SharedFolder() + QStringLiteral("/corpus/made/") + name;
}

inline bool HasCorpus() {
    return QFileInfo::exists(MadeFile(QStringLiteral("README.md")));
}

// What the engine's own check has to say about a file. What only warns counts when `strict`.
inline QString OwnComplaints(const QString& path, bool strict) {
    const jet::CheckReport report = jet::CheckFile(path.toStdU16String());
    const bool warns = std::ranges::any_of(report.findings, [](const jet::Finding& finding) {
        return finding.severity == jet::Severity::kWarning;
    });
    return report.IsSound() && !(strict && warns) ? QString()
                                                  : QString::fromStdString(report.Text());
}

// The judge's complaints about a file, or those of the engine's own check where there is no judge;
// empty when all is well. What only warns, as some files of other origin do from the start, counts
// when `strict`.
inline QString Complaints(const QString& path, bool strict = true) {
    const QString judge = SharedFolder() + QStringLiteral("/tools/jetcheck.py");
    const QString python = QStandardPaths::findExecutable(QStringLiteral("python3"));
    if (!QFileInfo::exists(judge) || python.isEmpty()) {
        return OwnComplaints(path, strict);
    }
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    QStringList arguments{judge, QStringLiteral("check"), path};
    if (strict) {
        arguments << QStringLiteral("--strict");
    }
    process.start(python, arguments);
    if (!process.waitForFinished(120000)) {
        return QStringLiteral("the judge did not finish");
    }
    return process.exitCode() == 0 ? QString() : QString::fromUtf8(process.readAll());
}

}  // namespace support
