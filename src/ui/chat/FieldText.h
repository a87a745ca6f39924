// The text of a multi-line field, whatever is pasted into it. Qt lays out a line as a whole and looks for a
// place to break a word in a time that grows with the square of the word's length, so a long line is held as
// several blocks of the document, which are one line again to whoever reads it.
#pragma once

#include <QString>

class QPlainTextEdit;
class QTextCursor;

class FieldText
{
public:
    // `field` must outlive this.
    explicit FieldText(QPlainTextEdit &field) : m_field(field) {}

    // Of code units and of lines that a field can hold; laying out more would stop the window.
    static constexpr qsizetype mostCharacters = 500'000;
    static constexpr qsizetype mostLines = 10'000;
    static bool holds(const QString &text);
    // The sentence that says so.
    static QString limits();

    // Replaces the text, of which nothing can be undone then.
    void set(const QString &text);
    // Puts `text` in the place of what is selected; does nothing and returns false when the field cannot hold
    // it.
    bool insert(const QString &text);
    // Begins a new line at the cursor.
    void breakLine();

    // With the spaces that do not break.
    QString text() const;
    QString selectedText() const;

private:
    void insertLines(QTextCursor &cursor, const QString &lines);
    void insertLine(QTextCursor &cursor, QStringView line);

    QPlainTextEdit &m_field;
};
