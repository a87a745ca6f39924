#include "ui/chat/LongWords.h"

bool hasLongWord(QStringView text)
{
    constexpr qsizetype longest = 2000;
    qsizetype length = 0;
    for (const QChar c : text) {
        length = c.isSpace() ? 0 : length + 1;
        if (length > longest)
            return true;
    }
    return false;
}
