#include "core/chat/MarkdownLine.h"

#include <algorithm>

namespace {

bool isBlank(QChar c)
{
    return c == u' ' || c == u'\t';
}

qsizetype leadingSpaces(QStringView line)
{
    return std::find_if(line.begin(), line.end(), [](QChar c) { return c != u' '; }) - line.begin();
}

} // namespace

QStringView withoutBlanksInFront(QStringView text)
{
    return text.sliced(std::find_if_not(text.begin(), text.end(), isBlank) - text.begin());
}

QStringView withoutBlanks(QStringView text)
{
    text = withoutBlanksInFront(text);
    while (!text.isEmpty() && isBlank(text.back()))
        text.chop(1);
    return text;
}

MarkdownLine MarkdownLine::read(QStringView line)
{
    const QStringView trimmed = withoutBlanks(line);
    if (trimmed.isEmpty())
        return {Style::blank, 0, {}};
    if (trimmed.startsWith(u"### "))
        return {Style::headline, 0, trimmed.sliced(4)};
    if (trimmed.startsWith(u"## "))
        return {Style::title3, 0, trimmed.sliced(3)};
    if (trimmed.startsWith(u"# "))
        return {Style::title2, 0, trimmed.sliced(2)};
    const qsizetype inset = 4 * leadingSpaces(line);
    if (trimmed.startsWith(u"- ") || trimmed.startsWith(u"* ") || trimmed.startsWith(u"+ "))
        return {Style::bullet, inset + 6, trimmed.sliced(2)};
    return {Style::body, inset, trimmed};
}
