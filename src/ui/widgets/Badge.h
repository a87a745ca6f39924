// A small bold word on a capsule of its own colour.
#pragma once

#include "ui/widgets/TextLabel.h"

class Badge : public TextLabel
{
    Q_OBJECT

public:
    explicit Badge(QWidget *parent = nullptr);

    void setBadge(const QString &text, Tint tint);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    Tint m_tint = Tint::text;
};
