#include "ui/widgets/LineEdit.h"

#include "ui/widgets/LineEditAccessible.h"

LineEdit::LineEdit(const QString &text, QWidget *parent) : QLineEdit(text, parent)
{
    LineEditAccessible::install();
}
