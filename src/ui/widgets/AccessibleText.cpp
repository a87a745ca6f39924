#include "ui/widgets/AccessibleText.h"

QString AccessibleText::textAtOffset(int offset, QAccessible::TextBoundaryType boundary, int *start,
                                     int *end) const
{
    const int count = characterCount();
    if (offset >= 0 && offset < count)
        return QAccessibleTextInterface::textAtOffset(offset, boundary, start, end);
    *start = *end = count;
    return {};
}
