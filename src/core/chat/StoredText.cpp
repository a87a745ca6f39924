#include "core/chat/StoredText.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

bool isDigit(QChar c)
{
    return c >= u'0' && c <= u'9';
}

bool isHexDigit(QChar c)
{
    return isDigit(c) || (c >= u'a' && c <= u'f') || (c >= u'A' && c <= u'F');
}

// Whether `text` has a character of `kind` wherever `form` has a zero, and is `form` elsewhere.
bool hasForm(QStringView text, QStringView form, bool (*kind)(QChar))
{
    return std::equal(text.begin(), text.end(), form.begin(), form.end(),
                      [kind](QChar c, QChar expected) { return expected == u'0' ? kind(c) : c == expected; });
}

int number(QStringView digits)
{
    int value = 0;
    for (const QChar digit : digits)
        value = value * 10 + (digit.unicode() - u'0');
    return value;
}

} // namespace

QString uuidText(const QUuid &id)
{
    return id.toString(QUuid::WithoutBraces).toUpper();
}

std::optional<QUuid> uuidFromText(QStringView text)
{
    if (!hasForm(text, u"00000000-0000-0000-0000-000000000000", isHexDigit))
        return std::nullopt;
    return QUuid::fromString(text);
}

std::optional<QString> dateText(const QDateTime &date)
{
    if (!date.isValid())
        return std::nullopt;
    const QDateTime utc = date.toUTC();
    const int year = utc.date().year();
    if (year < 1 || year > 9999)
        return std::nullopt;
    return utc.toString(u"yyyy-MM-dd'T'HH:mm:ss'Z'");
}

std::optional<QDateTime> dateFromText(QStringView text)
{
    if (!hasForm(text, u"0000-00-00T00:00:00Z", isDigit))
        return std::nullopt;
    const QDate day(number(text.sliced(0, 4)), number(text.sliced(5, 2)), number(text.sliced(8, 2)));
    const QTime time(number(text.sliced(11, 2)), number(text.sliced(14, 2)), number(text.sliced(17, 2)));
    if (!day.isValid() || !time.isValid())
        return std::nullopt;
    return QDateTime(day, time, Qt::UTC);
}
