// Files of other origin and the independent judge of files, where this source tree lies beside
// them.
#pragma once

#include <gtest/gtest.h>

#include <QFileInfo>
#include <QProcess>
#include <QString>
#include <QStringList>

#include "support/reasons.h"

namespace support {

inline QString SharedFolder() {
    return QStringLiteral(TARN_SOURCE) + QStringLiteral("/../shared");
}

inline QString MadeFile(const QString& name) {
    return SharedFolder() + QStringLiteral("/corpus/made/") + name;
}

inline bool HasCorpus() {
    return QFileInfo::exists(MadeFile(QStringLiteral("README.md")));
}

// The judge's complaints about a file; empty when it has none or is not there. What only warns, as
// some files of other origin do from the start, counts when `strict`.
inline QString Complaints(const QString& path, bool strict = true) {
    const QString judge = SharedFolder() + QStringLiteral("/tools/jetcheck.py");
    if (!QFileInfo::exists(judge)) {
        return {};
    }
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    QStringList arguments{judge, QStringLiteral("check"), path};
    if (strict) {
        arguments << QStringLiteral("--strict");
    }
    process.start(QStringLiteral("python3"), arguments);
    if (!process.waitForFinished(120000)) {
        return QStringLiteral("the judge did not finish");
    }
    return process.exitCode() == 0 ? QString() : QString::fromUtf8(process.readAll());
}

}  // namespace support
