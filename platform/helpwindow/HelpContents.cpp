#include "platform/helpwindow/HelpContents.h"

#include <QTreeWidgetItemIterator>
#include <algorithm>

#include "platform/helpwindow/HelpFile.h"
#include "platform/helpwindow/WrappedTitles.h"

namespace platform {

namespace {

constexpr int kPage = Qt::UserRole;

}  // namespace

HelpContents::HelpContents(const QList<HelpSection>& sections, QWidget* parent)
    : QTreeWidget(parent) {
    setColumnCount(1);
    setHeaderHidden(true);
    new WrappedTitles(*this);
    QList<QTreeWidgetItem*> open{invisibleRootItem()};
    for (const HelpSection& section : sections) {
        const qsizetype depth = std::clamp<qsizetype>(section.depth, 0, open.size() - 1);
        open.resize(depth + 1);
        auto* item = new QTreeWidgetItem(open.back(), {section.title});
        item->setData(0, kPage, section.page);
        open += item;
    }
    expandToDepth(1);
    const auto choose = [this](const QTreeWidgetItem* item) {
        emit PageChosen(item->data(0, kPage).toString());
    };
    connect(this, &QTreeWidget::itemClicked, this, choose);
    connect(this, &QTreeWidget::itemActivated, this, choose);
}

// Chapters begin with their first page: of two entries that lead to it, the one of the page itself
// is meant, which comes after that of its chapter.
void HelpContents::Mark(const QString& page) {
    QTreeWidgetItem* meant = nullptr;
    for (QTreeWidgetItemIterator item(this); *item != nullptr; ++item) {
        const bool isChapterOfIt = meant != nullptr && (*item)->parent() == meant;
        if ((*item)->data(0, kPage) == page && (meant == nullptr || isChapterOfIt)) {
            meant = *item;
        }
    }
    if (meant != nullptr && meant != currentItem()) {
        setCurrentItem(meant);
        scrollToItem(meant);
    }
}

}  // namespace platform
