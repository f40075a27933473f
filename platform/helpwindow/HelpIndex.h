// The words of the index, narrowed down by what is typed above them.
#pragma once

#include <QList>
#include <QWidget>

class QLineEdit;
class QListView;
class QSortFilterProxyModel;

namespace platform {

struct HelpKeyword;

class HelpIndex : public QWidget {
    Q_OBJECT

public:
    HelpIndex(const QList<HelpKeyword>& index, QWidget* parent);

signals:
    void PageChosen(const QString& page);

private:
    void Narrow(const QString& text);
    void Choose();

    QLineEdit* text_;
    QListView* list_;
    QSortFilterProxyModel* shown_;
};

}  // namespace platform
