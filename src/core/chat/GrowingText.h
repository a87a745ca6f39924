// A text that is appended to, seen without the white space at its ends, and how much of that view has stayed
// as it was.
#pragma once

#include <QString>
#include <QStringView>

class GrowingText
{
public:
    void append(QStringView text);
    // Takes `count` characters off the end.
    void chop(qsizetype count);
    void clear();

    bool endsWith(QLatin1StringView text) const { return m_text.endsWith(text); }
    // Without white space and line breaks at both ends. Valid until the next change.
    QStringView trimmed() const { return QStringView(m_text).sliced(m_begin, m_end - m_begin); }

    // How many characters at the start of trimmed() have been the same since the last call of mark().
    qsizetype unchanged() const { return m_unchanged; }
    void mark() { m_unchanged = m_end - m_begin; }

private:
    void limitUnchanged();

    QString m_text;
    qsizetype m_begin = 0; // of the first character that is no space
    qsizetype m_end = 0;   // behind the last one
    qsizetype m_unchanged = 0;
};
