// A slider over the numbers from 0 to a given one, without steps that could be seen.
#pragma once

#include <QSlider>

class ContinuousSlider : public QSlider
{
    Q_OBJECT

public:
    explicit ContinuousSlider(double most, QWidget *parent = nullptr);

    // Moves the handle as close to `number` as it goes, and emits nothing.
    void showNumber(double number);
    // Moves the handle as if the user did.
    void moveTo(double number);

    // What it shows, which may lie beyond what the handle reaches.
    double number() const { return m_number; }
    QString numberText() const { return QString::number(m_number, 'f', 2); }
    double most() const { return m_most; }

Q_SIGNALS:
    // The user has moved the handle to `number`.
    void moved(double number);

private:
    int positionOf(double number) const;

    const double m_most;
    double m_number = 0;
};
