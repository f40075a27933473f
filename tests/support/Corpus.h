// Files of other origin and the independent judge of files, where this source tree lies beside
// them.
#pragma once

#include <gtest/gtest.h>

#include <QFileInfo>
#include <QProcess>
#include <QString>

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

// The judge's complaints about a file; empty when it has none or is not there.
inline QString Complaints(const QString& path) {
    const QString judge = SharedFolder() + QStringLiteral("/tools/jetcheck.py");
    if (!QFileInfo::exists(judge)) {
        return {};
    }
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(QStringLiteral("python3"),
                  {judge, QStringLiteral("check"), QStringLiteral("--strict"), path});
    if (!process.waitForFinished(120000)) {
        return QStringLiteral("the judge did not finish");
    }
    return process.exitCode() == 0 ? QString() : QString::fromUtf8(process.readAll());
}

}  // namespace support
