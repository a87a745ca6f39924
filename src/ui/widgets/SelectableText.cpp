#include "ui/widgets/SelectableText.h"

#include "platform/text/OutsideText.h"
#include "ui/widgets/AppearanceWatch.h"

#include <QFocusEvent>
#include <QMimeData>
#include <QTextBlock>
#include <QWheelEvent>

#include <cmath>

SelectableText::SelectableText(TextStyle style, Tint tint, QWidget *parent)
    : QTextEdit(parent), m_style(style), m_tint(tint)
{
    setReadOnly(true);
    setUndoRedoEnabled(false);
    setFrameShape(QFrame::NoFrame);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    setFocusPolicy(Qt::ClickFocus);
    document()->setDocumentMargin(0);
    viewport()->setAutoFillBackground(false);
    QSizePolicy policy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
    connect(&AppearanceWatch::shared(), &AppearanceWatch::fontChanged, this, &SelectableText::applyFont);
    applyFont();
    tintText(*this, m_tint);
}

void SelectableText::showText(const QString &text, qsizetype longest, int mostLines)
{
    const QString shown = shownLines(text, longest, mostLines);
    if (shown == m_text)
        return;
    if (shown.startsWith(m_text)) {
        append(shown.mid(m_text.size()));
    } else {
        setPlainText(shown);
    }
    m_text = shown;
    m_measured.reset();
    updateGeometry();
}

void SelectableText::append(const QString &text)
{
    QTextCursor selection = textCursor();
    const int anchor = selection.anchor();
    const int position = selection.position();
    QTextCursor end(document());
    end.movePosition(QTextCursor::End);
    end.insertText(text);
    // One that reached to the end would otherwise grow with it.
    selection.setPosition(anchor);
    selection.setPosition(position, QTextCursor::KeepAnchor);
    setTextCursor(selection);
}

void SelectableText::setMonospaced()
{
    m_monospaced = true;
    applyFont();
}

int SelectableText::heightForWidth(int width) const
{
    if (m_measured && m_measured->width == width)
        return m_measured->height;
    // The text edit lays out anew only when its own width changes, so what it had is put back.
    const double before = document()->textWidth();
    document()->setTextWidth(qMax(width, 1));
    const double height = document()->size().height();
    document()->setTextWidth(before);
    m_measured = Size{.width = width, .height = static_cast<int>(std::ceil(height))};
    return m_measured->height;
}

QSize SelectableText::sizeHint() const
{
    const int wide = 60 * fontMetrics().averageCharWidth();
    return {wide, heightForWidth(width() > 0 ? width() : wide)};
}

QSize SelectableText::minimumSizeHint() const
{
    return {8 * fontMetrics().averageCharWidth(), fontMetrics().height()};
}

void SelectableText::changeEvent(QEvent *event)
{
    if (concernsTint(*event))
        tintText(*this, m_tint);
    QTextEdit::changeEvent(event);
    m_measured.reset();
}

void SelectableText::focusOutEvent(QFocusEvent *event)
{
    QTextEdit::focusOutEvent(event);
    const Qt::FocusReason reason = event->reason();
    if (reason == Qt::ActiveWindowFocusReason || reason == Qt::PopupFocusReason ||
        reason == Qt::MenuBarFocusReason)
        return;
    QTextCursor cursor = textCursor();
    cursor.clearSelection();
    setTextCursor(cursor);
}

void SelectableText::wheelEvent(QWheelEvent *event)
{
    event->ignore();
}

QMimeData *SelectableText::createMimeDataFromSelection() const
{
    auto *mime = new QMimeData;
    QString text = textCursor().selectedText();
    text.replace(QChar::ParagraphSeparator, QLatin1Char('\n'));
    text.replace(QChar::LineSeparator, QLatin1Char('\n'));
    mime->setText(text);
    return mime;
}

void SelectableText::applyFont()
{
    setFont(m_monospaced ? monospacedFont(m_style) : styledFont(m_style));
    updateGeometry();
}
