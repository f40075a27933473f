// Shows the titles of a tree whole: what is wider than the tree goes on in another line.
#pragma once

#include <QStyledItemDelegate>

class QTreeView;

namespace platform {

class WrappedTitles : public QStyledItemDelegate {
    Q_OBJECT

public:
    // Becomes the tree's delegate and is owned by it.
    explicit WrappedTitles(QTreeView& tree);

    // As wide as the title in one line, as high as the lines that the tree has it in.
    [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& option,
                                 const QModelIndex& index) const override;

private:
    QTreeView& tree_;
};

}  // namespace platform
