// A folder of the test's own, and the number of the error that something ends with.
#pragma once

#include <gtest/gtest.h>

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QString>
#include <QTemporaryDir>

#include "platform/RuntimeError.h"

class SystemTest : public testing::Test {
protected:
    [[nodiscard]] QString Path(const QString& name) const {
        return QDir::toNativeSeparators(folder_.filePath(name));
    }
    void Put(const QString& name, const QByteArray& bytes) const {
        QFile file(Path(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }
    [[nodiscard]] QByteArray Bytes(const QString& name) const {
        QFile file(Path(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(none)");
    }
    template <typename Body>
    static int ErrorOf(Body body) {
        try {
            body();
        } catch (const platform::RuntimeError& error) {
            return error.Number();
        }
        return 0;
    }
    QTemporaryDir folder_{QDir::tempPath() + "/tarn system XXXXXX"};
};
