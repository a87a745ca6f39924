// Draws the rows of a list as rounded bars with an optional icon, and shows the whole of a cut text in a
// tooltip.
#pragma once

#include <QStyledItemDelegate>

class RowDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    // The item's symbol name (a string), if it has an icon.
    static constexpr int symbolRole = Qt::UserRole;

    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override;
    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override;
    bool helpEvent(QHelpEvent *event, QAbstractItemView *view, const QStyleOptionViewItem &option,
                   const QModelIndex &index) override;
};
