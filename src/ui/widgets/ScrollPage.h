// A page that scrolls vertically and is as wide as its place.
#pragma once

#include <QScrollArea>
#include <QVBoxLayout>

class ScrollPage : public QScrollArea
{
    Q_OBJECT

public:
    explicit ScrollPage(QWidget *parent = nullptr);

    // What scrolls; the owner adds to it.
    QVBoxLayout *column() const { return m_column; }

private:
    QVBoxLayout *m_column;
};
