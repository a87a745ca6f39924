// A label of one line that shows as much of its text as fits, and the whole of it in a tooltip when it does
// not.
#pragma once

#include "ui/widgets/TextLabel.h"

class ElidedLabel : public TextLabel
{
    Q_OBJECT

public:
    using TextLabel::TextLabel;

    // Where the text is cut; at its end unless set.
    void setElideMode(Qt::TextElideMode mode);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    bool event(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    QString line() const;
    QString shown() const;

    Qt::TextElideMode m_elideMode = Qt::ElideRight;
};
