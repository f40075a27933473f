#include "platform/helpwindow/HelpSearch.h"

#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QVBoxLayout>

#include "platform/controls/Named.h"
#include "platform/helpwindow/HelpFile.h"

namespace platform {

namespace {

constexpr int kPage = Qt::UserRole;

}  // namespace

HelpSearch::HelpSearch(const HelpFile& file, QWidget* parent)
    : QWidget(parent),
      file_(file),
      words_(new QLineEdit(this)),
      count_(new QLabel(this)),
      found_(new QListWidget(this)) {
    auto* query = new QWidget(this);
    query->setObjectName(QStringLiteral("pnlQuery"));
    QLabel* label = platform::NamedLabel(query, "lblQuery", tr("&Words to find:"));
    platform::NameByLabel(*words_, "txtQuery", *label);
    words_->setClearButtonEnabled(true);
    auto* asking = new QVBoxLayout(query);
    asking->setContentsMargins(0, 0, 0, 0);
    asking->addWidget(label);
    asking->addWidget(words_);
    count_->setObjectName(QStringLiteral("lblFound"));
    count_->setWordWrap(true);
    platform::Name(*found_, "lstResults", tr("Topics found"));
    found_->setWordWrap(true);
    found_->setAlternatingRowColors(true);
    found_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(query);
    layout->addWidget(count_);
    layout->addWidget(found_, 1);
    connect(words_, &QLineEdit::textChanged, this, &HelpSearch::Search);
    connect(words_, &QLineEdit::returnPressed, this, &HelpSearch::Choose);
    connect(found_, &QListWidget::itemClicked, this, &HelpSearch::Choose);
    connect(found_, &QListWidget::itemActivated, this, &HelpSearch::Choose);
}

void HelpSearch::Search(const QString& words) {
    found_->clear();
    for (const HelpMatch& match : file_.Search(words)) {
        auto* item = new QListWidgetItem(match.title + u'\n' + match.excerpt, found_);
        item->setData(kPage, match.page);
    }
    found_->setCurrentRow(0);
    if (words.trimmed().isEmpty()) {
        count_->clear();
    } else if (found_->count() == 0) {
        count_->setText(tr("No topic holds all of these words."));
    } else {
        count_->setText(tr("Topics found: %1").arg(found_->count()));
    }
}

void HelpSearch::Choose() {
    if (const QListWidgetItem* item = found_->currentItem()) {
        emit PageChosen(item->data(kPage).toString());
    }
}

}  // namespace platform
