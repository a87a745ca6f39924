// A box of fixed height with the last lines of some output, selectable. New lines neither move what is read
// nor touch a selection.
#pragma once

#include <QPlainTextEdit>
#include <QStringList>

class LogBox : public QPlainTextEdit
{
    Q_OBJECT

public:
    explicit LogBox(QWidget *parent = nullptr);

    // Lines that went at the front and came at the end are removed and appended as such. Of a line that is
    // very long, the beginning shows.
    void showLines(const QStringList &lines);

private:
    void dropFirst(qsizetype count);
    void append(const QStringList &lines);

    QStringList m_lines;
};
