#include "tarnreview/FileWatch.h"

#include <QFileInfo>

#include "platform/EventTrap.h"

namespace tarnreview {

using platform::EventTrap::Trapped;

namespace {

constexpr int kRest = 300;  // milliseconds: a program that saves writes more than once

}  // namespace

FileWatch::FileWatch(QObject* parent) : QObject(parent) {
    rest_.setSingleShot(true);
    rest_.setInterval(kRest);
    const auto restart = [this](auto&&...) { Restart(); };
    connect(&watcher_, &QFileSystemWatcher::fileChanged, this,
            Trapped("FileWatch.Restart", restart));
    connect(&watcher_, &QFileSystemWatcher::directoryChanged, this,
            Trapped("FileWatch.Restart", restart));
    connect(&rest_, &QTimer::timeout, this,
            Trapped("FileWatch.Touched", [this](auto&&...) { emit Touched(); }));
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

}  // namespace tarnreview
