// Notices that a file, or the log beside it, may have been changed by another program.
#pragma once

#include <QFileSystemWatcher>
#include <QTimer>

namespace tarnreview {

class FileWatch : public QObject {
    Q_OBJECT

public:
    explicit FileWatch(QObject* parent);

    void Watch(const QString& path);

signals:
    // Once things have come to rest.
    void Touched();

private:
    void Restart();

    QFileSystemWatcher watcher_;
    QTimer rest_;
    QString path_;
};

}  // namespace tarnreview
