// A button without a frame: an icon, by itself or beside words, or a few words in a text style.
#pragma once

#include "ui/widgets/TextStyle.h"

#include <QToolButton>

class BorderlessButton : public QToolButton
{
    Q_OBJECT

public:
    // An icon; `name` is its tooltip and what screen readers say.
    BorderlessButton(const QString &symbol, const QString &name, QWidget *parent = nullptr);
    BorderlessButton(const QString &text, TextStyle style, QWidget *parent = nullptr);

    // Words beside the icon, which are the button's name from then on; its tooltip stays.
    void setWords(const QString &words);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    void applyStyle();

    TextStyle m_style = TextStyle::body;
};
