// A line edit that assistive programs may ask for anything.
#pragma once

#include <QLineEdit>

class LineEdit : public QLineEdit
{
    Q_OBJECT

public:
    explicit LineEdit(const QString &text = {}, QWidget *parent = nullptr);
};
