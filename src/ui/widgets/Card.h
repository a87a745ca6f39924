// A padded, rounded panel with a faint background.
#pragma once

#include "ui/widgets/Tint.h"

#include <QString>
#include <QVBoxLayout>
#include <QWidget>

class Card : public QWidget
{
    Q_OBJECT

public:
    // Holds a column, to which the owner adds.
    explicit Card(QWidget *parent = nullptr);

    // `tint` at `opacity`; the secondary colour at 8 % unless set.
    void setFill(Tint tint, double opacity);
    // Of the corners; 10 unless set.
    void setRadius(int radius);
    void addHeading(const QString &heading);
    QVBoxLayout *column() const { return m_column; }

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    Tint m_tint = Tint::secondary;
    double m_opacity = 0.08;
    int m_radius = 10;
    QVBoxLayout *const m_column;
};
