#include "platform/http/LineSplitter.h"

void LineSplitter::append(const QByteArray &bytes)
{
    m_bytes = bytes;
    m_start = 0;
    m_lineFeed = -1;
}

std::optional<QByteArrayView> LineSplitter::next()
{
    if (m_headUsed) {
        m_head.clear();
        m_headUsed = false;
        m_tooLong = false;
    }
    if (m_afterReturn && m_start < m_bytes.size()) {
        m_afterReturn = false;
        if (m_bytes.at(m_start) == '\n')
            ++m_start;
    }
    const qsizetype end = endOfLine();
    const QByteArrayView line = QByteArrayView(m_bytes).sliced(m_start, end - m_start);
    if (end == m_bytes.size()) {
        keep(line);
        m_start = end;
        return std::nullopt;
    }
    m_afterReturn = m_bytes.at(end) == '\r';
    m_start = end + 1;
    if (m_head.isEmpty() && !m_tooLong)
        return line;
    keep(line);
    m_headUsed = true;
    return m_head;
}

std::optional<QByteArrayView> LineSplitter::rest()
{
    if (m_head.isEmpty() || m_headUsed)
        return std::nullopt;
    m_headUsed = true;
    return m_head;
}

// Every byte is looked at twice at most, however many lines end with a carriage return alone.
qsizetype LineSplitter::endOfLine()
{
    const QByteArrayView bytes(m_bytes);
    if (m_lineFeed < m_start) {
        const qsizetype found = bytes.indexOf('\n', m_start);
        m_lineFeed = found < 0 ? bytes.size() : found;
    }
    const qsizetype carriageReturn = bytes.first(m_lineFeed).indexOf('\r', m_start);
    return carriageReturn < 0 ? m_lineFeed : carriageReturn;
}

void LineSplitter::keep(QByteArrayView piece)
{
    m_tooLong = m_tooLong || piece.size() > m_longestLine - m_head.size();
    if (m_tooLong)
        m_head = QByteArray();
    else
        m_head += piece;
}
