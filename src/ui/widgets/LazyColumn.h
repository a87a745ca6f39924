// A column of rows of which only those in sight and near it are widgets, so that a list costs what is seen of
// it, however long it is.
#pragma once

#include "ui/widgets/HeightIndex.h"

#include <QList>
#include <QStringList>
#include <QWidget>

#include <functional>
#include <map>

class ScrollPage;

class LazyColumn : public QWidget
{
    Q_OBJECT

public:
    // Makes the widget of the row that stands for `key`.
    using Make = std::function<QWidget *(const QString &key)>;

    // To be placed in what `page` scrolls, which is to outlive it. `spacing` is left between two rows.
    LazyColumn(ScrollPage &page, int spacing, Make make);

    // What the rows stand for, from top to bottom, each of them once. A row that stays keeps its widget.
    void setKeys(const QStringList &keys);
    // The widgets there are now, from top to bottom: those of the first and the last row among them, and of
    // the row that has the focus with its neighbours, for the Tab key to go to.
    QList<QWidget *> rows() const;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

Q_SIGNALS:
    // Widgets have come; for the Tab key they are the window's last.
    void rowsMade();
    // The row that has the focus is about to go.
    void focusLeaves();

protected:
    bool event(QEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;
    void moveEvent(QMoveEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void showEvent(QShowEvent *event) override;

private:
    void arrange();
    void arrangeRows();
    void makeSeen(int top, int bottom);
    void ensure(int place);
    void measure(int place, QWidget *row);
    void guessHeights();
    int focusedPlace() const;
    void drop(QWidget *row);

    ScrollPage &m_page;
    const int m_spacing;
    const Make m_make;
    QStringList m_keys;
    std::map<int, QWidget *> m_rows; // by their places
    HeightIndex m_heights;           // each with the spacing below it
    int m_guess = 0;                 // the height of rows without a widget: that of the lowest; 0: not known
    QSize m_hint;                    // the last that its layout was told
    bool m_arranging = false;
    bool m_madeSome = false;
};
