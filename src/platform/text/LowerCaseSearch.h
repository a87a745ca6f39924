// Looks for one text in many, upper and lower case being the same, without making lower-case copies of them.
#pragma once

#include <QString>

#include <array>

class LowerCaseSearch
{
public:
    // What is looked for is `text` in lower case.
    explicit LowerCaseSearch(const QString &text = {});

    const QString &query() const { return m_query; }

    // Whether text.toLower() contains the query.
    bool isIn(const QString &text) const;

private:
    // The units of UTF-16 that become a given one in lower case, the last repeated.
    using Spellings = std::array<char16_t, 4>;

    static bool spell(char16_t unit, Spellings &spellings);
    bool isAt(const char16_t *place) const;

    QString m_query;
    Spellings m_first = {};
    Spellings m_last = {};
    bool m_unitByUnit = false;
};
