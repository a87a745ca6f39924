// A hairline between two parts of the window.
#pragma once

#include <QWidget>

class Divider : public QWidget
{
    Q_OBJECT

public:
    explicit Divider(Qt::Orientation orientation, QWidget *parent = nullptr);

protected:
    void paintEvent(QPaintEvent *event) override;
};
