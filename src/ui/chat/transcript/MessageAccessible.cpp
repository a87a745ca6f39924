#include "ui/chat/transcript/MessageAccessible.h"

#include "ui/chat/transcript/ButtonAccessible.h"
#include "ui/chat/transcript/Transcript.h"

#include <QCoreApplication>

#include <algorithm>

MessageAccessible::MessageAccessible(Transcript *transcript, int index)
    : m_transcript(transcript), m_index(index)
{
}

MessageAccessible::~MessageAccessible()
{
    for (const Child &child : m_buttons)
        QAccessible::deleteAccessibleInterface(child.id);
}

bool MessageAccessible::isValid() const
{
    return m_transcript && m_index < m_transcript->transcript().count();
}

QWindow *MessageAccessible::window() const
{
    return m_transcript ? m_transcript->window()->windowHandle() : nullptr;
}

QAccessibleInterface *MessageAccessible::parent() const
{
    return QAccessible::queryAccessibleInterface(m_transcript);
}

QAccessibleInterface *MessageAccessible::button(const TranscriptButton &button) const
{
    const auto known = std::find_if(m_buttons.begin(), m_buttons.end(),
                                    [&button](const Child &child) { return child.button == button; });
    if (known != m_buttons.end())
        return QAccessible::accessibleInterface(known->id);
    auto *const made = new ButtonAccessible(m_transcript, button);
    m_buttons.push_back({button, QAccessible::registerAccessibleInterface(made)});
    return made;
}

int MessageAccessible::childCount() const
{
    return isValid() ? static_cast<int>(m_transcript->buttons(m_index).size()) : 0;
}

QAccessibleInterface *MessageAccessible::child(int index) const
{
    if (index < 0 || index >= childCount())
        return nullptr;
    return button(m_transcript->buttons(m_index)[static_cast<size_t>(index)]);
}

QAccessibleInterface *MessageAccessible::childAt(int x, int y) const
{
    if (!isValid())
        return nullptr;
    const QPoint point = m_transcript->viewport()->mapFromGlobal(QPoint(x, y));
    const std::optional<TranscriptButton> found = m_transcript->buttonAt(point);
    return found && found->message == m_index ? button(*found) : nullptr;
}

int MessageAccessible::indexOfChild(const QAccessibleInterface *child) const
{
    for (int index = 0; index < childCount(); ++index) {
        if (this->child(index) == child)
            return index;
    }
    return -1;
}

QString MessageAccessible::shownText() const
{
    return isValid() ? m_transcript->messageText(m_index) : QString();
}

QString MessageAccessible::text(QAccessible::Text kind) const
{
    if (!isValid())
        return {};
    const QString text = shownText();
    if (kind == QAccessible::Value)
        return text;
    if (kind == QAccessible::Description)
        return m_transcript->messageStatus(m_index);
    if (kind != QAccessible::Name)
        return {};
    const bool isUsers = m_transcript->transcript().item(m_index).facts().isUsers;
    return isUsers ? QCoreApplication::translate("Transcript", "You: %1").arg(text)
                   : QCoreApplication::translate("Transcript", "Assistant: %1").arg(text);
}

QRect MessageAccessible::rect() const
{
    if (!isValid())
        return {};
    const QRect place = m_transcript->transcript().messageRect(m_index);
    return {m_transcript->viewport()->mapToGlobal(place.topLeft()), place.size()};
}

QAccessible::State MessageAccessible::state() const
{
    QAccessible::State state;
    state.invalid = !isValid();
    state.readOnly = true;
    state.multiLine = true;
    state.selectableText = true;
    if (isValid()) {
        const QRect place = m_transcript->transcript().messageRect(m_index);
        state.offscreen = !place.intersects(m_transcript->viewport()->rect());
        state.invisible = !m_transcript->isVisible();
    }
    return state;
}

void *MessageAccessible::interface_cast(QAccessible::InterfaceType type)
{
    return type == QAccessible::TextInterface ? static_cast<QAccessibleTextInterface *>(this) : nullptr;
}

QString MessageAccessible::text(int start, int end) const
{
    const QString text = shownText();
    const qsizetype from = std::clamp(qsizetype{start}, qsizetype{0}, text.size());
    const qsizetype to = end < 0 ? text.size() : std::clamp(qsizetype{end}, from, text.size());
    return text.sliced(from, to - from);
}

int MessageAccessible::characterCount() const
{
    return static_cast<int>(shownText().size());
}

QString MessageAccessible::attributes(int, int *start, int *end) const
{
    *start = 0;
    *end = characterCount();
    return {};
}
