// A small filled circle whose colour stands for a state. Screen readers hear its tooltip's text instead.
#pragma once

#include "ui/widgets/Graphic.h"
#include "ui/widgets/Tint.h"

class StatusDot : public Graphic
{
    Q_OBJECT

public:
    // `diameter` in device-independent pixels.
    explicit StatusDot(int diameter, Tint tint = Tint::grey, QWidget *parent = nullptr);

    void setTint(Tint tint);
    Tint tint() const { return m_tint; }

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    Tint m_tint;
};
