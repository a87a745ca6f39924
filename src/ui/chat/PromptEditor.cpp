#include "ui/chat/PromptEditor.h"

#include "ui/chat/LongWords.h"
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
    setWordWrapMode(hasLongWord(prompt) ? QTextOption::WrapAnywhere
                                        : QTextOption::WrapAtWordBoundaryOrAnywhere);
    setPlainText(prompt);
    m_prompt = prompt;
    m_text = text();
    QTextCursor cursor = textCursor();
    cursor.setPosition(qMin(position, document()->characterCount() - 1));
    setTextCursor(cursor);
}

// toPlainText() would turn spaces that do not break into ones that do.
QString PromptEditor::text() const
{
    QString text = document()->toRawText();
    text.replace(QChar::ParagraphSeparator, u'\n');
    text.replace(QChar::LineSeparator, u'\n');
    return text;
}

// The signal also comes when only the look of the text has changed.
void PromptEditor::noticeEdit()
{
    const QString now = text();
    if (now == m_text)
        return;
    m_text = now;
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
    painter.setPen(tintColor(Tint::secondary, palette(), 0.4));
    painter.setBrush(palette().base());
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), cornerRadius, cornerRadius);
}

void PromptEditor::keyPressEvent(QKeyEvent *event)
{
    // They belong to the composition, not to the sheet around the field.
    const int key = event->key();
    if (m_composing && (key == Qt::Key_Return || key == Qt::Key_Enter || key == Qt::Key_Escape)) {
        event->accept();
        return;
    }
    QPlainTextEdit::keyPressEvent(event);
}

void PromptEditor::insertFromMimeData(const QMimeData *source)
{
    // What Qt 6.4 would not survive: it looks at the first of the formats.
    if (source->formats().isEmpty())
        return;
    if (hasLongWord(source->text()))
        setWordWrapMode(QTextOption::WrapAnywhere);
    QPlainTextEdit::insertFromMimeData(source);
}

void PromptEditor::inputMethodEvent(QInputMethodEvent *event)
{
    m_composing = !event->preeditString().isEmpty();
    QPlainTextEdit::inputMethodEvent(event);
}
