// The button a screen wants pressed, filled with the accent, or one to think about, filled with another tint.
#pragma once

#include "ui/widgets/Button.h"
#include "ui/widgets/Tint.h"

class ProminentButton : public Button
{
    Q_OBJECT

public:
    explicit ProminentButton(const QString &text, QWidget *parent = nullptr);
    ProminentButton(const QString &text, Tint fill, QWidget *parent = nullptr);

protected:
    // Not by the style: several lighten a coloured button so far that its text can hardly be read.
    void paintEvent(QPaintEvent *event) override;

private:
    const Tint m_fill;
};
