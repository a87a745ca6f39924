#include "ui/chat/MessageInput.h"

#include "ui/widgets/TextStyle.h"

#include <QEvent>
#include <QKeyEvent>
#include <QMimeData>
#include <QScrollBar>
#include <QTextBlock>

#include <algorithm>
#include <cmath>

namespace {

constexpr int mostUsualLines = 8;
constexpr int leastLines = 3;
constexpr int documentMargin = 6;

} // namespace

MessageInput::MessageInput(QWidget *parent) : QPlainTextEdit(parent)
{
    setPlaceholderText(tr("Message"));
    setAccessibleName(tr("Message"));
    setTabChangesFocus(true);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    document()->setDocumentMargin(documentMargin);
    connect(this, &QPlainTextEdit::textChanged, this, &MessageInput::fit);
    fit();
}

QString MessageInput::draft() const
{
    return m_text.text();
}

void MessageInput::setDraft(const QString &draft)
{
    m_text.set(draft);
    moveCursor(QTextCursor::End);
}

void MessageInput::insertFromMimeData(const QMimeData *source)
{
    // What Qt 6.4 would not survive: it looks at the first of the formats.
    if (source->formats().isEmpty())
        return;
    if (!m_text.insert(source->text()))
        Q_EMIT refused();
}

QMimeData *MessageInput::createMimeDataFromSelection() const
{
    auto *mime = new QMimeData;
    mime->setText(m_text.selectedText());
    return mime;
}

void MessageInput::setTextScale(double scale)
{
    m_textScale = scale;
    setFont(styledFont(TextStyle::body, scale));
}

// Large text leaves the conversation its room.
int MessageInput::mostLines() const
{
    return std::max(leastLines, qRound(mostUsualLines / std::max(1.0, m_textScale)));
}

QSize MessageInput::sizeHint() const
{
    // This document counts its height in lines.
    const int lines = qBound(1, static_cast<int>(document()->size().height()), mostLines());
    const double text = lines * QFontMetricsF(font()).lineSpacing() + 2 * documentMargin;
    return {400, static_cast<int>(std::ceil(text)) + 2 * frameWidth()};
}

void MessageInput::fit()
{
    const bool scrolls = document()->size().height() > mostLines();
    setVerticalScrollBarPolicy(scrolls ? Qt::ScrollBarAsNeeded : Qt::ScrollBarAlwaysOff);
    if (const int height = sizeHint().height(); height != maximumHeight())
        setFixedHeight(height);
    if (!scrolls)
        verticalScrollBar()->setValue(0);
}

bool MessageInput::event(QEvent *event)
{
    // The composition's Escape must not reach the shortcut that stops a reply.
    if (event->type() == QEvent::ShortcutOverride && m_composing &&
        static_cast<QKeyEvent *>(event)->key() == Qt::Key_Escape) {
        event->accept();
        return true;
    }
    return QPlainTextEdit::event(event);
}

void MessageInput::keyPressEvent(QKeyEvent *event)
{
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (!isReturn) {
        QPlainTextEdit::keyPressEvent(event);
        return;
    }
    if (m_composing)
        return;
    if (event->modifiers().testFlag(Qt::ShiftModifier)) {
        // A block of its own, where the field would insert a separator within the line.
        m_text.breakLine();
    } else {
        Q_EMIT submitted();
    }
}

void MessageInput::inputMethodEvent(QInputMethodEvent *event)
{
    m_composing = !event->preeditString().isEmpty();
    QPlainTextEdit::inputMethodEvent(event);
}

void MessageInput::resizeEvent(QResizeEvent *event)
{
    QPlainTextEdit::resizeEvent(event);
    fit();
}

void MessageInput::changeEvent(QEvent *event)
{
    QPlainTextEdit::changeEvent(event);
    if (event->type() == QEvent::FontChange)
        fit();
    else if (event->type() == QEvent::ApplicationFontChange)
        setTextScale(m_textScale);
}
