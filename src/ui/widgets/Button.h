// A push button whose words have room around them in every style, in a text style.
#pragma once

#include "ui/widgets/TextStyle.h"

#include <QPushButton>

class Button : public QPushButton
{
    Q_OBJECT

public:
    explicit Button(const QString &text, QWidget *parent = nullptr);

    void setTextStyle(TextStyle style);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }
};
