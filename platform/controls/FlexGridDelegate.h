// How a grid's cells are drawn. Of a text that does not fit the beginning shows, with an ellipsis;
// a figure, which would be another one then, shows as ####. The tool tip shows both whole.
#pragma once

#include <QStyledItemDelegate>

namespace platform {

class FlexGridDelegate : public QStyledItemDelegate {
    Q_OBJECT

public:
    // What a cell needs beside its text; pixels.
    static constexpr int kMargins = 10;

    explicit FlexGridDelegate(QObject* parent);

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    // A column as wide as this shows the text whole.
    [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& option,
                                 const QModelIndex& index) const override;
    bool helpEvent(QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option,
                   const QModelIndex& index) override;
};

}  // namespace platform
