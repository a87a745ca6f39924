// A list in the style of a sidebar. One of its rows stays selected, wherever the user clicks.
#pragma once

#include <QListView>

class RowListView : public QListView
{
    Q_OBJECT

public:
    explicit RowListView(QWidget *parent = nullptr);

protected:
    void mousePressEvent(QMouseEvent *event) override;
    QItemSelectionModel::SelectionFlags selectionCommand(const QModelIndex &index,
                                                         const QEvent *event) const override;
    void currentChanged(const QModelIndex &current, const QModelIndex &previous) override;
    void selectionChanged(const QItemSelection &selected, const QItemSelection &deselected) override;
};
