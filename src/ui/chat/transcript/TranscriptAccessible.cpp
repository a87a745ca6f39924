#include "ui/chat/transcript/TranscriptAccessible.h"

#include "ui/chat/transcript/MessageAccessible.h"
#include "ui/chat/transcript/Transcript.h"

namespace {

QAccessibleInterface *make(const QString &, QObject *object)
{
    auto *const transcript = qobject_cast<Transcript *>(object);
    return transcript ? new TranscriptAccessible(transcript) : nullptr;
}

} // namespace

TranscriptAccessible::TranscriptAccessible(Transcript *transcript)
    : QAccessibleWidget(transcript, QAccessible::List)
{
}

TranscriptAccessible::~TranscriptAccessible()
{
    for (const auto &[index, id] : m_messages)
        QAccessible::deleteAccessibleInterface(id);
}

void TranscriptAccessible::install()
{
    [[maybe_unused]] static const bool installed = (QAccessible::installFactory(make), true);
}

void TranscriptAccessible::announceFocus(Transcript *transcript, const TranscriptButton &button)
{
    if (!QAccessible::isActive())
        return;
    QAccessibleInterface *const list = QAccessible::queryAccessibleInterface(transcript);
    auto *const message = static_cast<MessageAccessible *>(list->child(button.message));
    QAccessibleEvent event(message->button(button), QAccessible::Focus);
    QAccessible::updateAccessibility(&event);
}

void TranscriptAccessible::announceMessages(Transcript *transcript)
{
    if (!QAccessible::isActive())
        return;
    QAccessibleEvent event(transcript, QAccessible::ObjectReorder);
    QAccessible::updateAccessibility(&event);
}

Transcript &TranscriptAccessible::transcript() const
{
    return *static_cast<Transcript *>(object());
}

int TranscriptAccessible::childCount() const
{
    return transcript().transcript().count();
}

QAccessibleInterface *TranscriptAccessible::child(int index) const
{
    if (index < 0 || index >= childCount())
        return nullptr;
    const auto known = m_messages.find(index);
    if (known != m_messages.end())
        return QAccessible::accessibleInterface(known->second);
    auto *const message = new MessageAccessible(&transcript(), index);
    m_messages[index] = QAccessible::registerAccessibleInterface(message);
    return message;
}

QAccessibleInterface *TranscriptAccessible::childAt(int x, int y) const
{
    const QPoint point = transcript().viewport()->mapFromGlobal(QPoint(x, y));
    if (childCount() == 0 || !transcript().viewport()->rect().contains(point))
        return nullptr;
    const int index = transcript().transcript().messageAt(point.y());
    return transcript().transcript().messageRect(index).contains(point) ? child(index) : nullptr;
}

QAccessibleInterface *TranscriptAccessible::focusChild() const
{
    const std::optional<TranscriptButton> &focused = transcript().focusedButton();
    if (!focused || !transcript().hasFocus())
        return QAccessibleWidget::focusChild();
    return static_cast<MessageAccessible *>(child(focused->message))->button(*focused);
}

int TranscriptAccessible::indexOfChild(const QAccessibleInterface *child) const
{
    for (const auto &[index, id] : m_messages) {
        if (QAccessible::accessibleInterface(id) == child)
            return index;
    }
    return -1;
}
