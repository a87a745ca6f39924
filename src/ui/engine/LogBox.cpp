#include "ui/engine/LogBox.h"

#include "platform/text/OutsideText.h"
#include "ui/widgets/AppearanceWatch.h"
#include "ui/widgets/FocusRing.h"
#include "ui/widgets/TextStyle.h"

#include <QScrollBar>
#include <QTextBlock>

#include <algorithm>

namespace {

// How many lines at the front of `before` are gone in `after`, where the rest still stands before what is
// new.
qsizetype linesGone(const QStringList &before, const QStringList &after)
{
    const qsizetype least = qMax(qsizetype(0), before.size() - after.size());
    for (qsizetype gone = least; gone < before.size(); ++gone) {
        if (std::equal(before.begin() + gone, before.end(), after.begin()))
            return gone;
    }
    return before.size();
}

// A line of the engine's stays one block of the document.
QString inOneBlock(QString line)
{
    for (const char16_t boundary : {u'\u2029', u'\uFDD0', u'\uFDD1'})
        line.replace(boundary, QChar::LineSeparator);
    return line;
}

} // namespace

LogBox::LogBox(QWidget *parent) : QPlainTextEdit(parent)
{
    setReadOnly(true);
    setUndoRedoEnabled(false);
    setFrameShape(QFrame::NoFrame);
    setFixedHeight(160);
    const auto follow = [this] { setFont(monospacedFont(TextStyle::caption)); };
    connect(&AppearanceWatch::shared(), &AppearanceWatch::fontChanged, this, follow);
    follow();
    setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    setTabChangesFocus(true);
    setAccessibleName(tr("Engine output"));
    verticalScrollBar()->setAccessibleName(tr("Scroll"));
    document()->setDocumentMargin(8);
    new FocusRing(this);
}

void LogBox::showLines(const QStringList &lines)
{
    if (lines == m_lines)
        return;
    const qsizetype gone = linesGone(m_lines, lines);
    const qsizetype kept = m_lines.size() - gone;
    QScrollBar *bar = verticalScrollBar();
    const int position = bar->value();
    int removedRows = 0;
    if (kept == 0) {
        clear();
    } else {
        removedRows = document()->findBlockByNumber(static_cast<int>(gone)).firstLineNumber();
        dropFirst(gone);
    }
    append(lines.mid(kept));
    m_lines = lines;
    bar->setValue(qMax(0, position - removedRows));
}

void LogBox::dropFirst(qsizetype count)
{
    if (count == 0)
        return;
    QTextCursor cursor(document());
    cursor.setPosition(document()->findBlockByNumber(static_cast<int>(count)).position(),
                       QTextCursor::KeepAnchor);
    cursor.removeSelectedText();
}

void LogBox::append(const QStringList &lines)
{
    if (lines.isEmpty())
        return;
    QTextCursor selection = textCursor();
    const int anchor = selection.anchor();
    const int position = selection.position();
    QTextCursor cursor(document());
    cursor.movePosition(QTextCursor::End);
    if (!document()->isEmpty())
        cursor.insertBlock();
    // Laying out a line takes a time that grows with the square of its length: a minute for 1 MiB.
    constexpr qsizetype longest = 8000;
    QStringList shown;
    for (const QString &line : lines)
        shown.append(inOneBlock(shownLines(line, longest)));
    cursor.insertText(shown.join(QLatin1Char('\n')));
    // One that reached to the end would otherwise grow with it.
    selection.setPosition(anchor);
    selection.setPosition(position, QTextCursor::KeepAnchor);
    setTextCursor(selection);
}
