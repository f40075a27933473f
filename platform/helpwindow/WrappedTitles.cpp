#include "platform/helpwindow/WrappedTitles.h"

#include <QHeaderView>
#include <QTreeView>

namespace platform {

WrappedTitles::WrappedTitles(QTreeView& tree) : QStyledItemDelegate(&tree), tree_(tree) {
    tree.setUniformRowHeights(false);
    tree.setWordWrap(true);
    tree.setItemDelegate(this);
    connect(tree.header(), &QHeaderView::sectionResized, this,
            [this] { emit sizeHintChanged(QModelIndex()); });
}

QSize WrappedTitles::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const {
    QStyleOptionViewItem inOneLine = option;
    inOneLine.features &= ~QStyleOptionViewItem::WrapText;
    int depth = 1;  // the root's own arrow
    for (QModelIndex above = index.parent(); above.isValid(); above = above.parent()) {
        ++depth;
    }
    constexpr int kAnyHeight = 10000;
    QStyleOptionViewItem inTree = option;
    inTree.features |= QStyleOptionViewItem::WrapText;
    inTree.rect =
        QRect(0, 0, tree_.header()->sectionSize(0) - depth * tree_.indentation(), kAnyHeight);
    return {QStyledItemDelegate::sizeHint(inOneLine, index).width(),
            QStyledItemDelegate::sizeHint(inTree, index).height()};
}

}  // namespace platform
