// Tells those who use a screen reader what happens elsewhere than where their focus is. Nothing of it can be
// seen.
#pragma once

#include <QWidget>

class Announcer : public QWidget
{
    Q_OBJECT

public:
    explicit Announcer(QWidget *parent);

    // Has the text said, but for while the parent is hidden or the user is in another program.
    void announce(const QString &text);
};
