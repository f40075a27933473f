// The tree of contents beside the topic.
#pragma once

#include <QList>
#include <QTreeWidget>

namespace platform {

struct HelpSection;

class HelpContents : public QTreeWidget {
    Q_OBJECT

public:
    HelpContents(const QList<HelpSection>& sections, QWidget* parent);

    // Makes this page's entry the current one, if it has one.
    void Mark(const QString& page);
    // In pixels, with nothing cut.
    [[nodiscard]] int WidthOfTitles() const { return sizeHintForColumn(0); }

signals:
    void PageChosen(const QString& page);
};

}  // namespace platform
