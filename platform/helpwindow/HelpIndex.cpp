#include "platform/helpwindow/HelpIndex.h"

#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QSortFilterProxyModel>
#include <QStandardItemModel>
#include <QVBoxLayout>

#include "platform/controls/Named.h"
#include "platform/helpwindow/HelpFile.h"

namespace platform {

namespace {

constexpr int kPage = Qt::UserRole;

}  // namespace

HelpIndex::HelpIndex(const QList<HelpKeyword>& index, QWidget* parent)
    : QWidget(parent),
      text_(new QLineEdit(this)),
      list_(new QListView(this)),
      shown_(new QSortFilterProxyModel(this)) {
    auto* words = new QStandardItemModel(this);
    for (const HelpKeyword& keyword : index) {
        auto* item = new QStandardItem(keyword.text);
        item->setData(keyword.page, kPage);
        item->setToolTip(keyword.text);
        words->appendRow(item);
    }
    shown_->setSourceModel(words);
    shown_->setFilterCaseSensitivity(Qt::CaseInsensitive);
    QLabel* label = platform::NamedLabel(this, "lblIndex", tr("L&ook for:"));
    platform::NameByLabel(*text_, "txtIndex", *label);
    text_->setClearButtonEnabled(true);
    platform::Name(*list_, "lstIndex", tr("Index"));
    list_->setModel(shown_);
    list_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    list_->setUniformItemSizes(true);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(label);
    layout->addWidget(text_);
    layout->addWidget(list_, 1);
    connect(text_, &QLineEdit::textChanged, this, &HelpIndex::Narrow);
    connect(text_, &QLineEdit::returnPressed, this, &HelpIndex::Choose);
    connect(list_, &QListView::clicked, this, &HelpIndex::Choose);
    connect(list_, &QListView::activated, this, &HelpIndex::Choose);
}

// A word that begins so is nearer to what is meant than one that holds it somewhere.
void HelpIndex::Narrow(const QString& text) {
    shown_->setFilterFixedString(text);
    const QModelIndex first = shown_->index(0, 0);
    const QModelIndexList begun =
        first.isValid() ? shown_->match(first, Qt::DisplayRole, text, 1, Qt::MatchStartsWith)
                        : QModelIndexList();
    list_->setCurrentIndex(begun.isEmpty() ? first : begun.first());
}

void HelpIndex::Choose() {
    const QModelIndex current = list_->currentIndex();
    if (current.isValid()) {
        emit PageChosen(current.data(kPage).toString());
    }
}

}  // namespace platform
