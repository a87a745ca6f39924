// A small turning ring: something is under way and nobody knows for how long. It rests where motion is to be
// reduced.
#pragma once

#include "ui/widgets/Graphic.h"

#include <QTimer>

class Spinner : public Graphic
{
    Q_OBJECT

public:
    // `diameter` in device-independent pixels. `name` is for screen readers.
    explicit Spinner(int diameter, const QString &name, QWidget *parent = nullptr);

protected:
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    void turnOrRest();

    QTimer m_timer;
    int m_angle = 0; // degrees
};
