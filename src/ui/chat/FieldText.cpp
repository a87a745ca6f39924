#include "ui/chat/FieldText.h"

#include <QCoreApplication>
#include <QPlainTextEdit>
#include <QTextBlock>

#include <algorithm>

namespace {

constexpr qsizetype longestBlock = 2000;
// A property, since it comes back when something is undone.
constexpr int continues = QTextFormat::UserProperty;

QTextBlockFormat format(bool isContinuation)
{
    QTextBlockFormat format;
    if (isContinuation)
        format.setProperty(continues, true);
    return format;
}

bool isContinuation(const QTextBlock &block)
{
    return block.blockFormat().boolProperty(continues);
}

// How much of a long line goes into its first block; up to behind a blank where there is one near.
qsizetype lengthOfBlock(QStringView line)
{
    constexpr qsizetype near = 200;
    if (line.size() <= longestBlock)
        return line.size();
    const qsizetype blank = line.first(longestBlock).lastIndexOf(u' ');
    if (blank >= longestBlock - near)
        return blank + 1;
    return line.at(longestBlock).isLowSurrogate() ? longestBlock - 1 : longestBlock;
}

QString withLineFeeds(QString text)
{
    text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    for (const QChar lineEnd : {QChar(u'\r'), QChar(QChar::ParagraphSeparator), QChar(QChar::LineSeparator)})
        text.replace(lineEnd, u'\n');
    return text;
}

} // namespace

bool FieldText::holds(const QString &text)
{
    return text.size() <= mostCharacters && withLineFeeds(text).count(u'\n') < mostLines;
}

QString FieldText::limits()
{
    return QCoreApplication::translate("FieldText", "A field holds at most %1 characters and %2 lines.")
        .arg(QString::number(mostCharacters), QString::number(mostLines));
}

void FieldText::set(const QString &text)
{
    m_field.clear();
    m_field.setUndoRedoEnabled(false);
    QTextCursor cursor(m_field.document());
    insertLines(cursor, withLineFeeds(text));
    m_field.setUndoRedoEnabled(true);
}

bool FieldText::insert(const QString &text)
{
    const QTextDocument &document = *m_field.document();
    if (document.characterCount() + text.size() > mostCharacters)
        return false;
    const QString lines = withLineFeeds(text);
    if (document.blockCount() + lines.count(u'\n') > mostLines)
        return false;
    QTextCursor cursor = m_field.textCursor();
    insertLines(cursor, lines);
    m_field.setTextCursor(cursor);
    m_field.ensureCursorVisible();
    return true;
}

void FieldText::insertLines(QTextCursor &cursor, const QString &lines)
{
    cursor.beginEditBlock();
    cursor.removeSelectedText();
    qsizetype start = 0;
    while (true) {
        const qsizetype end = lines.indexOf(u'\n', start);
        insertLine(cursor, QStringView(lines).sliced(start, (end < 0 ? lines.size() : end) - start));
        if (end < 0)
            break;
        cursor.insertBlock(format(false));
        start = end + 1;
    }
    cursor.endEditBlock();
}

void FieldText::insertLine(QTextCursor &cursor, QStringView line)
{
    if (line.isEmpty())
        return;
    const bool fits = cursor.block().length() + line.size() <= longestBlock;
    if (!fits && !cursor.atBlockStart())
        cursor.insertBlock(format(true));
    while (!line.isEmpty()) {
        const qsizetype length = lengthOfBlock(line);
        cursor.insertText(line.first(length).toString());
        line = line.sliced(length);
        if (!line.isEmpty() || (!fits && !cursor.atBlockEnd()))
            cursor.insertBlock(format(true));
    }
}

void FieldText::breakLine()
{
    m_field.textCursor().insertBlock(format(false));
    m_field.ensureCursorVisible();
}

QString FieldText::text() const
{
    QString text = m_field.document()->toRawText();
    for (QTextBlock block = m_field.document()->lastBlock(); block.position() > 0; block = block.previous()) {
        if (isContinuation(block))
            text.remove(block.position() - 1, 1);
    }
    return withLineFeeds(text);
}

QString FieldText::selectedText() const
{
    const QTextCursor cursor = m_field.textCursor();
    const int start = cursor.selectionStart();
    QString text = cursor.selectedText();
    QTextBlock block = m_field.document()->findBlock(cursor.selectionEnd());
    for (; block.position() > start; block = block.previous()) {
        if (isContinuation(block))
            text.remove(block.position() - 1 - start, 1);
    }
    return withLineFeeds(text);
}
