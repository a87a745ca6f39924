#include "ui/widgets/TextLabel.h"

#include "platform/text/OutsideText.h"
#include "ui/widgets/AppearanceWatch.h"

#include <QClipboard>
#include <QEvent>
#include <QGuiApplication>

TextLabel::TextLabel(TextStyle style, Tint tint, QWidget *parent)
    : QLabel(parent), m_style(style), m_tint(tint)
{
    setTextFormat(Qt::PlainText);
    // A toolbar would have its text in the colour of buttons, whatever the tint.
    setForegroundRole(QPalette::WindowText);
    connect(&AppearanceWatch::shared(), &AppearanceWatch::fontChanged, this, &TextLabel::applyFont);
    applyFont();
    tintText(*this, m_tint);
}

TextLabel::TextLabel(const QString &text, TextStyle style, Tint tint, QWidget *parent)
    : TextLabel(style, tint, parent)
{
    setText(text);
}

void TextLabel::setText(const QString &text)
{
    QLabel::setText(shownLines(text));
}

void TextLabel::setTint(Tint tint)
{
    m_tint = tint;
    tintText(*this, m_tint);
}

void TextLabel::setBold()
{
    m_bold = true;
    applyFont();
}

void TextLabel::setMonospaced()
{
    m_monospaced = true;
    applyFont();
}

void TextLabel::setWrapping()
{
    setWordWrap(true);
    QSizePolicy policy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
}

void TextLabel::setSelectable()
{
    setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    setCursor(Qt::IBeamCursor);
}

QSize TextLabel::minimumSizeHint() const
{
    if (!wordWrap())
        return QLabel::minimumSizeHint();
    // How high it is follows from its width, once that is known; a guess here would only stretch the layout.
    return {8 * fontMetrics().averageCharWidth(), fontMetrics().height()};
}

void TextLabel::copy()
{
    if (hasSelectedText())
        QGuiApplication::clipboard()->setText(selectedText());
}

void TextLabel::selectAll()
{
    setSelection(0, static_cast<int>(text().size()));
}

void TextLabel::changeEvent(QEvent *event)
{
    if (concernsTint(*event))
        tintText(*this, m_tint);
    QLabel::changeEvent(event);
}

void TextLabel::applyFont()
{
    QFont font = m_monospaced ? monospacedFont(m_style) : styledFont(m_style);
    if (m_bold)
        font.setBold(true);
    setFont(font);
}
