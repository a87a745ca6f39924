// A widget that is a small picture. Assistive programs meet it as one, by its accessible name; a mere
// ornament has none and is passed over.
#pragma once

#include <QWidget>

class Graphic : public QWidget
{
    Q_OBJECT

public:
    explicit Graphic(QWidget *parent = nullptr);
};
