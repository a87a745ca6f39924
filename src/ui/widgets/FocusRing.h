// Shows that the keyboard's focus is on a widget whose style does not: a line in the accent around it.
#pragma once

#include <QWidget>

class FocusRing : public QWidget
{
    Q_OBJECT

public:
    // Around `target`, over what stands beside it; goes with it.
    explicit FocusRing(QWidget *target);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    void place();

    QWidget *const m_target;
};
