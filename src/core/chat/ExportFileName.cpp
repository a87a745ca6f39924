#include "core/chat/ExportFileName.h"

#include <QCoreApplication>
#include <QTextBoundaryFinder>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype mostBytes = 100; // file systems take 255, of which the user may want some

// The characters with the property Bidi_Control of Unicode, which rearrange the ones around them.
bool setsDirection(QChar character)
{
    const char16_t code = character.unicode();
    return code == 0x061C || code == 0x200E || code == 0x200F || (code >= 0x202A && code <= 0x202E) ||
           (code >= 0x2066 && code <= 0x2069);
}

bool isNoStart(QChar character)
{
    return character == u'.' || character == u'-' || character.isSpace();
}

QString onOneLine(const QString &title)
{
    QString name;
    for (const QChar character : title) {
        if (character.isSpace())
            name += u' ';
        else if (character == u'/')
            name += u'-';
        else if (character.category() != QChar::Other_Control && !setsDirection(character))
            name += character;
    }
    return name;
}

// The start of `name` that takes at most mostBytes. No character as the user perceives it is cut, unless it
// takes more by itself.
QString shortened(const QString &name)
{
    // No more than this is looked at: a unit takes a byte or more.
    const QString start = name.first(std::min(name.size(), mostBytes + 1));
    QTextBoundaryFinder boundaries(QTextBoundaryFinder::Grapheme, start);
    qsizetype whole = 0;
    for (qsizetype next = 0; next >= 0 && start.first(next).toUtf8().size() <= mostBytes;
         next = boundaries.toNextBoundary())
        whole = next;
    if (whole > 0)
        return start.first(whole);
    qsizetype length = start.size();
    while (start.first(length).toUtf8().size() > mostBytes ||
           (length > 0 && start[length - 1].isHighSurrogate()))
        --length;
    return start.first(length);
}

} // namespace

QString exportFileName(const QString &title)
{
    QString name = onOneLine(title);
    const auto start = std::ranges::find_if_not(name, isNoStart);
    name = shortened(name.sliced(start - name.begin())).trimmed();
    if (name.isEmpty())
        name = QCoreApplication::translate("ExportFileName", "Chat");
    return name + ".md"_L1;
}
