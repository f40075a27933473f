// Finds the topics that hold the words that are typed, while they are typed.
#pragma once

#include <QWidget>

class QLabel;
class QLineEdit;
class QListWidget;

namespace platform {

class HelpFile;

class HelpSearch : public QWidget {
    Q_OBJECT

public:
    HelpSearch(const HelpFile& file, QWidget* parent);

signals:
    void PageChosen(const QString& page);

private:
    void Search(const QString& words);
    void Choose();

    const HelpFile& file_;
    QLineEdit* words_;
    QLabel* count_;
    QListWidget* found_;
};

}  // namespace platform
