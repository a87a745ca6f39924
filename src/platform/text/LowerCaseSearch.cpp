#include "platform/text/LowerCaseSearch.h"

#include <algorithm>
#include <memory>

namespace {

constexpr qsizetype unitCount = 0x10000;
constexpr char16_t dottedCapitalI = 0x130; // alone becomes two units: an i and the dot
constexpr char16_t dotAbove = 0x307;

// Every unit of UTF-16 in lower case. A surrogate stays what it is, and so does the dotted capital I.
const char16_t *lowered()
{
    static const std::unique_ptr<char16_t[]> table = [] {
        auto units = std::make_unique<char16_t[]>(unitCount);
        for (qsizetype unit = 0; unit < unitCount; ++unit)
            units[static_cast<std::size_t>(unit)] = QChar(static_cast<char16_t>(unit)).toLower().unicode();
        return units;
    }();
    return table.get();
}

template <class Spellings>
quint16 isOne(char16_t unit, const Spellings &spellings)
{
    quint16 found = 0;
    for (const char16_t spelling : spellings)
        found = static_cast<quint16>(found | quint16(unit == spelling));
    return found;
}

// Short and without a branch: compilers make a few vector instructions of it.
constexpr qsizetype block = 32;

template <class Spellings>
bool mayStartIn(const char16_t *place, qsizetype toLast, const Spellings &first, const Spellings &last)
{
    quint16 found = 0;
    for (qsizetype i = 0; i < block; ++i)
        found = static_cast<quint16>(found | (isOne(place[i], first) & isOne(place[toLast + i], last)));
    return found != 0;
}

} // namespace

LowerCaseSearch::LowerCaseSearch(const QString &text) : m_query(text.toLower())
{
    if (m_query.isEmpty())
        return;
    // Not so: the dot, which may be the second half of one letter; half a surrogate pair, which comes as the
    // replacement character; two units that together have an upper case.
    const QList<uint> letters = m_query.toUcs4();
    const bool isPlain = std::none_of(letters.cbegin(), letters.cend(), [](uint letter) {
        return letter == dotAbove || letter == QChar::ReplacementCharacter ||
               (QChar::requiresSurrogates(letter) && QChar::toUpper(letter) != letter);
    });
    m_unitByUnit = isPlain && spell(m_query.back().unicode(), m_last) &&
                   (m_query.size() == 1 || spell(m_query.front().unicode(), m_first));
    // The dot of such a letter is in no query that comes here, so only a query's end can meet its i.
    if (m_query.back() == u'i')
        m_last.back() = dottedCapitalI;
    if (m_query.size() == 1)
        m_first = m_last;
}

bool LowerCaseSearch::spell(char16_t unit, Spellings &spellings)
{
    const char16_t *const table = lowered();
    std::size_t count = 0;
    for (qsizetype candidate = 0; candidate < unitCount; ++candidate) {
        if (table[candidate] != unit)
            continue;
        if (count == spellings.size())
            return false;
        spellings[count++] = static_cast<char16_t>(candidate);
    }
    if (count == 0)
        return false;
    std::fill(spellings.begin() + static_cast<std::ptrdiff_t>(count), spellings.end(), spellings[count - 1]);
    return true;
}

bool LowerCaseSearch::isIn(const QString &text) const
{
    if (m_query.isEmpty())
        return true;
    if (!m_unitByUnit)
        return text.toLower().contains(m_query);
    const char16_t *const units = QStringView(text).utf16();
    const qsizetype toLast = m_query.size() - 1;
    const qsizetype end = text.size() - toLast;
    for (qsizetype place = 0; place < end; place += block) {
        if (end - place >= block && !mayStartIn(units + place, toLast, m_first, m_last))
            continue;
        const qsizetype blockEnd = qMin(place + block, end);
        for (qsizetype start = place; start < blockEnd; ++start) {
            if (isAt(units + start))
                return true;
        }
    }
    return false;
}

bool LowerCaseSearch::isAt(const char16_t *place) const
{
    const qsizetype toLast = m_query.size() - 1;
    if (!isOne(place[0], m_first) || !isOne(place[toLast], m_last))
        return false;
    const char16_t *const table = lowered();
    const char16_t *const query = QStringView(m_query).utf16();
    for (qsizetype i = 1; i < toLast; ++i) {
        if (table[place[i]] != query[i])
            return false;
    }
    return true;
}
