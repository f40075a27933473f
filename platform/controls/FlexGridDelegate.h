// How a grid's cells are drawn: texts that do not fit are cut and shown whole in a tool tip.
#pragma once

#include <QStyledItemDelegate>

class FlexGridDelegate : public QStyledItemDelegate {
    Q_OBJECT

public:
    explicit FlexGridDelegate(QObject* parent);

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    bool helpEvent(QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option,
                   const QModelIndex& index) override;

protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override;
};
