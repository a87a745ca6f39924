#include "platform/text/Trimming.h"

#include <QString>

namespace {

bool isBlank(QChar c)
{
    // Most blanks by far are the first two, and a hostile text has a million.
    return c == u' ' || c == u'\t' || (c >= u'\u00A0' && c.category() == QChar::Separator_Space);
}

} // namespace

QString trimmedOfBlanks(QStringView text)
{
    const QChar *start = text.begin();
    const QChar *end = text.end();
    while (start != end && isBlank(*start))
        ++start;
    while (start != end && isBlank(end[-1]))
        --end;
    return QString(start, end - start);
}
