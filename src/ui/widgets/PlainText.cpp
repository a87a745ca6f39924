#include "ui/widgets/PlainText.h"

#include "platform/text/OutsideText.h"

using namespace Qt::StringLiterals;

QString withoutMnemonics(const QString &text)
{
    return shownLine(text).replace(u'&', u"&&"_s);
}

QString plainToolTip(const QString &text)
{
    const QString shown = shownLines(text);
    return Qt::mightBeRichText(shown) ? "<qt>"_L1 + shown.toHtmlEscaped() + "</qt>"_L1 : shown;
}
