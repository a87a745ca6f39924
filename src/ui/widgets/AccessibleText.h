// A text as assistive programs read it piece by piece, also at its end, where Qt 6.4 would look for the word
// or the sentence without an end.
#pragma once

#include <QAccessible>

class AccessibleText : public QAccessibleTextInterface
{
public:
    QString textAtOffset(int offset, QAccessible::TextBoundaryType boundary, int *start,
                         int *end) const override;
};
