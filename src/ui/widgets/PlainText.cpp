#include "ui/widgets/PlainText.h"

using namespace Qt::StringLiterals;

QString withoutMnemonics(const QString &text)
{
    return QString(text).replace(u'&', u"&&"_s);
}

QString plainToolTip(const QString &text)
{
    return Qt::mightBeRichText(text) ? "<qt>"_L1 + text.toHtmlEscaped() + "</qt>"_L1 : text;
}

QString shortened(const QString &text, qsizetype longest)
{
    constexpr int mostLines = 12;
    qsizetype end = qMin(text.size(), longest);
    if (end < text.size() && text.at(end).isLowSurrogate())
        --end;
    qsizetype lineEnd = text.indexOf(u'\n');
    for (int line = 1; line < mostLines && lineEnd >= 0; ++line)
        lineEnd = text.indexOf(u'\n', lineEnd + 1);
    if (lineEnd >= 0)
        end = qMin(end, lineEnd);
    return end == text.size() ? text : text.first(end) + u'…';
}
