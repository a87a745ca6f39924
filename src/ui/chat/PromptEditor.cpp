#include "ui/chat/PromptEditor.h"

#include "platform/text/OutsideText.h"
#include "ui/widgets/Tint.h"

#include <QKeyEvent>
#include <QMimeData>
#include <QPainter>
#include <QSignalBlocker>

namespace {

constexpr double cornerRadius = 6;

} // namespace

PromptEditor::PromptEditor(QWidget *parent) : QPlainTextEdit(parent)
{
    setFrameShape(QFrame::NoFrame);
    setTabChangesFocus(true);
    setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    setViewportMargins(3, 3, 3, 3); // what is shown stays clear of the frame's corners
    connect(this, &QPlainTextEdit::textChanged, this, &PromptEditor::noticeEdit);
}

void PromptEditor::showPrompt(const QString &prompt)
{
    // A composition goes on; the text that comes of it is an edit.
    if (prompt == m_prompt || m_composing)
        return;
    const QSignalBlocker quiet(this);
    const int position = textCursor().position();
    // What the field cannot hold is not to be edited into what it can.
    setReadOnly(!FieldText::holds(prompt));
    m_text.set(isReadOnly() ? shownLines(prompt) : prompt);
    m_prompt = prompt;
    m_shown = m_text.text();
    QTextCursor cursor = textCursor();
    cursor.setPosition(qMin(position, document()->characterCount() - 1));
    setTextCursor(cursor);
}

// The signal also comes when only the look of the text has changed.
void PromptEditor::noticeEdit()
{
    const QString now = m_text.text();
    if (now == m_shown)
        return;
    m_shown = now;
    m_prompt = now;
    Q_EMIT edited(m_prompt);
}

bool PromptEditor::event(QEvent *event)
{
    const bool handled = QPlainTextEdit::event(event);
    if (event->type() == QEvent::Paint)
        drawFrame();
    return handled;
}

void PromptEditor::drawFrame()
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(tintColor(Tint::edge, palette()));
    painter.setBrush(palette().base());
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), cornerRadius, cornerRadius);
}

void PromptEditor::keyPressEvent(QKeyEvent *event)
{
    // They belong to the composition, not to the sheet around the field.
    const int key = event->key();
    const bool isReturn = key == Qt::Key_Return || key == Qt::Key_Enter;
    if (m_composing && (isReturn || key == Qt::Key_Escape))
        event->accept();
    else if (isReturn && !isReadOnly())
        m_text.breakLine();
    else
        QPlainTextEdit::keyPressEvent(event);
}

void PromptEditor::insertFromMimeData(const QMimeData *source)
{
    // What Qt 6.4 would not survive: it looks at the first of the formats.
    if (source->formats().isEmpty())
        return;
    if (!isReadOnly() && !m_text.insert(source->text()))
        Q_EMIT refused();
}

QMimeData *PromptEditor::createMimeDataFromSelection() const
{
    auto *mime = new QMimeData;
    mime->setText(m_text.selectedText());
    return mime;
}

void PromptEditor::inputMethodEvent(QInputMethodEvent *event)
{
    m_composing = !event->preeditString().isEmpty();
    QPlainTextEdit::inputMethodEvent(event);
}
