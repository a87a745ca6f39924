#include "core/chat/GrowingText.h"

#include <algorithm>

void GrowingText::append(QStringView text)
{
    const qsizetype before = m_text.size();
    m_text.append(text);
    const auto isSpace = [](QChar c) { return c.isSpace(); };
    const auto begin = m_text.cbegin() + before;
    const auto end = m_text.cend();
    const auto firstOther = std::find_if_not(begin, end, isSpace);
    if (firstOther == end)
        return;
    if (m_begin == m_end)
        m_begin = firstOther - m_text.cbegin();
    auto last = end - 1;
    while (last->isSpace())
        --last;
    m_end = last + 1 - m_text.cbegin();
}

void GrowingText::chop(qsizetype count)
{
    m_text.chop(count);
    m_end = std::min(m_end, m_text.size());
    while (m_end > m_begin && m_text.at(m_end - 1).isSpace())
        --m_end;
    if (m_end <= m_begin)
        m_begin = m_end = 0;
    limitUnchanged();
}

void GrowingText::clear()
{
    m_text.clear();
    m_begin = m_end = 0;
    limitUnchanged();
}

void GrowingText::limitUnchanged()
{
    m_unchanged = std::min(m_unchanged, m_end - m_begin);
}
