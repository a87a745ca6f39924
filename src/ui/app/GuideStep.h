// One numbered step of the first-run guide: a card whose number becomes a check mark when the step is done.
#pragma once

#include "ui/widgets/Card.h"

class SymbolLabel;

class GuideStep : public Card
{
    Q_OBJECT

public:
    // `number` is from 1 to 3.
    GuideStep(int number, const QString &title, QWidget *parent = nullptr);

    void setDone(bool done);
    // What the step shows below its title; the owner adds to it.
    QVBoxLayout *content() const { return m_content; }

private:
    const int m_number;
    const QString m_title;
    SymbolLabel *const m_mark;
    QVBoxLayout *const m_content;
};
