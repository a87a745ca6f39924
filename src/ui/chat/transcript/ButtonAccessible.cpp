#include "ui/chat/transcript/ButtonAccessible.h"

#include "ui/chat/transcript/Transcript.h"

#include <QCoreApplication>

ButtonAccessible::ButtonAccessible(Transcript *transcript, const TranscriptButton &button)
    : m_transcript(transcript), m_button(button)
{
}

bool ButtonAccessible::isValid() const
{
    return m_transcript && m_button.message < m_transcript->transcript().count() &&
           m_transcript->has(m_button);
}

QWindow *ButtonAccessible::window() const
{
    return m_transcript ? m_transcript->window()->windowHandle() : nullptr;
}

QAccessibleInterface *ButtonAccessible::parent() const
{
    QAccessibleInterface *const list = QAccessible::queryAccessibleInterface(m_transcript);
    return list ? list->child(m_button.message) : nullptr;
}

QString ButtonAccessible::text(QAccessible::Text kind) const
{
    if (!isValid())
        return {};
    if (kind == QAccessible::Name)
        return m_transcript->label(m_button);
    if (kind == QAccessible::Description && m_button.kind == TranscriptButton::openLink)
        return m_transcript->linkTarget(m_button);
    if (kind == QAccessible::Description && m_button.kind == TranscriptButton::copyCode)
        return QCoreApplication::translate("Transcript", "Copies this code block");
    return {};
}

QAccessible::Role ButtonAccessible::role() const
{
    return m_button.kind == TranscriptButton::openLink ? QAccessible::Link : QAccessible::Button;
}

QRect ButtonAccessible::rect() const
{
    if (!isValid())
        return {};
    const QRect place = m_transcript->transcript().rect(m_button);
    return {m_transcript->viewport()->mapToGlobal(place.topLeft()), place.size()};
}

QAccessible::State ButtonAccessible::state() const
{
    QAccessible::State state;
    if (!isValid()) {
        state.invalid = true;
        return state;
    }
    state.focusable = true;
    state.linked = m_button.kind == TranscriptButton::openLink;
    state.focused = m_transcript->hasFocus() && m_transcript->focusedButton() == m_button;
    state.invisible = !m_transcript->isVisible();
    state.offscreen = !m_transcript->transcript().rect(m_button).intersects(m_transcript->viewport()->rect());
    if (m_button.kind == TranscriptButton::disclosure) {
        state.expandable = true;
        state.expanded = m_transcript->transcript().item(m_button.message).facts().isOpen;
        state.collapsed = !state.expanded;
    }
    return state;
}

void *ButtonAccessible::interface_cast(QAccessible::InterfaceType type)
{
    return type == QAccessible::ActionInterface ? static_cast<QAccessibleActionInterface *>(this) : nullptr;
}

QStringList ButtonAccessible::actionNames() const
{
    return {pressAction(), setFocusAction()};
}

void ButtonAccessible::doAction(const QString &name)
{
    if (!isValid())
        return;
    if (name == pressAction())
        m_transcript->press(m_button);
    else if (name == setFocusAction())
        m_transcript->focusButton(m_button);
}
