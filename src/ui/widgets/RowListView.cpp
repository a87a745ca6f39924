#include "ui/widgets/RowListView.h"

#include "ui/widgets/RowDelegate.h"

#include <QMouseEvent>
#include <QScrollBar>

RowListView::RowListView(QWidget *parent) : QListView(parent)
{
    setItemDelegate(new RowDelegate(this));
    setFrameShape(QFrame::NoFrame);
    setUniformItemSizes(true);
    setMouseTracking(true);
    setEditTriggers(NoEditTriggers);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    viewport()->setAutoFillBackground(false);
    verticalScrollBar()->setAccessibleName(tr("Scroll"));
}

// A row's menu is no reason to leave the row that is selected.
void RowListView::mousePressEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton)
        QListView::mousePressEvent(event);
}

QItemSelectionModel::SelectionFlags RowListView::selectionCommand(const QModelIndex &index,
                                                                  const QEvent *) const
{
    return index.isValid() ? QItemSelectionModel::ClearAndSelect : QItemSelectionModel::NoUpdate;
}

// QListView tells screen readers that its row has the focus now, also where it has not (Qt 6.4).
void RowListView::currentChanged(const QModelIndex &current, const QModelIndex &previous)
{
    if (hasFocus())
        QListView::currentChanged(current, previous);
    else
        QAbstractItemView::currentChanged(current, previous);
}

void RowListView::selectionChanged(const QItemSelection &selected, const QItemSelection &deselected)
{
    QListView::selectionChanged(selected, deselected);
    // A screen reader selects a row without making it the current one.
    const QModelIndexList rows = selected.indexes();
    if (!rows.isEmpty() && rows.first() != currentIndex())
        setCurrentIndex(rows.first());
}
