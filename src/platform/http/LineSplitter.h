// Cuts a body that arrives in batches into its lines. A line ends at a line feed, a carriage return, or both
// together; the break is not part of it. A line that is longer than any server's comes out empty.
#pragma once

#include <QByteArray>
#include <QByteArrayView>

#include <optional>

class LineSplitter
{
public:
    // `longestLine` is in bytes.
    explicit LineSplitter(qsizetype longestLine = 64 * 1024 * 1024) : m_longestLine(longestLine) {}

    // Takes the next bytes of the body. The lines of the bytes before must have been taken with next().
    void append(const QByteArray &bytes);

    // The next line that is complete. The view is valid until the next call.
    std::optional<QByteArrayView> next();

    // What stands behind the last break, once the body has ended; nothing when no byte does.
    std::optional<QByteArrayView> rest();

private:
    qsizetype endOfLine();
    void keep(QByteArrayView piece);

    const qsizetype m_longestLine;
    QByteArray m_bytes;         // the batch at hand
    qsizetype m_start = 0;      // where its next line begins
    qsizetype m_lineFeed = -1;  // the first line feed at or behind m_start, once searched for
    QByteArray m_head;          // the beginning of a line that earlier batches held
    bool m_headUsed = false;    // m_head was handed out
    bool m_tooLong = false;     // that line is dropped
    bool m_afterReturn = false; // a line feed that comes first belongs to the break before it
};
