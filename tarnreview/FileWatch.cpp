#include "tarnreview/FileWatch.h"

#include <QFileInfo>

namespace {

constexpr int kRest = 300;  // milliseconds: a program that saves writes more than once

}  // namespace

FileWatch::FileWatch(QObject* parent) : QObject(parent) {
    rest_.setSingleShot(true);
    rest_.setInterval(kRest);
    connect(&watcher_, &QFileSystemWatcher::fileChanged, this, &FileWatch::Restart);
    connect(&watcher_, &QFileSystemWatcher::directoryChanged, this, &FileWatch::Restart);
    connect(&rest_, &QTimer::timeout, this, &FileWatch::Touched);
}

void FileWatch::Watch(const QString& path) {
    const QStringList before = watcher_.files() + watcher_.directories();
    if (!before.isEmpty()) {
        watcher_.removePaths(before);
    }
    path_ = path;
    // The folder too: a file may be replaced by another one of its name.
    watcher_.addPaths({path, QFileInfo(path).absolutePath()});
}

void FileWatch::Restart() {
    if (!watcher_.files().contains(path_) && QFileInfo::exists(path_)) {
        watcher_.addPath(path_);
    }
    rest_.start();
}
