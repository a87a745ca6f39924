#include "platform/text/JsonReader.h"

#include <QStringDecoder>

#include <array>
#include <cmath>
#include <limits>
#include <tuple>

namespace {

constexpr int deepest = 512;

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

// Where a string's text may not simply run on: its end, an escape, a control character.
constexpr std::array<bool, 256> makeStops()
{
    std::array<bool, 256> stops = {};
    for (size_t c = 0; c < ' '; ++c)
        stops[c] = true;
    stops['"'] = stops['\\'] = true;
    return stops;
}

constexpr std::array<bool, 256> stops = makeStops();

// What the escape stands for with which `text` begins; there is at least one byte behind its backslash.
std::optional<char16_t> escapedUnit(QByteArrayView text)
{
    switch (text[1]) {
    case '"':
    case '\\':
    case '/':
        return text[1];
    case 'b':
        return u'\b';
    case 'f':
        return u'\f';
    case 'n':
        return u'\n';
    case 'r':
        return u'\r';
    case 't':
        return u'\t';
    case 'u':
        break;
    default:
        return std::nullopt;
    }
    if (text.size() < 6)
        return std::nullopt;
    unsigned unit = 0;
    for (const char c : text.sliced(2, 4)) {
        const char lower = static_cast<char>(c | 0x20);
        if (!isDigit(c) && (lower < 'a' || lower > 'f'))
            return std::nullopt;
        unit = unit * 16 + static_cast<unsigned>(isDigit(c) ? c - '0' : lower - 'a' + 10);
    }
    return static_cast<char16_t>(unit);
}

QChar *decode(QByteArrayView utf8, QChar *out)
{
    // U+FEFF at the start of a string is text like any other.
    QStringDecoder decoder(QStringDecoder::Utf8,
                           QStringDecoder::Flag::Stateless | QStringDecoder::Flag::ConvertInitialBom);
    return decoder.appendToBuffer(out, utf8);
}

} // namespace

JsonReader::JsonReader(QByteArrayView text) : m_next(text.data()), m_end(text.data() + text.size())
{
    if (text.startsWith("\xEF\xBB\xBF"))
        m_next += 3;
    if (!text.isValidUtf8())
        fail();
}

JsonReader::Kind JsonReader::next()
{
    const char first = peek();
    switch (first) {
    case '{':
        return Kind::object;
    case '[':
        return Kind::array;
    case '"':
        return Kind::string;
    case 't':
    case 'f':
        return Kind::boolean;
    case 'n':
        return Kind::null;
    default:
        return first == '-' || isDigit(first) ? Kind::number : Kind::nothing;
    }
}

void JsonReader::beginObject()
{
    m_isFirst = true;
    if (!take('{'))
        fail();
}

std::optional<QByteArrayView> JsonReader::nextMember()
{
    if (!nextItem('}'))
        return std::nullopt;
    QByteArrayView name = rawString();
    if (m_hasEscapes) {
        m_name = unescaped(name).toUtf8();
        name = m_name;
    }
    if (!take(':'))
        fail();
    return m_failed ? std::nullopt : std::optional(name);
}

void JsonReader::beginArray()
{
    m_isFirst = true;
    if (!take('['))
        fail();
}

bool JsonReader::nextElement()
{
    return nextItem(']');
}

bool JsonReader::nextItem(char close)
{
    if (take(close)) {
        m_isFirst = false;
        return false;
    }
    if (!m_isFirst && !take(','))
        fail();
    m_isFirst = false;
    return !m_failed;
}

QString JsonReader::string()
{
    const QByteArrayView raw = rawString();
    if (m_hasEscapes)
        return unescaped(raw);
    if (raw.isEmpty())
        return {};
    QString text(raw.size(), Qt::Uninitialized);
    text.truncate(decode(raw, text.data()) - text.constData());
    return text;
}

double JsonReader::number()
{
    bool isNumber = false;
    const double value = rawNumber().toDouble(&isNumber);
    if (!isNumber)
        fail();
    return value;
}

qint64 JsonReader::integer()
{
    const QByteArrayView raw = rawNumber();
    bool isWhole = false;
    const qint64 whole = raw.toLongLong(&isWhole);
    if (isWhole)
        return whole;
    bool isNumber = false;
    const double value = std::trunc(raw.toDouble(&isNumber));
    if (!isNumber)
        fail();
    constexpr double limit = 9'223'372'036'854'775'808.0; // two to the power of 63
    if (value >= limit)
        return std::numeric_limits<qint64>::max();
    return value < -limit ? std::numeric_limits<qint64>::min() : static_cast<qint64>(value);
}

// A number as it is spelled; empty when there is none.
QByteArrayView JsonReader::rawNumber()
{
    peek();
    const char *const start = m_next;
    takeNow('-');
    // No other digit may stand behind a leading zero.
    if (!takeNow('0'))
        takeDigits();
    if (takeNow('.'))
        takeDigits();
    if (takeNow('e') || takeNow('E')) {
        if (!takeNow('+'))
            takeNow('-');
        takeDigits();
    }
    return m_failed ? QByteArrayView() : QByteArrayView(start, m_next);
}

bool JsonReader::boolean()
{
    if (takeWord("true"))
        return true;
    if (!takeWord("false"))
        fail();
    return false;
}

bool JsonReader::takeNull()
{
    return takeWord("null");
}

void JsonReader::skip()
{
    bool isNumber = true;
    if (++m_depth > deepest)
        fail();
    switch (next()) {
    case Kind::object:
        beginObject();
        while (nextMember())
            skip();
        break;
    case Kind::array:
        beginArray();
        while (nextElement())
            skip();
        break;
    case Kind::string: {
        const QByteArrayView raw = rawString();
        if (m_hasEscapes)
            unescaped(raw);
        break;
    }
    case Kind::number: {
        // Only a long one can be out of range, and converting millions takes its time.
        const QByteArrayView raw = rawNumber();
        if (raw.size() > 300 || raw.contains('e') || raw.contains('E'))
            std::ignore = raw.toDouble(&isNumber);
        if (!isNumber)
            fail();
        break;
    }
    case Kind::boolean:
        boolean();
        break;
    case Kind::null:
        if (!takeNull())
            fail();
        break;
    case Kind::nothing:
        fail();
    }
    --m_depth;
}

void JsonReader::fail()
{
    m_failed = true;
    m_next = m_end;
}

bool JsonReader::atEnd()
{
    peek();
    return !m_failed && m_next == m_end;
}

// The next character that is not a blank; zero at the end.
char JsonReader::peek()
{
    while (m_next < m_end && (*m_next == ' ' || *m_next == '\n' || *m_next == '\r' || *m_next == '\t'))
        ++m_next;
    return m_next < m_end ? *m_next : '\0';
}

bool JsonReader::take(char expected)
{
    peek();
    return takeNow(expected);
}

// Without blanks in between.
bool JsonReader::takeNow(char expected)
{
    if (m_next == m_end || *m_next != expected)
        return false;
    ++m_next;
    return true;
}

bool JsonReader::takeWord(QByteArrayView word)
{
    peek();
    if (!QByteArrayView(m_next, m_end).startsWith(word))
        return false;
    m_next += word.size();
    return true;
}

void JsonReader::takeDigits()
{
    const char *const start = m_next;
    while (m_next < m_end && isDigit(*m_next))
        ++m_next;
    if (m_next == start)
        fail();
}

// What stands between the quotes.
QByteArrayView JsonReader::rawString()
{
    m_hasEscapes = false;
    if (!take('"')) {
        fail();
        return {};
    }
    const char *const start = m_next;
    for (;;) {
        while (m_next < m_end && !stops[static_cast<unsigned char>(*m_next)])
            ++m_next;
        if (takeNow('"'))
            return {start, m_next - 1};
        if (!takeNow('\\') || m_next == m_end) {
            fail();
            return {};
        }
        m_hasEscapes = true;
        ++m_next;
    }
}

QString JsonReader::unescaped(QByteArrayView raw)
{
    // No escape is shorter than what it stands for.
    QString text(raw.size(), Qt::Uninitialized);
    QChar *out = text.data();
    while (!raw.isEmpty()) {
        const char first = raw.front();
        qsizetype taken = 1;
        if (first == '\\') {
            const std::optional<char16_t> unit = escapedUnit(raw);
            if (!unit) {
                fail();
                return {};
            }
            *out++ = *unit;
            taken = raw[1] == 'u' ? 6 : 2;
        } else if (static_cast<unsigned char>(first) < 0x80) {
            *out++ = QLatin1Char(first);
        } else {
            const qsizetype escape = raw.indexOf('\\');
            taken = escape < 0 ? raw.size() : escape;
            out = decode(raw.first(taken), out);
        }
        raw = raw.sliced(taken);
    }
    text.truncate(out - text.constData());
    return text;
}
