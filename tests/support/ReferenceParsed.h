// The split of a message into reasoning and answer in its plainest form: every block is taken out of the text
// and the search begins anew. Slow, and what ChatMessage::parsed() has to agree with.
#pragma once

#include "core/chat/ChatMessage.h"

inline ParsedMessage referenceParsed(const ChatMessage &message)
{
    const QString opening = QStringLiteral("<think>");
    const QString closing = QStringLiteral("</think>");
    QString thinking = message.thinking;
    QString rest = message.content;
    const auto add = [&thinking](const QString &piece) {
        const QString trimmed = piece.trimmed();
        if (trimmed.isEmpty())
            return;
        thinking = thinking.isEmpty() ? trimmed : thinking + QStringLiteral("\n\n") + trimmed;
    };
    for (;;) {
        const qsizetype start = rest.indexOf(opening);
        if (start < 0)
            break;
        const QString after = rest.mid(start + opening.size());
        const qsizetype end = after.indexOf(closing);
        if (end < 0) {
            add(after);
            rest = rest.left(start);
            break;
        }
        add(after.left(end));
        rest = rest.left(start) + after.mid(end + closing.size());
    }
    const qsizetype stray = rest.indexOf(closing);
    if (stray >= 0) {
        add(rest.left(stray));
        rest = rest.mid(stray + closing.size());
    }
    return {thinking, rest.trimmed()};
}
