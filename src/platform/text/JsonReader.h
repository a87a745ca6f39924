// Reads JSON text value by value, straight into the records of the reader's user. Loading thousands of files
// through a tree of JSON values takes twice the time, and the tree of a hostile text many times its size.
#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

#include <optional>

// The text must be JSON to the letter, in UTF-8; a byte order mark in front is passed over. Once it proves
// not to be, or not to hold the type asked for, the reader has failed: it stands at the end, and everything
// asked for is empty.
class JsonReader
{
public:
    enum class Kind
    {
        object,
        array,
        string,
        number,
        boolean,
        null,
        nothing // the end, or no value
    };

    // `text` must outlive the reader.
    explicit JsonReader(QByteArrayView text);

    // What kind of value comes next, by how it begins.
    Kind next();

    // Steps into the object that comes next; nextMember() then stands before each member's value in turn,
    // which is to be read or skipped, and is nothing behind the last. The name is in UTF-8, valid until the
    // next call.
    void beginObject();
    std::optional<QByteArrayView> nextMember();

    // Steps into the array that comes next; nextElement() then stands before each element in turn.
    void beginArray();
    bool nextElement();

    // Half a surrogate pair, which JSON can spell, stays what it is.
    QString string();
    double number();
    // A number without its fraction; what lies outside the range becomes the nearest end of it.
    qint64 integer();
    bool boolean();
    // Whether null comes next, which is then read.
    bool takeNull();
    // Reads any value, in which at most 512 others may be nested.
    void skip();

    // For its user: what has been read is not what it should be.
    void fail();

    // Whether nothing failed and nothing is left.
    bool atEnd();

private:
    char peek();
    bool take(char expected);
    bool takeNow(char expected);
    bool takeWord(QByteArrayView word);
    void takeDigits();
    QByteArrayView rawNumber();
    bool nextItem(char close);
    QByteArrayView rawString();
    QString unescaped(QByteArrayView raw);

    const char *m_next;
    const char *m_end;
    bool m_failed = false;
    bool m_isFirst = false;    // nothing of the innermost object or array has been read
    bool m_hasEscapes = false; // of the last raw string
    int m_depth = 0;           // of skip()
    QByteArray m_name;         // a member's name that held escapes
};
