#include "platform/system/LateLibrary.h"

#include <QCoreApplication>
#include <QPluginLoader>

#include "platform/system/Files.h"

namespace platform {

// Loaders of one file share what it made.
QObject* LateInstance(const QString& name) {
    return QPluginLoader(JoinPath(QCoreApplication::applicationDirPath(), name)).instance();
}

}  // namespace platform
