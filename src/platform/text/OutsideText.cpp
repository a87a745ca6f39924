#include "platform/text/OutsideText.h"

#include <algorithm>

namespace {

// Code units. The longest sequence in use, a flag or a family of emoji, has about twenty.
constexpr qsizetype highestPile = 32;

// Between letters of one direction, letters of the other, and digits. Each piece is laid out for itself, and
// pages of two languages turn less often.
constexpr int mostTurns = 200;

constexpr char16_t firstStrongIsolate = u'\u2068';
constexpr char16_t popIsolate = u'\u2069';

// Embeddings and overrides, which work beyond what they stand in unless they are closed there.
bool isEmbedding(QChar c)
{
    return c >= u'\u202A' && c <= u'\u202E';
}

bool isIsolate(QChar c)
{
    return c >= u'\u2066' && c <= u'\u2069';
}

bool isLineBreak(QChar c)
{
    const QChar::Category category = c.category();
    return category == QChar::Other_Control || category == QChar::Separator_Line ||
           category == QChar::Separator_Paragraph;
}

// Whether words around it could be moved by it.
bool canTurn(QChar c)
{
    if (c.isSurrogate())
        return true;
    switch (c.direction()) {
    case QChar::DirL:
        return c == u'\u200E';
    case QChar::DirEN:
    case QChar::DirES:
    case QChar::DirET:
    case QChar::DirCS:
    case QChar::DirB:
    case QChar::DirS:
    case QChar::DirWS:
    case QChar::DirON:
    case QChar::DirBN:
    case QChar::DirNSM:
        return false;
    default:
        return true;
    }
}

// The parts of a Hangul syllable, which may be repeated without an end: 1 to 3 in their order, 0 for others.
int hangulPart(char32_t c)
{
    if ((c >= 0x1100 && c <= 0x115F) || (c >= 0xA960 && c <= 0xA97C))
        return 1;
    if ((c >= 0x1160 && c <= 0x11A7) || (c >= 0xD7B0 && c <= 0xD7C6))
        return 2;
    return (c >= 0x11A8 && c <= 0x11FF) || (c >= 0xD7CB && c <= 0xD7FB) ? 3 : 0;
}

// Whether `c` shows nothing of its own, or stands on what is before it.
bool isPiledUp(char32_t c, char32_t before)
{
    if (c < 0xAD)
        return false;
    switch (QChar::category(c)) {
    case QChar::Mark_NonSpacing:
    case QChar::Mark_SpacingCombining:
    case QChar::Mark_Enclosing:
    case QChar::Other_Format:
        return true;
    case QChar::Symbol_Modifier:
        return c >= 0x1F3FB && c <= 0x1F3FF;
    case QChar::Letter_Other: {
        const int part = hangulPart(c);
        return (part > 0 && hangulPart(before) > 0 && part >= hangulPart(before)) || c == 0x3164 ||
               c == 0xFFA0;
    }
    default:
        return false;
    }
}

QString cut(const QString &text, qsizetype end)
{
    if (end >= text.size())
        return text;
    return text.first(end > 0 && text.at(end).isLowSurrogate() ? end - 1 : end) + u'…';
}

// Where the text has turned as often as it may, or its end.
qsizetype endOfTurns(QStringView text)
{
    int turns = -1; // the first piece is none
    auto last = QChar::DirON;
    for (qsizetype place = 0; place < text.size(); ++place) {
        const QChar::Direction direction = text[place].direction();
        const bool isNeutral = direction != QChar::DirL && direction != QChar::DirR &&
                               direction != QChar::DirAL && direction != QChar::DirEN &&
                               direction != QChar::DirAN;
        if (isNeutral || direction == last)
            continue;
        last = direction;
        if (++turns > mostTurns)
            return place;
    }
    return text.size();
}

QString tamed(QString text)
{
    text.removeIf(isEmbedding);
    return withoutPiles(text);
}

} // namespace

QString shownLine(const QString &text, qsizetype longest)
{
    QString line = cut(text, longest);
    std::replace_if(line.begin(), line.end(), isLineBreak, QChar(QChar::Space));
    return tamed(line);
}

QString shownLines(const QString &text, qsizetype longest, int mostLines)
{
    const qsizetype end = endOfTurns(QStringView(text).first(std::min(text.size(), longest)));
    qsizetype lineEnd = -1;
    for (int line = 0; line < mostLines; ++line) {
        lineEnd = text.indexOf(u'\n', lineEnd + 1);
        if (lineEnd < 0 || lineEnd >= end)
            return tamed(cut(text, end));
    }
    return tamed(cut(text, lineEnd));
}

QString isolated(const QString &text)
{
    if (std::none_of(text.cbegin(), text.cend(), canTurn))
        return text;
    QString inside = text;
    inside.removeIf([](QChar c) { return isEmbedding(c) || isIsolate(c); });
    return firstStrongIsolate + inside + popIsolate;
}

QString withoutPiles(const QString &text)
{
    constexpr char32_t joiner = 0x200D;
    QString tame = text;
    qsizetype pileStart = 0;
    char32_t before = 0;
    for (qsizetype place = 0, next = 0; place < text.size(); place = next) {
        char32_t c = text.at(place).unicode();
        next = place + 1;
        if (QChar::isHighSurrogate(c) && next < text.size() && text.at(next).isLowSurrogate())
            c = QChar::surrogateToUcs4(text.at(place), text.at(next++));
        const bool isPiled = isPiledUp(c, before);
        if (!isPiled && before != joiner) {
            pileStart = place;
        } else if (isPiled && place - pileStart >= highestPile) {
            c = QChar::ReplacementCharacter;
            std::fill(tame.begin() + place, tame.begin() + next, QChar(QChar::ReplacementCharacter));
        }
        before = c;
    }
    return tame;
}
